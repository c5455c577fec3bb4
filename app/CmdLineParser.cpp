// SPDX-License-Identifier: MIT
#include "app/CmdLineParser.h"

#include "foundation/StaticOrder.h"

#include <cwctype>
#include <string_view>

namespace
{

constexpr std::wstring_view kSwitches = L"-/";
constexpr std::wstring_view kSeparators = L" :=";
constexpr wchar_t kQuote = L'"';
constexpr wchar_t kBlank = L' ';
constexpr std::size_t kNone = std::wstring_view::npos;

ZTString ToString(std::wstring_view text)
{
    return ZTString(text.data(), static_cast<int>(text.size()));
}

// Whether the blank at `separator` ends a switch that has no value: after the white space stands another
// switch or nothing.
bool EndsWithoutValue(std::wstring_view text, std::size_t separator)
{
    std::size_t next = separator + 1;
    while (next < text.size() && std::iswspace(static_cast<std::wint_t>(text[next])))
        ++next;
    return next == text.size() || kSwitches.find(text[next]) != kNone;
}

} // namespace

[[gnu::init_priority(kStaticParser)]] CCmdLineParser gCmdLineParser;

CCmdLineParser::~CCmdLineParser() = default;

void CCmdLineParser::Parse(const wchar_t* cmdLine)
{
    if (cmdLine == nullptr)
        return;
    mCmdLine = cmdLine;
    mValues.clear();

    const std::wstring_view text(cmdLine);
    std::size_t position = 0;
    while (position < text.size())
    {
        const std::size_t keySwitch = text.find_first_of(kSwitches, position);
        if (keySwitch == kNone)
            return;
        const std::size_t keyStart = keySwitch + 1;

        const std::size_t separator = text.find_first_of(kSeparators, keyStart);
        const ZTString key = Fold(ToString(text.substr(keyStart, separator - keyStart)));
        if (separator == kNone)
        {
            Insert(key, ZTString());
            return;
        }
        if (text[separator] == kBlank && EndsWithoutValue(text, separator))
        {
            Insert(key, ZTString());
            position = separator + 1;
            continue;
        }

        // White space that EndsWithoutValue looked over is not skipped: the value starts right here.
        std::size_t valueStart = separator + 1;
        wchar_t terminator = kBlank;
        if (valueStart < text.size() && text[valueStart] == kQuote)
        {
            terminator = kQuote;
            ++valueStart;
        }
        const std::size_t valueEnd = text.find(terminator, valueStart);
        Insert(key, ToString(text.substr(valueStart, valueEnd - valueStart)));
        if (valueEnd == kNone)
            return;
        position = valueEnd + 1;
    }
}

bool CCmdLineParser::HasKey(const wchar_t* key) const
{
    return Find(key) != nullptr;
}

bool CCmdLineParser::HasVal(const wchar_t* key) const
{
    const ZTString* value = Find(key);
    return value != nullptr && value->GetLength() != 0;
}

const wchar_t* CCmdLineParser::GetVal(const wchar_t* key) const
{
    const ZTString* value = Find(key);
    return value == nullptr ? nullptr : static_cast<const wchar_t*>(*value);
}

const ZTString* CCmdLineParser::Find(const wchar_t* key) const
{
    const auto found = mValues.find(Fold(key));
    return found == mValues.end() ? nullptr : &found->second;
}

ZTString CCmdLineParser::Fold(ZTString key) const
{
    if (!mCaseSensitive)
        key.MakeLower();
    return key;
}

void CCmdLineParser::Insert(const ZTString& key, const ZTString& value)
{
    if (key.GetLength() != 0)
        mValues.emplace(key, value);
}
