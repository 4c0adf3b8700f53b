// client/import/mail_address.cpp: an address field, read in one walk over its characters.
#include "client/import/mail_address.h"

#include "client/import/charset_text.h"
#include "client/import/header_text.h"

namespace pavex {
namespace {

// Longest display form that is kept, in bytes: more is no name of anybody.
constexpr size_t kLongestAddress = 2000;

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool SameAscii(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
        if (lower(a[i]) != lower(b[i]))
            return false;
    }
    return true;
}

class AddressWalk {
public:
    AddressWalk(std::string_view text, std::string_view guess)
        : text_(text), guess_(guess), lastSemicolon_(text.rfind(';'))
    {
    }

    std::vector<std::string> Read()
    {
        while (at_ < text_.size())
            Step();
        Finish();
        return std::move(addresses_);
    }

private:
    void Step()
    {
        const char c = text_[at_];
        if (const size_t length = c == '=' ? EncodedWordLength(text_.substr(at_)) : 0; length != 0) {
            phrase_ += text_.substr(at_, length);
            at_ += length;
            return;
        }
        ++at_;
        switch (c) {
        case '"':
            TakeQuoted();
            break;
        case '(':
            TakeComment();
            break;
        case '<':
            TakeBracketed();
            break;
        case ',':
            Finish();
            break;
        case ';':
            Finish();
            inGroup_ = false;
            break;
        case ':':
            if (!BeginGroup())
                phrase_ += c;
            break;
        default:
            phrase_ += c;
        }
    }

    // A local part may be quoted too: the quotes of "john doe"@example.org belong to the address.
    void TakeQuoted()
    {
        const size_t before = phrase_.size();
        const bool glued = before > 0 && !IsBlank(phrase_.back());
        const size_t start = at_;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\\' && at_ + 1 < text_.size())
                ++at_;
            phrase_ += text_[at_++];
        }
        const std::string_view raw = text_.substr(start, at_ - start);
        if (at_ < text_.size())
            ++at_;
        if (!glued && at_ < text_.size() && text_[at_] == '@') {
            phrase_.resize(before);
            phrase_.append("\"").append(raw).append("\"");
        }
    }

    void TakeComment()
    {
        std::string comment = SkipComment();
        if (comment_.empty())
            comment_ = std::move(comment);
    }

    // Moves past the comment whose parenthesis was just read; returns its text.
    std::string SkipComment()
    {
        int depth = 1;
        std::string comment;
        while (at_ < text_.size()) {
            char c = text_[at_++];
            if (c == '\\' && at_ < text_.size()) {
                c = text_[at_++];
            } else if (c == '(') {
                ++depth;
            } else if (c == ')' && --depth == 0) {
                break;
            }
            comment += c;
        }
        return comment;
    }

    // What follows '<' up to '>', or to the comma where the bracket is never closed.
    void TakeBracketed()
    {
        std::string inside;
        bool quoted = false;
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (!quoted && (c == '>' || c == ',')) {
                // A comma is no end inside a route: <@a.org,@b.org:ann@x.org>.
                if (c == '>' || !inside.starts_with("@"))
                    break;
            }
            quoted = c == '"' ? !quoted : quoted;
            ++at_;
            if (!quoted && c == '(')
                SkipComment();
            else
                inside += c;
        }
        if (at_ < text_.size() && text_[at_] == '>')
            ++at_;
        std::string_view address = Trimmed(inside);
        if (address.starts_with("@") && address.find(':') != address.npos)
            address.remove_prefix(address.find(':') + 1);  // the route
        if (bracketed_)
            return;  // "<a@x.org> <b@x.org>": the first is the address
        bracketed_ = true;
        address_ = address;
    }

    bool BeginGroup()
    {
        if (inGroup_ || bracketed_ || lastSemicolon_ == text_.npos || lastSemicolon_ < at_)
            return false;
        if (phrase_.find('@') != phrase_.npos)
            return false;
        inGroup_ = true;
        phrase_.clear();
        comment_.clear();
        return true;
    }

    void Finish()
    {
        std::string name = DecodeHeaderText(Trimmed(phrase_), guess_);
        std::string address = DecodeHeaderText(address_, guess_);
        // Without brackets the address is what was read, also where an archive has made "ann at x.org" of it.
        if (!bracketed_ && ((name.find('@') != name.npos && name.find(' ') == name.npos) || !comment_.empty())) {
            address = std::move(name);
            name.clear();
        }
        if (name.empty() && !address.empty())
            name = DecodeHeaderText(Trimmed(comment_), guess_);
        Add(StripQuotes(std::move(name)), address);
        phrase_.clear();
        comment_.clear();
        address_.clear();
        bracketed_ = false;
    }

    // Names that were quoted twice: "'Ann Lee'".
    static std::string StripQuotes(std::string name)
    {
        for (const char quote : {'"', '\''}) {
            if (name.size() > 2 && name.front() == quote && name.back() == quote)
                name = name.substr(1, name.size() - 2);
        }
        return std::string(Trimmed(name));
    }

    void Add(std::string name, const std::string& address)
    {
        if (SameAscii(name, address))
            name.clear();
        if (name.empty() && address.empty())
            return;
        std::string entry = name;
        if (!address.empty())
            entry = name.empty() ? address : name + " <" + address + ">";
        addresses_.emplace_back(Utf8Prefix(entry, kLongestAddress));
    }

    std::string_view text_;
    std::string_view guess_;
    size_t lastSemicolon_;  // a group must end
    size_t at_ = 0;
    std::string phrase_;
    std::string comment_;
    std::string address_;
    bool bracketed_ = false;
    bool inGroup_ = false;
    std::vector<std::string> addresses_;
};

}  // namespace

std::vector<std::string> ReadAddressList(std::string_view unfolded, std::string_view guess)
{
    return AddressWalk(unfolded, guess).Read();
}

}  // namespace pavex
