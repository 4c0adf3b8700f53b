// client/import/document_reader.h: text and Markdown files, each as one document.
#pragma once

#include "client/import/source_reader.h"

namespace pavex {

// True for a file of text: any when named by the user, in a folder one that is named as text or Markdown.
bool LooksLikeDocument(const SourceFile& file);
bool ReadDocument(const SourceFile& file, const ImportOptions& options, EntryHandler& handler);

}  // namespace pavex
