// SPDX-License-Identifier: MIT
// Any bytes, as UTF-8 and as wide text: none is lost, all is read as ICU reads it, nothing unsafe is shown.
#include "tests/fuzz/Require.h"
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <unicode/utf8.h>

#include <cstring>

static bool IsSurrogate(wchar_t character)
{
    return character >= 0xD800 && character <= 0xDFFF;
}

static std::wstring WellFormed(std::string_view bytes)
{
    std::wstring wide;
    const auto length = static_cast<int32_t>(bytes.size());
    for (int32_t at = 0; at < length;)
    {
        UChar32 point = 0;
        U8_NEXT(bytes.data(), at, length, point);
        if (point >= 0)
            wide += static_cast<wchar_t>(point);
    }
    return wide;
}

static void CheckShown(const std::wstring& wide)
{
    const std::wstring safe = text::SafeToShow(wide, L"\n");
    Require(safe.size() == wide.size() && text::SafeToShow(safe, L"\n") == safe);
    for (const wchar_t character : safe)
        Require(character == L'\n' || text::IsSafeToShow(static_cast<char32_t>(character)));
}

static void Fuzz(std::string_view bytes)
{
    std::wstring wide = text::FromUtf8(bytes);
    Require(text::ToUtf8(wide) == bytes);
    Require(text::FromUtf16(text::ToUtf16(wide)) == wide);
    CheckShown(wide);
    std::erase_if(wide, IsSurrogate);
    Require(wide == WellFormed(bytes));

    std::wstring any(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(any.data(), bytes.data(), any.size() * sizeof(wchar_t));
    CheckShown(any);
    text::ToUtf16(any);
    const std::string written = text::ToUtf8(any);
    Require(text::ToUtf8(text::FromUtf8(written)) == written);
}
