// client/app/terminal_text.cpp: text as it may go to a terminal.
#include "client/app/terminal_text.h"

#include <sys/ioctl.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "client/store/utf8_reader.h"

namespace pavex {

namespace {

constexpr UChar32 kEmojiStyle = 0xFE0F;
constexpr size_t kUsualColumns = 80;

bool IsWide(UChar32 c)
{
    const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

size_t ColumnsOf(UChar32 c)
{
    if (c == kEmojiStyle)
        return 1;  // makes a narrow sign a wide picture
    const int8_t type = u_charType(c);
    if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_CONTROL_CHAR || c == kJoiner ||
        c == kNonJoiner)
        return 0;
    const int syllable = u_getIntPropertyValue(c, UCHAR_HANGUL_SYLLABLE_TYPE);
    if (syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO)
        return 0;  // stands in its syllable's first letter's place
    return IsWide(c) ? 2 : 1;
}

// Where a terminal's sequence that begins here ends; the place itself when none does.
size_t EndOfSequence(std::string_view text, size_t at)
{
    if (!text.substr(at).starts_with("\033["))
        return at;
    const size_t letter = text.find_first_not_of("0123456789;", at + 2);
    return letter == text.npos ? text.size() : letter + 1;
}

// What is never parted: a character with its accents and the sequences before it.
struct Cell {
    std::string_view text;
    size_t columns;
};

std::vector<Cell> CellsOf(std::string_view text)
{
    std::vector<Cell> cells;
    for (size_t at = 0; at < text.size();) {
        const size_t begin = at;
        for (size_t end = EndOfSequence(text, at); end != at; end = EndOfSequence(text, at))
            at = end;
        const UChar32 c = at < text.size() ? NextCharacter(text, &at) : 0;
        const size_t columns = c == 0 ? 0 : ColumnsOf(c);
        const std::string_view whole = text.substr(begin, at - begin);
        if (cells.empty() || (columns > 0 && c != kEmojiStyle)) {
            cells.push_back({whole, columns});
            continue;
        }
        Cell& last = cells.back();
        last.text = {last.text.data(), last.text.size() + whole.size()};
        if (c == kEmojiStyle)
            last.columns = 2;
    }
    return cells;
}

bool IsBlank(const Cell& cell)
{
    return cell.text.ends_with(' ');
}

bool MayBreakBetween(const Cell& a, const Cell& b)
{
    return IsBlank(a) || IsBlank(b) || a.columns > 1 || b.columns > 1;
}

// How many cells from `begin` on are one line.
size_t EndOfFirstLine(const std::vector<Cell>& cells, size_t begin, size_t columns)
{
    size_t end = begin;
    for (size_t used = 0; end < cells.size() && used + cells[end].columns <= columns; ++end)
        used += cells[end].columns;
    if (end == cells.size())
        return end;
    for (size_t place = end; place > begin; --place)
        if (MayBreakBetween(cells[place - 1], cells[place]))
            return place;
    return std::max(end, begin + 1);
}

// A narrow screen has room for text first.
size_t IndentFor(size_t columns, size_t indent)
{
    return columns == 0 ? indent : std::min(indent, columns / 4);
}

// first: columns of the first line; 0: no limit.
std::string Wrapped(std::string_view utf8, size_t first, size_t columns, size_t indent)
{
    if (first == 0)
        return std::string(utf8);
    const std::vector<Cell> cells = CellsOf(utf8);
    const size_t inner = IndentFor(columns, indent);
    std::string lines;
    for (size_t at = 0; at < cells.size();) {
        const bool isFirst = at == 0;
        const size_t end = EndOfFirstLine(cells, at, isFirst ? first : columns - inner);
        size_t last = end;  // blanks at a line's end are not worth a column
        while (end < cells.size() && last > at && IsBlank(cells[last - 1]))
            --last;
        if (!isFirst)
            lines.append("\n").append(inner, ' ');
        for (size_t place = at; place < last; ++place)
            lines += cells[place].text;
        for (at = last; at < cells.size() && (at < end || IsBlank(cells[at])); ++at)
            lines += cells[at].text.substr(0, cells[at].text.find(' '));  // what a blank has before it counts on
    }
    return lines;
}

}  // namespace

bool IsDumbTerminal()
{
    const char* const kind = std::getenv("TERM");
    return kind == nullptr || *kind == '\0' || std::string_view(kind) == "dumb";
}

bool WantsColor()
{
    const char* const refusal = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && (refusal == nullptr || *refusal == '\0') && !IsDumbTerminal();
}

size_t TerminalColumns(int descriptor)
{
    if (isatty(descriptor) == 0)
        return 0;
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const char* const told = std::getenv("COLUMNS");
    const long columns = told == nullptr ? 0 : std::strtol(told, nullptr, 10);
    return columns > 0 ? static_cast<size_t>(columns) : kUsualColumns;
}

size_t ColumnsOf(std::string_view utf8)
{
    size_t columns = 0;
    for (const Cell& cell : CellsOf(utf8))
        columns += cell.columns;
    return columns;
}

std::string WrapLine(std::string_view utf8, size_t columns, size_t indent)
{
    return Wrapped(utf8, columns, columns, indent);
}

std::string IndentLine(std::string_view utf8, size_t columns, size_t indent)
{
    const size_t room = IndentFor(columns, indent);
    return std::string(room, ' ') + Wrapped(utf8, columns == 0 ? 0 : columns - room, columns, indent);
}

std::string EndOfLine(std::string_view utf8, size_t columns)
{
    if (ColumnsOf(utf8) <= columns)
        return std::string(utf8);
    constexpr size_t kEllipsis = 1;
    const std::vector<Cell> cells = CellsOf(utf8);
    size_t begin = cells.size();
    for (size_t used = kEllipsis; begin > 0 && used + cells[begin - 1].columns <= columns; --begin)
        used += cells[begin - 1].columns;
    std::string end = columns < kEllipsis ? "" : "…";
    for (; begin < cells.size(); ++begin)
        end += cells[begin].text;
    return end;
}

}  // namespace pavex
