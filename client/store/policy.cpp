// client/store/policy.cpp: what the administrator has locked.
// The policy file is the administrator's ini file; a section is a policy, and its variable "Locked" lists
// the fields that users may not change, separated by commas.
#include <fcntl.h>
#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "client/store/charset.h"
#include "client/store/descriptor.h"
#include "client/store/host.h"
#include "client/store/ini_file.h"
#include "client/store/item_view.h"
#include "client/store/open_note.h"
#include "client/store/status.h"
#include "client/store/value_text.h"
#include "platform/store.h"

namespace {

using namespace pavex;

constexpr const char* kLockedFields = "Locked";

std::vector<std::string> SplitFields(std::string_view list)
{
    std::vector<std::string> fields;
    while (!list.empty()) {
        const size_t comma = std::min(list.find(','), list.size());
        std::string_view field = list.substr(0, comma);
        list.remove_prefix(std::min(comma + 1, list.size()));
        field.remove_prefix(std::min(field.find_first_not_of(" \t"), field.size()));
        field = field.substr(0, field.find_last_not_of(" \t") + 1);
        if (!field.empty())
            fields.emplace_back(field);
    }
    return fields;
}

STATUS ReadPolicy(const std::string& name, std::vector<std::string>* lockedFields)
{
    const std::string& path = CurrentPlaces().policy;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::string bytes;
    if (!file.IsOpen() || !ReadAll(file.Get(), &bytes)) {
        if (errno == ENOENT)
            return kStatusNotFound;
        const STATUS status = StatusOfErrno(errno);
        Log("the policy file " + path + " could not be read: " + std::strerror(errno));
        return status;
    }
    const IniText ini(bytes);
    if (!ini.HasSection(name))
        return kStatusNotFound;
    const VariableMap variables = ini.Variables(name);
    const auto found = variables.find(kLockedFields);
    *lockedFields = found == variables.end() ? std::vector<std::string>() : SplitFields(found->second);
    return kStatusOk;
}

}  // namespace

STATUS NAMEGetPolicy(const char*, DWORD, DWORD, const char*, DWORD, DWORD, const char* policy, DWORD, DWORD,
                     NOTEHANDLE* note)
{
    *note = 0;
    std::vector<std::string> fields;
    if (const STATUS status = ReadPolicy(Utf8FromScs(policy), &fields); status != kStatusOk)
        return status;
    auto open = std::make_unique<OpenNote>(nullptr, 0);
    open->Set(TextListItem(kLockedFields, fields));
    *note = OpenNotes().Add(std::move(open));
    return kStatusOk;
}

bool NAMEDPIsFieldLocked(NOTEHANDLE policyNote, const char* field)
{
    ItemView view;
    std::vector<std::string_view> fields;
    if (ViewItem(policyNote, kLockedFields, &view) != kStatusOk || !ReadTextList(view.value, &fields))
        return false;
    const std::string_view wanted = field;
    return std::any_of(fields.begin(), fields.end(), [&](std::string_view locked) {
        return locked.size() == wanted.size() && strncasecmp(locked.data(), wanted.data(), wanted.size()) == 0;
    });
}
