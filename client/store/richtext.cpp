// client/store/richtext.cpp: builds and reads rich text for the client's own code.
#include "client/store/richtext.h"

#include <algorithm>
#include <utility>

#include "client/store/charset.h"
#include "client/store/ods.h"
#include "client/store/record_walk.h"
#include "client/store/record_writer.h"

namespace pavex {

namespace {

constexpr size_t kMostTextOfRecord = 32000;  // bytes; well below what a WORD length can say
constexpr size_t kMostLabel = 60000;         // bytes

}  // namespace

void AppendBareRecord(std::string* records, uint16_t signature)
{
    AppendWord(records, signature);
    AppendWord(records, kRecordHeaderBytes);
}

void AppendTextRecords(std::string* records, uint32_t style, uint32_t font, std::string_view scs)
{
    while (!scs.empty()) {
        const size_t cut = ScsPrefix(scs, kMostTextOfRecord);
        const std::string_view text = scs.substr(0, cut);
        scs.remove_prefix(cut);
        AppendWord(records, kRecordText);
        AppendWord(records, static_cast<uint16_t>(kTextHeaderBytes + cut + cut % 2));
        AppendDword(records, style);
        AppendDword(records, font);
        AppendWord(records, static_cast<uint16_t>(cut));
        records->append(text);
        records->append(cut % 2, '\0');
    }
}

void RichTextBuilder::AddParagraph(std::string_view utf8)
{
    AppendBareRecord(&records_, kRecordParagraph);
    AppendTextRecords(&records_, kStyleDefault, kDefaultFont, ScsFromUtf8(utf8));
}

void RichTextBuilder::AddLines(std::string_view utf8)
{
    while (!utf8.empty()) {
        const size_t end = std::min(utf8.find('\n'), utf8.size());
        AddParagraph(utf8.substr(0, end));
        utf8.remove_prefix(std::min(end + 1, utf8.size()));
    }
}

void RichTextBuilder::AddRule()
{
    AppendBareRecord(&records_, kRecordRule);
}

void RichTextBuilder::AddLink(const NOTELINK& link, std::string_view labelUtf8)
{
    std::string label = ScsFromUtf8(labelUtf8);
    label.resize(ScsPrefix(label, kMostLabel));
    label.append(label.size() % 2, '\0');
    LINKRECORD record{};
    record.signature = kRecordLink;
    record.recordBytes = static_cast<WORD>(sizeof(LINKRECORD) + sizeof(NOTELINK) + label.size());
    record.flags = kLinkFollows;
    record.linkType = kLinkToNote;
    AppendLinkRecord(&records_, record);
    AppendNoteLink(&records_, link);
    records_ += label;
}

namespace {

// Is told what stands in rich text, in order; each call answers whether the rest is wanted.
class RecordReader {
public:
    virtual ~RecordReader() = default;
    // A piece, SCS, of the paragraph that is open; it may end within a character.
    virtual bool Text(std::string_view scs) = 0;
    virtual bool EndOfParagraph() = 0;
    virtual bool Rule() = 0;
    virtual bool Link(std::string_view labelScs, const NOTELINK& link) = 0;
};

// False when a damaged record ended the text.
bool ReadRecords(std::string_view records, RecordReader& reader)
{
    RecordWalk walk(records);
    bool open = false;
    bool wanted = true;
    const auto closeParagraph = [&] {
        if (open)
            wanted = reader.EndOfParagraph();
        open = false;
    };

    for (Record record; wanted && walk.Next(&record);) {
        std::string_view text;
        NOTELINK link{};
        LinkReading reading;
        switch (record.signature) {
        case kRecordParagraph:
            closeParagraph();
            open = true;
            break;
        case kRecordText:
            if (!TextOfRecord(record, &text)) {
                closeParagraph();
                return false;
            }
            open = true;
            wanted = text.empty() || reader.Text(text);
            break;
        case kRecordRule:
            closeParagraph();
            wanted = wanted && reader.Rule();
            break;
        case kRecordLink:
            closeParagraph();
            reading = LinkOfRecord(record, &link, &text);
            if (reading == LinkReading::kDamaged)
                return false;
            wanted = wanted && (reading != LinkReading::kNote || reader.Link(text, link));
            break;
        default:  // records of other clients, which this one does not show
            break;
        }
    }
    if (wanted)
        closeParagraph();
    return !walk.Damaged();
}

class PieceReader : public RecordReader {
public:
    bool Text(std::string_view scs) override
    {
        paragraph_ += scs;
        return true;
    }
    bool EndOfParagraph() override { return Take({RichTextPiece::Kind::kParagraph, Utf8FromScs(paragraph_), {}}); }
    bool Rule() override { return Take({RichTextPiece::Kind::kRule, {}, {}}); }
    bool Link(std::string_view labelScs, const NOTELINK& link) override
    {
        return Take({RichTextPiece::Kind::kLink, Utf8FromScs(labelScs), link});
    }
    std::vector<RichTextPiece>& Pieces() { return pieces_; }

private:
    bool Take(RichTextPiece piece)
    {
        pieces_.push_back(std::move(piece));
        paragraph_.clear();
        return true;
    }

    std::vector<RichTextPiece> pieces_;
    std::string paragraph_;  // its pieces may cut a character in two
};

class PlainTextReader : public RecordReader {
public:
    explicit PlainTextReader(const PlainTextSink& sink) : sink_(sink) {}

    bool Text(std::string_view scs) override { return sink_(scs, false); }
    bool EndOfParagraph() override { return sink_({}, true); }
    bool Rule() override { return sink_({}, true); }
    bool Link(std::string_view labelScs, const NOTELINK&) override { return sink_(labelScs, true); }

private:
    const PlainTextSink& sink_;
};

}  // namespace

std::vector<RichTextPiece> ReadRichText(std::string_view records, bool* damaged)
{
    PieceReader reader;
    const bool whole = ReadRecords(records, reader);
    if (damaged != nullptr)
        *damaged = !whole;
    return std::move(reader.Pieces());
}

bool VisitPlainText(std::string_view records, const PlainTextSink& sink)
{
    PlainTextReader reader(sink);
    return ReadRecords(records, reader);
}

}  // namespace pavex
