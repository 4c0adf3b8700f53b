// tests/indexers/metafile_reader.cpp: reads a metafile with libxml2, which had no part in writing it.
#include "tests/indexers/metafile_reader.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <string_view>

namespace {

std::string Utf8(const xmlChar* text)
{
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

std::string ContentOf(const xmlNode* node)
{
    const std::unique_ptr<xmlChar, decltype(xmlFree)> text(xmlNodeGetContent(node), xmlFree);
    return Utf8(text.get());
}

std::string ValueOf(const xmlNode* node)
{
    const std::string kind = Utf8(node->name);
    if (kind == "string")
        return ContentOf(node);
    if (kind == "date")
        return "date " + ContentOf(node);
    if (kind == "integer")
        return "number " + ContentOf(node);
    ADD_FAILURE() << "a " << kind << " in a metafile";
    return "";
}

}  // namespace

Properties ReadMetafile(const std::string& path)
{
    Properties properties;
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET),
                                                                  xmlFreeDoc);
    xmlNode* root = document == nullptr ? nullptr : xmlDocGetRootElement(document.get());
    xmlNode* dictionary = root == nullptr ? nullptr : xmlFirstElementChild(root);
    if (dictionary == nullptr || Utf8(dictionary->name) != "dict") {
        ADD_FAILURE() << path << " is no property list of a dictionary";
        return properties;
    }
    for (xmlNode* key = xmlFirstElementChild(dictionary); key != nullptr;) {
        xmlNode* value = xmlNextElementSibling(key);
        if (Utf8(key->name) != "key" || value == nullptr) {
            ADD_FAILURE() << path << " has a key without a value";
            break;
        }
        EXPECT_TRUE(properties.emplace(ContentOf(key), ValueOf(value)).second) << ContentOf(key) << " comes twice";
        key = xmlNextElementSibling(value);
    }
    return properties;
}
