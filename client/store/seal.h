// client/store/seal.h: encryption of the sealed items of a note.
// The key is the user's: the file seal.key in the data directory, 32 bytes, mode 0600, made when the
// first note is sealed.  Who does not have it cannot read sealed items, nor change them unnoticed.
#pragma once

#include <string>
#include <string_view>

#include "platform/store.h"

namespace pavex {

// Encrypts `plain` into *sealed.  False when there is no key and none can be made, or the key file is
// not one; *sealed is then left as it was.
bool SealValue(std::string_view plain, std::string* sealed);

// 595 when there is no key file or its key does not fit (a changed value looks the same), 518 when
// `sealed` is no sealed value at all; *plain is then left as it was.
STATUS UnsealValue(std::string_view sealed, std::string* plain);

}  // namespace pavex
