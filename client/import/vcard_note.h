// client/import/vcard_note.h: a card as a note.
#pragma once

#include <string>
#include <vector>

#include "client/import/source_reader.h"
#include "client/import/vcard_line.h"
#include "client/store/note.h"

namespace pavex {

// The name of the person or company; failing those the e-mail address.  Empty when the card has none of them.
std::string NameOfCard(const std::vector<CardProperty>& properties);

// Who it is, the same in every version of the card: its UID, else its name.
std::string IdentityOfCard(const std::vector<CardProperty>& properties);

// How new the version is; nothing for a card without UID, which cannot be told from another of its name.
std::optional<Revision> RevisionOfCard(const std::vector<CardProperty>& properties);

// Fills the note's items, and its modification time where the card says it.  What has no item of its own is a
// line at the end of the body, so that it is found nevertheless.
void MakeContactNote(const std::vector<CardProperty>& properties, Note* note);

}  // namespace pavex
