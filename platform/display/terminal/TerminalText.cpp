// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalText.h"

#include <langinfo.h>

#include <array>
#include <cerrno>

namespace platform
{

namespace
{

constexpr const char* kWide = "WCHAR_T";
constexpr const char* kPlainest = "ASCII";
const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);

void AppendHarmless(std::wstring& text, wchar_t character)
{
    const bool isControl =
        (character < 0x20 && character != L'\n' && character != L'\t') || character == 0x7F;
    const bool isC1Control = character >= 0x80 && character < 0xA0;
    if (isControl)
    {
        text += L'^';
        text += static_cast<wchar_t>(character ^ 0x40);
    }
    else
        text += isC1Control ? L'?' : character;
}

// Converts all of the input; `stepOver` is called for a unit that cannot be converted and moves the input on.
template <typename StepOver>
std::string Convert(iconv_t converter, std::string_view bytes, StepOver stepOver)
{
    std::string converted;
    std::array<char, 4096> buffer;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(bytes.data());
    std::size_t inLeft = bytes.size();
    while (inLeft > 0)
    {
        char* out = buffer.data();
        std::size_t outLeft = buffer.size();
        const std::size_t result = iconv(converter, &in, &inLeft, &out, &outLeft);
        const int error = errno;
        converted.append(buffer.data(), buffer.size() - outLeft);
        if (result == static_cast<std::size_t>(-1) && error != E2BIG)
            stepOver(converted, in, inLeft);
    }
    return converted;
}

} // namespace

std::wstring HarmlessText::Next(std::wstring_view part)
{
    std::wstring text;
    text.reserve(part.size());
    for (const wchar_t character : part)
    {
        if (mReturnWaits && character != L'\n')
            AppendHarmless(text, L'\r');
        mReturnWaits = character == L'\r';
        if (!mReturnWaits)
            AppendHarmless(text, character);
    }
    return text;
}

TerminalEncoding::TerminalEncoding() : mLocale(newlocale(LC_CTYPE_MASK, "", nullptr))
{
    // An unknown locale leaves the plainest encoding.
    if (mLocale == nullptr)
        mLocale = newlocale(LC_CTYPE_MASK, "C", nullptr);
    const std::string name = nl_langinfo_l(CODESET, mLocale);
    mEncoder = iconv_open((name + "//TRANSLIT").c_str(), kWide);
    if (mEncoder == kNoConverter)
        mEncoder = iconv_open(kPlainest, kWide);
    mDecoder = iconv_open(kWide, name.c_str());
    if (mDecoder == kNoConverter)
        mDecoder = iconv_open(kWide, kPlainest);
}

TerminalEncoding::~TerminalEncoding()
{
    iconv_close(mEncoder);
    iconv_close(mDecoder);
    freelocale(mLocale);
}

std::string TerminalEncoding::Encode(std::wstring_view text) const
{
    // The similar characters are those of the calling thread's locale.
    const locale_t former = uselocale(mLocale);
    std::string encoded =
        Convert(mEncoder, {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)},
                [](std::string& converted, char*& in, std::size_t& inLeft)
                {
                    converted += '?';
                    in += sizeof(wchar_t);
                    inLeft -= sizeof(wchar_t);
                });
    uselocale(former);
    return encoded;
}

std::wstring TerminalEncoding::Decode(std::string_view bytes) const
{
    static constexpr wchar_t kUnreadable = 0xFFFD;
    const std::string decoded =
        Convert(mDecoder, bytes,
                [](std::string& converted, char*& in, std::size_t& inLeft)
                {
                    converted.append(reinterpret_cast<const char*>(&kUnreadable), sizeof(kUnreadable));
                    ++in;
                    --inLeft;
                });
    std::wstring text(decoded.size() / sizeof(wchar_t), L'\0');
    decoded.copy(reinterpret_cast<char*>(text.data()), decoded.size());
    return text;
}

} // namespace platform
