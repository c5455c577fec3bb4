// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalText.h"

#include "platform/kernel/Locale.h"
#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <unicode/ucnv_cb.h>

namespace platform
{

namespace
{

constexpr char16_t kUnreadable = 0xDFFF; // a lone surrogate, which no character set has

void MarkAsUnreadable(const void*, UConverterToUnicodeArgs* arguments, const char*, std::int32_t,
                      UConverterCallbackReason reason, UErrorCode* error)
{
    if (reason > UCNV_IRREGULAR)
        return; // the converter is reset or closed
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, &kUnreadable, 1, 0, error);
}

} // namespace

std::wstring HarmlessText::Next(std::wstring_view part)
{
    std::wstring text;
    text.reserve(part.size());
    for (const wchar_t character : part)
    {
        if (mReturnWaits && character != L'\n')
            text += L'\r';
        mReturnWaits = character == L'\r';
        if (!mReturnWaits)
            text += character;
    }
    return text::SafeToShow(text, L"\n\t");
}

TerminalEncoding::TerminalEncoding()
    : mCharset(UserCharset()), mIsUtf8(ucnv_compareNames(mCharset.c_str(), "UTF-8") == 0)
{
    UErrorCode error = U_ZERO_ERROR;
    mDecoder.reset(ucnv_open(mCharset.c_str(), &error));
    error = U_ZERO_ERROR;
    if (mDecoder == nullptr)
        mDecoder.reset(ucnv_open("US-ASCII", &error));
    ucnv_setToUCallBack(mDecoder.get(), MarkAsUnreadable, nullptr, nullptr, nullptr, &error);
}

std::string TerminalEncoding::Encode(std::wstring_view text) const
{
    if (mIsUtf8 || text.empty())
        return text::ToUtf8(text);
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::wstring TerminalEncoding::Decode(std::string_view bytes, bool isEnd)
{
    constexpr std::size_t kMostWaiting = 16; // of a character begun before
    std::u16string units(bytes.size() + kMostWaiting, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const char* in = bytes.data();
    char16_t* out = units.data();
    ucnv_toUnicode(mDecoder.get(), &out, out + units.size(), &in, in + bytes.size(), nullptr,
                   static_cast<UBool>(isEnd), &error);
    std::wstring text = text::FromUtf16({units.data(), static_cast<std::size_t>(out - units.data())});
    Wipe(units);
    return text;
}

bool TerminalEncoding::IsText(std::wstring_view line)
{
    return line.find(L'\0') == std::wstring_view::npos && line.find(kUnreadable) == std::wstring_view::npos;
}

std::wstring TerminalEncoding::Refusal() const
{
    return L"Not taken: that line is not text in " + text::FromUtf8(mCharset) + L". LANG says what it is.";
}

void AddToSecret(std::wstring& text, wchar_t character)
{
    if (text.size() == text.capacity())
        Grow(text, 2 * text.size());
    text += character;
}

std::wstring TypedText(std::wstring_view keys)
{
    constexpr wchar_t kEscape = L'\x1b';
    std::wstring text;
    text.reserve(keys.size()); // a password leaves no copies while the text grows
    while (!keys.empty())
    {
        const wchar_t key = keys.front();
        keys.remove_prefix(1);
        if (key == kEscape && (keys.starts_with(L'[') || keys.starts_with(L'O')))
        {
            // ECMA-48: parameters up to a final character.
            keys.remove_prefix(1);
            while (!keys.empty() && (keys.front() < L'@' || keys.front() > L'~'))
                keys.remove_prefix(1);
            keys.remove_prefix(keys.empty() ? 0 : 1);
        }
        else if ((key == L'\x7f' || key == L'\b') && !text.empty())
            text.pop_back();
        else if (key == L'\x15') // Ctrl-U
            text.clear();
        else if (key >= L' ' && key != L'\x7f')
            text += key;
    }
    return text;
}

} // namespace platform
