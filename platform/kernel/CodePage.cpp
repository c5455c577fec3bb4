// SPDX-License-Identifier: MIT
#include "base/Owned.h"
#include "platform/kernel/Error.h"
#include "platform/kernel/Locale.h"
#include "winnls.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

using namespace platform;

namespace
{

using Converter = Owned<UConverter, ucnv_close>;

// Null with ERROR_INVALID_PARAMETER for a code page that the layer does not know.
Converter OpenConverter(UINT codePage)
{
    if (codePage != CP_ACP)
    {
        FailWith(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(UserCharset().c_str(), &error));
    if (converter == nullptr)
    {
        error = U_ZERO_ERROR;
        converter.reset(ucnv_open("US-ASCII", &error));
    }
    return converter;
}

// Writes the default character for each UTF-16 unit that the code page lacks: two for an astral character,
// as Windows does. `context` is the default character's bytes.
void WriteDefault(const void* context, UConverterFromUnicodeArgs* arguments, const UChar*, int32_t units,
                  UChar32, UConverterCallbackReason reason, UErrorCode* error)
{
    if (reason > UCNV_IRREGULAR)
        return;
    *error = U_ZERO_ERROR;
    const auto* bytes = static_cast<const char*>(context);
    for (int32_t unit = 0; unit < units; ++unit)
        ucnv_cbFromUWriteBytes(arguments, bytes, static_cast<int32_t>(std::strlen(bytes)), 0, error);
}

// Converts by pieces, since a text may be as long as memory: each piece of bytes goes to `write`, which is
// called with a buffer that it may not keep and says whether to go on.
template <typename Write>
void Encode(UConverter& converter, std::wstring_view text, Write write)
{
    constexpr std::size_t kPiece = 4096;
    constexpr UChar32 kReplacement = 0xFFFD; // for what is not a code point
    std::array<UChar, 2 * kPiece> units;
    std::array<char, 4 * kPiece> bytes;
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setFromUCallBack(&converter, WriteDefault, "?", nullptr, nullptr, &error);
    do
    {
        const std::wstring_view piece = text.substr(0, kPiece);
        text.remove_prefix(piece.size());
        int32_t count = 0;
        error = U_ZERO_ERROR;
        u_strFromUTF32WithSub(units.data(), static_cast<int32_t>(units.size()), &count,
                              reinterpret_cast<const UChar32*>(piece.data()),
                              static_cast<int32_t>(piece.size()), kReplacement, nullptr, &error);
        const UChar* source = units.data();
        do
        {
            char* end = bytes.data();
            error = U_ZERO_ERROR;
            ucnv_fromUnicode(&converter, &end, bytes.data() + bytes.size(), &source, units.data() + count,
                             nullptr, text.empty(), &error);
            if (!write(std::string_view(bytes.data(), end)))
                return;
        } while (error == U_BUFFER_OVERFLOW_ERROR);
    } while (!text.empty());
}

} // namespace

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideLength, LPSTR narrow,
                        int narrowSize, LPCSTR defaultCharacter, BOOL* usedDefault)
{
    if (flags != 0 || wide == nullptr || wideLength == 0 || wideLength < -1 || narrowSize < 0 ||
        defaultCharacter != nullptr || usedDefault != nullptr)
    {
        FailWith(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const Converter converter = OpenConverter(codePage);
    if (converter == nullptr)
        return 0;
    // The terminator is part of a text whose length is not given.
    const std::wstring_view text(wide, wideLength == -1 ? std::wcslen(wide) + 1
                                                        : static_cast<std::size_t>(wideLength));
    std::size_t length = 0;
    bool fits = true;
    Encode(*converter, text,
           [&](std::string_view bytes)
           {
               const std::size_t room = static_cast<std::size_t>(narrowSize) - length;
               fits = narrowSize == 0 || bytes.size() <= room;
               if (narrowSize != 0)
                   bytes.copy(narrow + length, room);
               length += bytes.size();
               return fits;
           });
    if (!fits)
    {
        FailWith(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    return static_cast<int>(length);
}
