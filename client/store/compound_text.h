// client/store/compound_text.h: rich text that is being written for one item of a note.
#pragma once

#include <string>
#include <string_view>

#include "client/store/handle_table.h"
#include "platform/store.h"

namespace pavex {

class CompoundText {
public:
    CompoundText(NOTEHANDLE note, std::string_view item) : note_(note), item_(item) {}

    DWORD AddStyle() { return ++lastStyle_; }
    bool HasStyle(DWORD style) const { return style == kStyleDefault || (style > 0 && style <= lastStyle_); }

    // Goes on in the paragraph that the text before left open.  A delimiter begins the next one, also
    // one that two calls share; none at the end of all leaves an empty paragraph behind.
    void AddText(DWORD style, DWORD font, std::string_view scs, std::string_view delimiter);
    // A paragraph of its own.
    void AddParagraph(DWORD style, DWORD font, std::string_view scs);
    // The records of another rich text, as far as they are not damaged.
    void AddRecords(std::string_view records);
    // Writes the item.  592 when the text is longer than a value can be.
    STATUS WriteItem();

private:
    void OpenParagraph();
    void AddRun(DWORD style, DWORD font, std::string_view scs);

    NOTEHANDLE note_;
    std::string item_;
    std::string records_;
    DWORD lastStyle_ = 0;
    bool open_ = false;  // text goes into the paragraph that was begun last
    // What may be the beginning of a delimiter that the next call goes on with, and how it would be written.
    std::string held_;
    DWORD heldStyle_ = kStyleDefault;
    DWORD heldFont_ = 0;
};

HandleTable<CompoundText>& CompoundTexts();

}  // namespace pavex
