// client/import/flowed_text.cpp: format=flowed, line by line.
#include "client/import/flowed_text.h"

namespace pavex {

std::string JoinFlowedText(std::string_view text, bool deleteSpace)
{
    std::string out;
    out.reserve(text.size());
    size_t openDepth = 0;  // quote depth of the paragraph that is still open
    bool open = false;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == text.npos ? text.size() : end + 1);

        size_t depth = 0;
        while (depth < line.size() && line[depth] == '>')
            ++depth;
        line.remove_prefix(depth);
        if (line.starts_with(' '))
            line.remove_prefix(1);  // stuffed, so that a line may begin with ">" or "From "
        const bool signature = line == "-- ";
        const bool flows = !signature && line.ends_with(' ');
        if (open && (signature || depth != openDepth)) {
            out += '\n';
            open = false;
        }
        if (!open && depth > 0)
            out.append(depth, '>').append(line.empty() ? "" : " ");
        if (flows && deleteSpace)
            line.remove_suffix(1);
        out += line;
        if (!flows && (end != std::string_view::npos || !text.empty()))
            out += '\n';
        open = flows;
        openDepth = depth;
    }
    return out;
}

}  // namespace pavex
