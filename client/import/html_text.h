// client/import/html_text.h: the readable text of HTML mail.
#pragma once

#include <string>
#include <string_view>

namespace pavex {

// Text of an HTML document or fragment, in lines ended by "\n": paragraphs are set off by an empty line,
// list entries begin with "- " or their number, cells of a table row are separated by tabs, pictures give
// their alternative text, links their text.  Styles, scripts and the head are left out.
//   html  UTF-8; any size and any nesting: the text is taken while parsing, no tree is built.
// Never fails: what is no HTML gives the text that it has.
std::string TextFromHtml(std::string_view html);

// Charset that a document names in its own meta element; empty when there is none in its first kilobytes.
std::string HtmlMetaCharset(std::string_view bytes);

}  // namespace pavex
