// client/app/search_report.cpp: what a search found, as users and programs read it.
#include "client/app/search_report.h"

#include <iostream>
#include <optional>

#include "client/app/json_output.h"
#include "client/app/local_time.h"
#include "client/app/terminal_text.h"
#include "client/search/marked_text.h"
#include "client/search/metafile.h"
#include "client/search/query.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

constexpr size_t kSnippetBytes = 200;
constexpr size_t kIndent = 4;

// From the first text with a hit; from the body when the words stand elsewhere.
std::string SnippetOf(const std::vector<std::string>& texts, const SoughtTerms& terms)
{
    const auto hasHit = [&terms](const std::string& text) { return !terms.FindIn(text).empty(); };
    for (const std::string& text : texts)
        if (std::string snippet = CutSnippet(text, terms, kSnippetBytes); hasHit(snippet))
            return snippet;
    return CutSnippet(texts.front(), terms, kSnippetBytes);
}

std::string IsoOfStamp(const std::string& stamp)
{
    const std::optional<int64_t> seconds = UnixFromStamp(stamp);
    return seconds ? IsoFromTime(TimeFromUnix(*seconds)) : std::string();
}

std::string LocalOfStamp(const std::string& stamp)
{
    const std::optional<int64_t> seconds = UnixFromStamp(stamp);
    return seconds ? LocalTimeText(*seconds) : "no date";
}

size_t CountCharacters(std::string_view utf8)
{
    size_t count = 0;
    for (const char byte : utf8)
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
            ++count;
    return count;
}

nlohmann::ordered_json PlacesOfHits(const std::string& snippet, const SoughtTerms& terms)
{
    nlohmann::ordered_json places = nlohmann::ordered_json::array();
    const std::string_view text = snippet;
    for (const Mark& mark : terms.FindIn(snippet)) {
        const size_t begin = CountCharacters(text.substr(0, mark.begin));
        places.push_back({begin, begin + CountCharacters(text.substr(mark.begin, mark.end - mark.begin))});
    }
    return places;
}

std::string Joined(const std::vector<std::string>& parts)
{
    std::string joined;
    for (const std::string& part : parts)
        joined += (joined.empty() ? "" : ", ") + part;
    return joined;
}

// Writes the lines of results.
class Lines {
public:
    explicit Lines(const SoughtTerms& terms) : terms_(terms) {}

    std::string Marked(const std::string& text) const
    {
        return WithMarks(PrintableLine(text), terms_, isBold_ ? "\033[1m" : "*", isBold_ ? "\033[0m" : "*");
    }
    void PrintFirst(const std::string& text) const { std::cout << WrapLine(text, columns_, kIndent) << '\n'; }
    void PrintFurther(const std::string& text) const
    {
        if (!text.empty())
            std::cout << IndentLine(text, columns_, kIndent) << '\n';
    }
    void PrintUrl(const std::string& url) const
    {
        if (columns_ == 0 || kIndent + ColumnsOf(url) <= columns_)
            PrintFurther(url);
    }

private:
    const SoughtTerms& terms_;
    bool isBold_ = WantsColor();
    size_t columns_ = TerminalColumns();
};

}  // namespace

std::vector<SearchResult> ReadResults(const SearchAnswer& answer)
{
    const SoughtTerms terms(answer.terms);
    std::vector<SearchResult> results;
    for (const SearchHit& hit : answer.hits)
        if (const auto texts = ReadMetafileTexts(hit.metafile))
            results.push_back({hit, SnippetOf(*texts, terms)});
    return results;
}

void PrintResultsAsJson(const std::vector<SearchResult>& results, const std::vector<std::string>& terms)
{
    const SoughtTerms sought(terms);
    for (const auto& [hit, snippet] : results)
        std::cout << TextOfJson({{"url", hit.url},
                                 {"kind", hit.kind->name},
                                 {"title", hit.title},
                                 {"date", IsoOfStamp(hit.stamp)},
                                 {"people", hit.people},
                                 {"snippet", snippet},
                                 {"hits", PlacesOfHits(snippet, sought)}})
                  << '\n';
}

void PrintResults(const std::vector<SearchResult>& results, const std::vector<std::string>& terms)
{
    const SoughtTerms sought(terms);
    const Lines lines(sought);
    int number = 0;
    for (const auto& [hit, snippet] : results) {
        lines.PrintFirst(std::to_string(++number) + ". " + hit.kind->name + "  " + LocalOfStamp(hit.stamp) + "  " +
                         (PrintableLine(hit.title).find_first_not_of(' ') == std::string::npos
                              ? "(no title)"
                              : lines.Marked(hit.title)));
        lines.PrintFurther(lines.Marked(Joined(hit.people)));
        lines.PrintFurther(lines.Marked(snippet));
        lines.PrintUrl(PrintableLine(hit.url));
    }
}

}  // namespace pavex
