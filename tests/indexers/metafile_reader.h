// tests/indexers/metafile_reader.h: a metafile as a flat table of texts that compares whole.
#pragma once

#include <map>
#include <string>

// A text stands as it is, a date as "date 2007-03-05T14:00:00Z", a number as "number 3600".
using Properties = std::map<std::string, std::string>;

// The test fails when the file is no property list of texts, dates and numbers.
Properties ReadMetafile(const std::string& path);
