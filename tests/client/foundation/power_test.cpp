// tests/client/foundation/power_test.cpp: power sources of made-up machines.
#include <filesystem>
#include <map>

#include "tests/client/foundation/foundation_fixture.h"
#include "tests/support/temporary_directory.h"

class FoundationPower : public FoundationTest {
protected:
    void SetUp() override { pavex::SetPowerSupplyRoot(folder_.Path().string()); }
    void TearDown() override
    {
        pavex::SetPowerSupplyRoot("");
        FoundationTest::TearDown();
    }
    void AddSupply(const std::string& name, const std::map<std::string, std::string>& attributes)
    {
        std::filesystem::create_directory(folder_ / name);
        for (const auto& [attribute, value] : attributes)
            WriteWholeFile((folder_.Path() / name / attribute).string(), value + "\n");
    }
    // Each source as "present, state".
    static std::vector<std::string> Sources()
    {
        const Owned<CFTypeRef> info(IOPSCopyPowerSourcesInfo());
        if (!info)
            return {"(no information)"};
        const Owned<CFArrayRef> list(IOPSCopyPowerSourcesList(info));
        std::vector<std::string> sources;
        for (CFIndex i = 0; i < CFArrayGetCount(list); ++i) {
            CFDictionaryRef description = IOPSGetPowerSourceDescription(info, CFArrayGetValueAtIndex(list, i));
            const auto* present =
                static_cast<CFBooleanRef>(CFDictionaryGetValue(description, CFSTR(kIOPSIsPresentKey)));
            const auto* state =
                static_cast<CFStringRef>(CFDictionaryGetValue(description, CFSTR(kIOPSPowerSourceStateKey)));
            char text[32];
            EXPECT_TRUE(CFStringGetCString(state, text, sizeof text, kCFStringEncodingUTF8));
            sources.push_back(std::string(CFBooleanGetValue(present) ? "present, " : "absent, ") + text);
        }
        return sources;
    }
    using List = std::vector<std::string>;
    TemporaryDirectory folder_;
};

TEST_F(FoundationPower, AMachineWithoutABatteryHasNoSources)
{
    EXPECT_EQ(Sources(), List{});
    AddSupply("AC", {{"type", "Mains"}, {"online", "1"}});
    EXPECT_EQ(Sources(), List{});
}

TEST_F(FoundationPower, ABatteryThatDischargesIsOnBatteryPower)
{
    AddSupply("AC", {{"type", "Mains"}, {"online", "0"}});
    AddSupply("BAT0", {{"type", "Battery"}, {"present", "1"}, {"status", "Discharging"}});
    EXPECT_EQ(Sources(), List{"present, Battery Power"});
}

TEST_F(FoundationPower, WithMainsOnlineTheBatteryIsOnMainsPower)
{
    AddSupply("ADP1", {{"type", "Mains"}, {"online", "1"}});
    AddSupply("BAT0", {{"type", "Battery"}, {"present", "1"}, {"status", "Discharging"}});
    EXPECT_EQ(Sources(), List{"present, AC Power"});
}

TEST_F(FoundationPower, AUsbSupplyCountsAsMains)
{
    AddSupply("BAT0", {{"type", "Battery"}, {"status", "Discharging"}});
    AddSupply("ucsi-source-psy-0", {{"type", "USB"}, {"online", "0"}});
    EXPECT_EQ(Sources(), List{"present, Battery Power"});
    AddSupply("ucsi-source-psy-1", {{"type", "USB"}, {"online", "1"}});
    EXPECT_EQ(Sources(), List{"present, AC Power"});
}

TEST_F(FoundationPower, ABatteryThatDoesNotDischargeIsOnMainsPower)
{
    for (const char* status : {"Charging", "Full", "Not charging", "Unknown"}) {
        AddSupply("BAT0", {{"type", "Battery"}, {"present", "1"}, {"status", status}});
        EXPECT_EQ(Sources(), List{"present, AC Power"}) << status;
    }
}

TEST_F(FoundationPower, AnEmptyBayIsASourceThatIsNotPresent)
{
    AddSupply("BAT0", {{"type", "Battery"}, {"present", "0"}});
    AddSupply("BAT1", {{"type", "Battery"}, {"present", "1"}, {"status", "Discharging"}});
    EXPECT_EQ(Sources(), (List{"absent, AC Power", "present, Battery Power"}));
}

TEST_F(FoundationPower, AnUninterruptibleSupplyIsASource)
{
    AddSupply("ups", {{"type", "UPS"}, {"status", "Discharging"}});
    EXPECT_EQ(Sources(), List{"present, Battery Power"});
}

TEST_F(FoundationPower, BatteriesOfDevicesAndUnknownSuppliesAreLeftOut)
{
    AddSupply("hidpp_battery_0", {{"type", "Battery"}, {"scope", "Device"}, {"status", "Discharging"}});
    AddSupply("odd", {{"type", "BMS"}, {"status", "Discharging"}});
    AddSupply("silent", {});
    WriteWholeFile(folder_ / "file", "");
    EXPECT_EQ(Sources(), List{});
}

TEST_F(FoundationPower, AClassThatCannotBeReadGivesNoInformation)
{
    WriteWholeFile(folder_ / "file", "");
    pavex::SetPowerSupplyRoot(folder_ / "file");
    EXPECT_EQ(Sources(), List{"(no information)"});
}

TEST_F(FoundationPower, AKernelWithoutTheClassHasNoSources)
{
    pavex::SetPowerSupplyRoot(folder_ / "absent");
    EXPECT_EQ(Sources(), List{});
}

TEST_F(FoundationPower, TheMachineRunsOnBatteryWhenItsFirstPresentSourceIsDrained)
{
    EXPECT_FALSE(pavex::RunsOnBattery());
    AddSupply("BAT0", {{"type", "Battery"}, {"present", "0"}, {"status", "Discharging"}});
    EXPECT_FALSE(pavex::RunsOnBattery());
    AddSupply("BAT1", {{"type", "Battery"}, {"status", "Discharging"}});
    EXPECT_TRUE(pavex::RunsOnBattery());
    AddSupply("BAT1", {{"type", "Battery"}, {"status", "Charging"}});
    EXPECT_FALSE(pavex::RunsOnBattery());
    AddSupply("BAT1", {{"type", "Battery"}, {"status", "Discharging"}});
    AddSupply("AC", {{"type", "Mains"}, {"online", "1"}});
    EXPECT_FALSE(pavex::RunsOnBattery());
    pavex::SetPowerSupplyRoot(folder_ / "absent");
    EXPECT_FALSE(pavex::RunsOnBattery());
}

TEST_F(FoundationPower, ASnapshotDoesNotChangeAndLendsItsDescriptions)
{
    AddSupply("BAT0", {{"type", "Battery"}, {"status", "Discharging"}});
    const Owned<CFTypeRef> info(IOPSCopyPowerSourcesInfo());
    AddSupply("AC", {{"type", "Mains"}, {"online", "1"}});
    const Owned<CFArrayRef> list(IOPSCopyPowerSourcesList(info));
    ASSERT_EQ(CFArrayGetCount(list), 1);
    CFDictionaryRef description = IOPSGetPowerSourceDescription(info, CFArrayGetValueAtIndex(list, 0));
    EXPECT_TRUE(
        CFEqual(CFDictionaryGetValue(description, CFSTR(kIOPSPowerSourceStateKey)), CFSTR(kIOPSBatteryPowerValue)));
    const Owned<CFTypeRef> other(IOPSCopyPowerSourcesInfo());
    EXPECT_EQ(IOPSGetPowerSourceDescription(other, CFArrayGetValueAtIndex(list, 0)), nullptr);
    EXPECT_EQ(IOPSGetPowerSourceDescription(nullptr, CFArrayGetValueAtIndex(list, 0)), nullptr);
    EXPECT_EQ(IOPSCopyPowerSourcesList(nullptr), nullptr);
    EXPECT_EQ(IOPSCopyPowerSourcesList(CFSTR("no snapshot")), nullptr);
}
