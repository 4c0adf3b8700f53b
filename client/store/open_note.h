// client/store/open_note.h: the notes behind note handles, for the library's own calls.
// An open note keeps its items as they came from the database; pointers into them hold until the note
// is closed, also for items that are replaced meanwhile.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "client/store/handle_table.h"
#include "client/store/note.h"
#include "platform/store.h"

namespace pavex {

class Database;
struct NoteRow;

class OpenNote {
public:
    // How far into a text list its last read went: the next entry's place is found from here.
    struct ListPlace {
        uint32_t entry = 0;
        uint32_t bytes = 0;  // of the entries before it
    };
    // One item.  `data` points at the type word; null while a large value has not been read.
    struct Slot {
        std::string_view name;
        uint16_t type = 0;
        uint16_t flags = 0;
        uint32_t bytes = 0;  // of the value, type word counted
        const char* data = nullptr;
        bool encrypted = false;  // reads as absent
        bool replaced = false;   // kept for who still points at it
        uint32_t position = 0;   // in the stored note: the key of a large value
        std::unique_ptr<std::string> ownName;
        std::unique_ptr<std::string> ownValue;
        mutable ListPlace place;
    };

    // database: null for none; shared, since a note may outlive its database's handle.
    OpenNote(std::shared_ptr<Database> database, DBHANDLE handle);
    // The note of a row that was read with its items.  518 when they cannot be decoded.
    STATUS Fill(NoteRow row);

    DBHANDLE DatabaseHandle() const { return handle_; }
    const Note& Head() const { return head_; }  // identity; its list of items is empty
    bool Signed() const { return signed_; }

    // Position of the first readable item of the name, -1 when there is none.
    int Find(std::string_view name) const;
    size_t Count() const { return slots_.size(); }
    const Slot& At(size_t position) const { return slots_[position]; }
    bool Readable(size_t position) const;
    // The value, type word first, read now when it is a large one; null when it cannot be read.
    const char* Value(size_t position);
    // Replaces the first item of the name, or appends.  In memory only.
    void Set(const Item& item);
    STATUS Decrypt();

private:
    STATUS ReadLarge(Slot* slot);

    std::shared_ptr<Database> database_;
    DBHANDLE handle_;
    Note head_;
    bool signed_ = false;
    std::string items_;  // the row's bytes, which the slots point into
    std::vector<Slot> slots_;
};

// The notes that are open; handles are NOTEHANDLEs.
HandleTable<OpenNote>& OpenNotes();

// For calls that take a note handle.  Sealed items that are not decrypted are absent.
// 590 for a bad handle, 546 when there is no such item, 518 when its value cannot be read.
STATUS ReadOpenItem(NOTEHANDLE note, std::string_view name, Item* item);
// Every readable item in stored order; false from the callback ends the walk.
STATUS VisitOpenItems(NOTEHANDLE note, const std::function<bool(const Item&)>& callback);
// Replaces the first item of its name, or appends; in memory, until the note is closed.
STATUS SetOpenItem(NOTEHANDLE note, const Item& item);

}  // namespace pavex
