// client/app/json_input.cpp: JSON values from a stream: one value, or one a line.
#include "client/app/json_input.h"

#include <algorithm>

namespace pavex {

namespace {

using Json = nlohmann::ordered_json;

bool IsBlank(const std::string& line)
{
    return line.find_first_not_of(" \t\r\n") == std::string::npos;
}

// A line that can be nothing but the beginning of a value on many lines.
bool OpensValue(const std::string& line)
{
    const size_t last = line.find_last_not_of(" \t\r");
    return last != std::string::npos && (line[last] == '{' || line[last] == '[' || line[last] == ',');
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

// A single value that stands on many lines is held whole, up to this many bytes.
constexpr size_t kMostBytesOfOneValue = size_t{64} << 20;

// The lines of a text that was read ahead, then those of the stream.
class Lines {
public:
    explicit Lines(std::istream& input) : input_(input) {}

    bool Next(std::string* line)
    {
        if (place_ < ahead_.size()) {
            const size_t end = std::min(ahead_.find('\n', place_), ahead_.size());
            *line = ahead_.substr(place_, end - place_);
            place_ = end + 1;
            return true;
        }
        return static_cast<bool>(std::getline(input_, *line));
    }

    // All that follows, when it is not more than one value may have; it is not consumed.
    const std::string& PeekAll()
    {
        std::string line;
        while (ahead_.size() < kMostBytesOfOneValue && std::getline(input_, line))
            ahead_ += line + '\n';
        return ahead_;
    }

private:
    std::istream& input_;
    std::string ahead_;
    size_t place_ = 0;
};

}  // namespace

void ReadJsonValues(std::istream& input, const JsonCallback& callback)
{
    Lines lines(input);
    std::string line;
    size_t number = 0;
    bool first = true;
    while (lines.Next(&line)) {
        ++number;
        if (IsBlank(line))
            continue;
        std::string error;
        Json value = Parse(line, &error);
        if (first && value.is_discarded()) {
            // Perhaps all of it is one value.  If not, it is a value a line, and this line is a bad one.
            std::string wholeError;
            const std::string& rest = lines.PeekAll();
            Json whole = Parse(std::string(line).append("\n").append(rest), &wholeError);
            const bool manyLines = !IsBlank(rest);
            if (!whole.is_discarded() || (manyLines && OpensValue(line))) {
                callback(whole, number, wholeError);
                return;
            }
        }
        first = false;
        if (!callback(value, number, error))
            return;
    }
}

}  // namespace pavex
