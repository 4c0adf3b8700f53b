// client/watch/read_records.cpp: when each watched source was read, for those who ask.
#include "client/watch/read_records.h"

#include <fcntl.h>

#include <nlohmann/json.hpp>

#include "client/store/descriptor.h"

namespace pavex {

namespace {

std::string PathIn(const std::string& dataDirectory)
{
    return dataDirectory + "/watched.json";
}

std::string TextOf(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::set<std::string> TextsOf(const nlohmann::json& object, const char* key)
{
    std::set<std::string> texts;
    if (const auto found = object.find(key); found != object.end() && found->is_array())
        for (const nlohmann::json& text : *found)
            if (text.is_string())
                texts.insert(text.get<std::string>());
    return texts;
}

}  // namespace

ReadRecords LoadReadRecords(const std::string& dataDirectory)
{
    ReadRecords records;
    std::string bytes;
    const Descriptor file(open(PathIn(dataDirectory).c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen() || !ReadAll(file.Get(), &bytes))
        return records;
    const nlohmann::json json = nlohmann::json::parse(bytes, nullptr, false);
    if (!json.is_object() || !json.contains("sources") || !json["sources"].is_array())
        return records;
    for (const nlohmann::json& source : json["sources"]) {
        if (!source.is_object())
            continue;
        const auto rejected = source.find("rejected");
        records[TextOf(source, "source")] = {
            TextOf(source, "read"), TextOf(source, "error"),
            rejected != source.end() && rejected->is_number_unsigned() ? rejected->get<uint64_t>() : 0,
            TextsOf(source, "databases")};
    }
    return records;
}

bool SaveReadRecords(const std::string& dataDirectory, const ReadRecords& records)
{
    nlohmann::ordered_json sources = nlohmann::ordered_json::array();
    for (const auto& [path, record] : records)
        sources.push_back({{"source", path},
                           {"read", record.read},
                           {"error", record.error},
                           {"rejected", record.rejected},
                           {"databases", record.databases}});
    const nlohmann::ordered_json json{{"sources", sources}};
    return ReplaceFile(PathIn(dataDirectory),
                       json.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

}  // namespace pavex
