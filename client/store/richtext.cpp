// client/store/richtext.cpp: builds and reads rich text for the client's own code.
#include "client/store/richtext.h"

#include <algorithm>

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

std::vector<RichTextPiece> ReadRichText(std::string_view records, bool* damaged)
{
    using Kind = RichTextPiece::Kind;
    std::vector<RichTextPiece> pieces;
    std::string scs;  // of the paragraph that is being read: its records may cut a character in two
    bool open = false;
    const auto closeParagraph = [&] {
        if (open)
            pieces.push_back({Kind::kParagraph, Utf8FromScs(scs), {}});
        scs.clear();
        open = false;
    };

    RecordWalk walk(records);
    bool broken = false;
    for (Record record; !broken && walk.Next(&record);) {
        std::string_view text;
        NOTELINK link{};
        LinkReading reading;
        switch (record.signature) {
        case kRecordParagraph:
            closeParagraph();
            open = true;
            break;
        case kRecordText:
            broken = !TextOfRecord(record, &text);
            open = open || !broken;
            scs += text;
            break;
        case kRecordRule:
            closeParagraph();
            pieces.push_back({Kind::kRule, {}, {}});
            break;
        case kRecordLink:
            closeParagraph();
            reading = LinkOfRecord(record, &link, &text);
            broken = reading == LinkReading::kDamaged;
            if (reading == LinkReading::kNote)
                pieces.push_back({Kind::kLink, Utf8FromScs(text), link});
            break;
        default:  // records of other clients, which this one does not show
            break;
        }
    }
    closeParagraph();
    if (damaged != nullptr)
        *damaged = broken || walk.Damaged();
    return pieces;
}

bool VisitPlainText(std::string_view records, const std::function<bool(std::string_view piece, bool last)>& sink)
{
    RecordWalk walk(records);
    bool open = false;
    bool broken = false;
    bool wanted = true;
    const auto closeParagraph = [&] {
        if (open)
            wanted = sink({}, true);
        open = false;
    };

    for (Record record; wanted && !broken && walk.Next(&record);) {
        std::string_view text;
        NOTELINK link;
        LinkReading reading;
        switch (record.signature) {
        case kRecordParagraph:
            closeParagraph();
            open = true;
            break;
        case kRecordText:
            broken = !TextOfRecord(record, &text);
            open = open || !broken;
            if (!text.empty())
                wanted = sink(text, false);
            break;
        case kRecordRule:
            closeParagraph();
            wanted = wanted && sink({}, true);
            break;
        case kRecordLink:
            closeParagraph();
            reading = LinkOfRecord(record, &link, &text);
            broken = reading == LinkReading::kDamaged;
            wanted = wanted && (reading != LinkReading::kNote || sink(text, true));
            break;
        default:  // as above
            break;
        }
    }
    if (wanted)
        closeParagraph();
    return !broken && !walk.Damaged();
}

}  // namespace pavex
