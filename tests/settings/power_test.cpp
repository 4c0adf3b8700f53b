// tests/settings/power_test.cpp: mains or battery, from a power-supply class of the test's own.
#include "settings/power.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "client/foundation/host.h"
#include "tests/support/fault_plan.h"
#include "tests/support/temporary_directory.h"

namespace {

class PowerSource : public testing::Test {
protected:
    PowerSource() { pavex::SetPowerSupplyRoot(class_.Path().string()); }
    ~PowerSource() override { pavex::SetPowerSupplyRoot(""); }

    void Supply(const std::string& name, const std::string& attribute, const std::string& value)
    {
        std::filesystem::create_directories(class_ / name);
        WriteWholeFile(class_ / name + "/" + attribute, value + "\n");
    }
    void Battery(const std::string& name, bool present)
    {
        Supply(name, "type", "Battery");
        Supply(name, "present", present ? "1" : "0");
        Supply(name, "status", "Discharging");
    }
    void Mains(bool online)
    {
        Supply("AC", "type", "Mains");
        Supply("AC", "online", online ? "1" : "0");
    }

    TemporaryDirectory class_;
};

TEST_F(PowerSource, IsConnectedWithoutAnyBattery)
{
    EXPECT_TRUE(IsPowerSourceConnected());
    pavex::SetPowerSupplyRoot("/nowhere");
    EXPECT_TRUE(IsPowerSourceConnected());
}

TEST_F(PowerSource, IsNotConnectedOnBattery)
{
    Battery("BAT0", true);
    Mains(false);
    EXPECT_FALSE(IsPowerSourceConnected());
}

TEST_F(PowerSource, IsConnectedOnMains)
{
    Battery("BAT0", true);
    Supply("BAT0", "status", "Charging");
    Mains(true);
    EXPECT_TRUE(IsPowerSourceConnected());
}

TEST_F(PowerSource, IsConnectedWithAnEmptyBatteryBay)
{
    Battery("BAT0", false);
    EXPECT_TRUE(IsPowerSourceConnected());
}

TEST_F(PowerSource, IsDecidedByTheFirstSourceThatIsPresent)
{
    Battery("BAT0", false);
    Battery("BAT1", true);
    Mains(false);
    EXPECT_FALSE(IsPowerSourceConnected());
}

TEST_F(PowerSource, IsConnectedWhenItCannotBeTold)
{
    Battery("BAT0", true);
    Mains(false);
    for (const char* call : {"IOPSCopyPowerSourcesInfo", "IOPSCopyPowerSourcesList", "IOPSGetPowerSourceDescription"}) {
        const NamedFault fault(call);
        EXPECT_TRUE(IsPowerSourceConnected()) << call;
    }
}

TEST_F(PowerSource, ReleasesWhatItAsksFor)
{
    Battery("BAT0", true);
    static_cast<void>(IsPowerSourceConnected());
    const long before = pavex::LiveObjects();
    static_cast<void>(IsPowerSourceConnected());
    EXPECT_EQ(pavex::LiveObjects(), before);
}

}  // namespace
