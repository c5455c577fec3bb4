// SPDX-License-Identifier: MIT
#include "platform/kernel/Error.h"
#include "platform/kernel/Locale.h"
#include "winnls.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <memory>
#include <string>
#include <vector>

namespace
{

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Null with ERROR_INVALID_PARAMETER for a code page that the layer does not know.
Converter OpenConverter(UINT codePage)
{
    if (codePage != CP_ACP && codePage != CP_UTF8)
    {
        FailWith(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(codePage == CP_UTF8 ? "UTF-8" : UserCharset().c_str(), &error));
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
    {
        return;
    }
    *error = U_ZERO_ERROR;
    const auto* bytes = static_cast<const char*>(context);
    for (int32_t unit = 0; unit < units; ++unit)
    {
        ucnv_cbFromUWriteBytes(arguments, bytes, static_cast<int32_t>(std::strlen(bytes)), 0, error);
    }
}

// The end of both calls: the length alone when `size` is 0, else the whole text or ERROR_INSUFFICIENT_BUFFER.
template <typename Text>
int Deliver(const Text& text, typename Text::value_type* buffer, int size)
{
    if (size != 0)
    {
        if (text.size() > static_cast<std::size_t>(size))
        {
            FailWith(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        std::copy(text.begin(), text.end(), buffer);
    }
    return static_cast<int>(text.size());
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
    {
        return 0;
    }
    // The terminator is part of a text whose length is not given.
    const std::wstring_view text(wide, wideLength == -1 ? std::wcslen(wide) + 1
                                                        : static_cast<std::size_t>(wideLength));
    const auto* points = reinterpret_cast<const UChar32*>(text.data());
    const auto count = static_cast<int32_t>(text.size());
    constexpr UChar32 kReplacement = 0xFFFD;
    UErrorCode error = U_ZERO_ERROR;
    std::u16string units(text.size() * 2, u'\0');
    int32_t length = 0;
    u_strFromUTF32WithSub(units.data(), static_cast<int32_t>(units.size()), &length, points, count,
                          kReplacement, nullptr, &error);
    units.resize(static_cast<std::size_t>(length));

    error = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.get(), WriteDefault, "?", nullptr, nullptr, &error);
    std::string bytes(
        static_cast<std::size_t>(UCNV_GET_MAX_BYTES_FOR_STRING(length, ucnv_getMaxCharSize(converter.get()))),
        '\0');
    length = ucnv_fromUChars(converter.get(), bytes.data(), static_cast<int32_t>(bytes.size()), units.data(),
                             length, &error);
    bytes.resize(static_cast<std::size_t>(length));
    return Deliver(bytes, narrow, narrowSize);
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR narrow, int narrowLength, LPWSTR wide,
                        int wideSize)
{
    if (flags != 0 || narrow == nullptr || narrowLength == 0 || narrowLength < -1 || wideSize < 0)
    {
        FailWith(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const Converter converter = OpenConverter(codePage);
    if (converter == nullptr)
    {
        return 0;
    }
    const std::size_t bytes =
        narrowLength == -1 ? std::strlen(narrow) + 1 : static_cast<std::size_t>(narrowLength);
    std::u16string units(bytes * 2, u'\0'); // no byte gives more
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter.get(), units.data(), static_cast<int32_t>(units.size()),
                                         narrow, static_cast<int32_t>(bytes), &error);
    std::vector<UChar32> points(static_cast<std::size_t>(length));
    int32_t count = 0;
    error = U_ZERO_ERROR;
    u_strToUTF32(points.data(), length, &count, units.data(), length, &error);
    return Deliver(std::wstring(points.begin(), points.begin() + count), wide, wideSize);
}
