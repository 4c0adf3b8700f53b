// client/store/translate.cpp: the character-set calls on caller's buffers.
#include "client/store/charset_codec.h"
#include "platform/store.h"

namespace {

using namespace pavex;

struct TranslationRow {
    WORD mode;
    size_t (*convert)(std::string_view source, char* target, size_t room);
};

// The native character set of this platform is UTF-8.
constexpr TranslationRow kTranslations[] = {
    {kTranslateNativeToScs, ConvertCharacters<Utf8Codec, ScsCodec>},
    {kTranslateScsToNative, ConvertCharacters<ScsCodec, Utf8Codec>},
    {kTranslateScsToUtf16, ConvertCharacters<ScsCodec, Utf16Codec>},
    {kTranslateUtf16ToScs, ConvertCharacters<Utf16Codec, ScsCodec>},
    {kTranslateScsToUtf8, ConvertCharacters<ScsCodec, Utf8Codec>},
};

}  // namespace

WORD OSTranslate(WORD mode, const void* source, WORD length, void* target, WORD size)
{
    if (source == nullptr || target == nullptr)
        return 0;
    for (const TranslationRow& row : kTranslations) {
        if (row.mode == mode)
            return static_cast<WORD>(
                row.convert({static_cast<const char*>(source), length}, static_cast<char*>(target), size));
    }
    return 0;
}

DWORD OSUnicodeToSCS32(const uint16_t* source, DWORD sourceBytes, char* target, DWORD targetSize)
{
    if (source == nullptr || target == nullptr)
        return 0;
    const void* bytes = source;
    return static_cast<DWORD>(
        ConvertCharacters<Utf16Codec, ScsCodec>({static_cast<const char*>(bytes), sourceBytes}, target, targetSize));
}

const char* OSNextCharacter(const char* text)
{
    if (text == nullptr || *text == 0)
        return text;
    // No character is longer than six bytes, and none goes past the terminator.
    return text + ScsCodec::Decode({text, strnlen(text, ScsCodec::kMostBytes)}).bytes;
}
