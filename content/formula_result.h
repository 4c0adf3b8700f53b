// content/formula_result.h: what a formula came to, as one line of text.
#pragma once

#include "platform/store.h"

// Text of a value (type word first) into buffer[size], terminated, cut between characters: a number in at
// most 40 characters, a time in at most 80, the first of a range of either, a text list joined with ", ",
// a text as it stands.  Returns its length; 0, and an empty buffer, for every other type and for a value
// that is null or too short.  Uses no scratch buffer; any thread.
WORD FormulaResultText(const void* result, DWORD resultBytes, char* buffer, WORD size);
