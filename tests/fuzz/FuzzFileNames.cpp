// SPDX-License-Identifier: MIT
// Any text, cleaned with any replacement, is a file's name on both systems and stays as it is when cleaned.
#include "foundation/Kelvane.h"
#include "tests/fuzz/Require.h"
#include "text/Unicode.h"

static void Fuzz(std::string_view text)
{
    constexpr std::size_t kLongest = 255 - 4; // with ".zip"
    const std::size_t end = text.substr(0, 8).find('\n');
    const bool hasReplacement = end != std::string_view::npos;
    const std::wstring replacement = hasReplacement ? text::FromUtf8(text.substr(0, end)) : L"_";
    ZTString name(text::FromUtf8(hasReplacement ? text.substr(end + 1) : text).c_str());

    RemoveIllegalFileSystemCharacters(name, replacement.c_str());
    const std::wstring cleaned(name.AsView());
    const std::string bytes = text::ToUtf8(cleaned);
    Require(!bytes.empty() && bytes.size() <= kLongest && cleaned != L"." && cleaned != L"..");
    Require(text::FromUtf8(bytes) == cleaned &&
            cleaned.find_first_of(L"<>:\"/\\|?*\x7f") == std::wstring::npos);
    Require(cleaned.back() != L'.' && cleaned.back() != L' ');
    for (const wchar_t character : cleaned)
        Require(character >= L' ' && (character < 0xD800 || character > 0xDFFF));
    RemoveIllegalFileSystemCharacters(name, replacement.c_str());
    Require(name.AsView() == cleaned);
}
