// client/app/json_input.cpp: JSON values from a stream: one value, or one a line.
#include "client/app/json_input.h"

#include <iterator>

namespace pavex {

namespace {

using Json = nlohmann::ordered_json;

bool IsBlank(const std::string& line)
{
    return line.find_first_not_of(" \t\r\n") == std::string::npos;
}

// The value, or nothing with the parser's reason.
Json Parse(const std::string& text, std::string* error)
{
    try {
        return Json::parse(text);
    } catch (const Json::exception& failure) {
        *error = failure.what();
        return Json(Json::value_t::discarded);
    }
}

}  // namespace

void ReadJsonValues(std::istream& input, const JsonCallback& callback)
{
    std::string line;
    size_t number = 0;
    bool first = true;
    while (std::getline(input, line)) {
        ++number;
        if (IsBlank(line))
            continue;
        std::string error;
        Json value = Parse(line, &error);
        if (first && value.is_discarded()) {
            // Not a value a line: then all of it is one value.
            line += '\n';
            line.append(std::istreambuf_iterator<char>(input), {});
            std::string wholeError;
            value = Parse(line, &wholeError);
            if (value.is_discarded() && line.find('\n') + 1 == line.size())
                wholeError = error;
            callback(value, number, wholeError);
            return;
        }
        first = false;
        if (!callback(value, number, error))
            return;
    }
}

}  // namespace pavex
