// client/import/mail_address.h: the addresses of a header field in the form people read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pavex {

// The addresses of an unfolded address field, in order, each as "Ann Lee <ann@x.org>"; an address without
// a name, or whose name is the address itself, stays bare, and so does a name without an address.
// Groups give their members; comments give the name where there is no other ("ann@x.org (Ann Lee)").
// Takes what mail programs really write (names with bare commas in encoded words, missing quotes and
// brackets); never fails.
//   guess  charset of raw 8-bit names that are not UTF-8; may be empty.
std::vector<std::string> ReadAddressList(std::string_view unfolded, std::string_view guess);

}  // namespace pavex
