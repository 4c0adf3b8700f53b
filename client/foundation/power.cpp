// client/foundation/power.cpp: the power sources, from the kernel's power-supply class.
// Batteries and uninterruptible supplies are the sources.  Mains and USB supplies are no sources of
// their own: that one of them is online makes every source's state "AC Power".
#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/foundation/collections.h"
#include "client/foundation/host.h"
#include "client/foundation/string.h"
#include "client/foundation/unicode.h"

using namespace pavex::cf;

namespace {

constexpr const char* kPowerSupplyClass = "/sys/class/power_supply";

enum class Role { Source, Mains };
struct TypeRow {
    std::string_view type;  // the kernel's word
    Role role;
};
constexpr TypeRow kTypes[] = {
    {"Battery", Role::Source}, {"UPS", Role::Source},     {"Mains", Role::Mains},
    {"USB", Role::Mains},      {"Wireless", Role::Mains},
};

std::mutex rootMutex;
std::string powerSupplyRoot;  // guarded by rootMutex; written by SetPowerSupplyRoot; empty: the kernel's

std::string Root()
{
    const std::lock_guard lock(rootMutex);
    return powerSupplyRoot.empty() ? kPowerSupplyClass : powerSupplyRoot;
}

struct Source {
    std::string name;
    bool present;
    bool discharging;
};
struct Supplies {
    std::vector<Source> sources;  // by name
    bool mainsOnline = false;
};

// The names in the class's folder, sorted; nothing when it cannot be read.  A kernel without the class
// has no supplies.
std::optional<std::vector<std::string>> SupplyNames(const std::string& root)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(root.c_str()), &closedir);
    std::vector<std::string> names;
    if (!folder) {
        if (errno == ENOENT)
            return names;
        return std::nullopt;
    }
    errno = 0;
    while (const dirent* entry = readdir(folder.get())) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
        errno = 0;
    }
    if (errno != 0)
        return std::nullopt;
    std::sort(names.begin(), names.end());
    return names;
}

// The one line of an attribute; nothing when the supply does not have it or does not tell.
std::optional<std::string> Attribute(const std::string& supply, const char* name)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen((supply + '/' + name).c_str(), "re"), &std::fclose);
    char line[128];
    if (!file || !std::fgets(line, sizeof line, file.get()))
        return std::nullopt;
    std::string value(line);
    value.erase(value.find_last_not_of(" \t\r\n") + 1);
    return value;
}

std::optional<Role> RoleOf(const std::string& supply)
{
    // A battery of a device (a mouse, a headset) does not feed the machine.
    if (Attribute(supply, "scope") == "Device")
        return std::nullopt;
    const std::optional<std::string> type = Attribute(supply, "type");
    const auto* row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                   [&type](const TypeRow& candidate) { return type == candidate.type; });
    if (row == std::end(kTypes))
        return std::nullopt;
    return row->role;
}

std::optional<Supplies> ReadSupplies(const std::string& root)
{
    const std::optional<std::vector<std::string>> names = SupplyNames(root);
    if (!names)
        return std::nullopt;
    Supplies supplies;
    for (const std::string& name : *names) {
        std::string supply = root;
        supply.append(1, '/').append(name);
        const std::optional<Role> role = RoleOf(supply);
        if (role == Role::Source) {
            // Most drivers of built-in batteries leave "present" out.
            supplies.sources.push_back({name, Attribute(supply, "present").value_or("1") != "0",
                                        Attribute(supply, "status") == "Discharging"});
        } else if (role == Role::Mains && Attribute(supply, "online").value_or("0") != "0") {
            supplies.mainsOnline = true;  // 1: online; 2: online with a programmable supply
        }
    }
    return supplies;
}

Ref<const Object> Description(bool present, bool onMains)
{
    auto description =
        Ref<Dictionary>::Adopt(New<Dictionary>(&kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    description->Add(CFSTR(kIOPSIsPresentKey), present ? kCFBooleanTrue : kCFBooleanFalse);
    description->Add(CFSTR(kIOPSPowerSourceStateKey),
                     onMains ? CFSTR(kIOPSACPowerValue) : CFSTR(kIOPSBatteryPowerValue));
    return Ref<const Object>::Adopt(description.Detach());
}

// The state of all sources at one moment.
class PowerSources final : public Object {
public:
    static constexpr Kind kKind = Kind::PowerSources;

    explicit PowerSources(const Supplies& supplies) : Object(kKind)
    {
        for (const Source& source : supplies.sources) {
            std::u16string name;
            (void)DecodeUtf8(source.name, &name);  // the handle is told by its identity, not its text
            handles_.push_back(Ref<const Object>::Adopt(New<String>(std::move(name))));
            descriptions_.push_back(Description(source.present, supplies.mainsOnline || !source.discharging));
        }
    }

    const std::vector<Ref<const Object>>& Handles() const { return handles_; }
    const Object* DescriptionOf(CFTypeRef handle) const
    {
        for (size_t i = 0; i < handles_.size(); ++i) {
            if (handles_[i].Get() == handle)
                return descriptions_[i].Get();
        }
        return nullptr;
    }

private:
    std::vector<Ref<const Object>> handles_;
    std::vector<Ref<const Object>> descriptions_;
};

const PowerSources* AsPowerSources(CFTypeRef blob)
{
    return blob && AsObject(blob).GetKind() == Kind::PowerSources ? &As<PowerSources>(blob) : nullptr;
}

}  // namespace

void pavex::SetPowerSupplyRoot(const std::string& path)
{
    const std::lock_guard lock(rootMutex);
    powerSupplyRoot = path;
}

bool pavex::RunsOnBattery()
{
    const std::optional<Supplies> supplies = ReadSupplies(Root());
    if (!supplies || supplies->mainsOnline)
        return false;
    const auto present = std::find_if(supplies->sources.begin(), supplies->sources.end(),
                                      [](const Source& source) { return source.present; });
    return present != supplies->sources.end() && present->discharging;
}

extern "C" {

CFTypeRef IOPSCopyPowerSourcesInfo(void)
{
    const std::optional<Supplies> supplies = ReadSupplies(Root());
    return supplies ? ToRef<CFTypeRef>(New<PowerSources>(*supplies)) : nullptr;
}

CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob)
{
    const PowerSources* sources = AsPowerSources(blob);
    return sources ? ToRef<CFArrayRef>(New<Array>(sources->Handles())) : nullptr;
}

CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef ps)
{
    const PowerSources* sources = AsPowerSources(blob);
    return sources ? ToRef<CFDictionaryRef>(sources->DescriptionOf(ps)) : nullptr;
}

}  // extern "C"
