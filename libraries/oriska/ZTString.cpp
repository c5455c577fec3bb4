// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include "libraries/oriska/Widen.h"

namespace
{

constinit CHeapStringManager gManager;

} // namespace

constinit IAtlStringMgr* const gZTStringManager = &gManager;

std::wstring Widen(std::string_view text)
{
    std::wstring wide;
    if (text.empty())
        return wide;
    const int bytes = static_cast<int>(text.size());
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0)));
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

ZTString::ZTString() : CStringW(gZTStringManager) {}

ZTString::ZTString(const wchar_t* text) : CStringW(text, gZTStringManager) {}

ZTString::ZTString(const wchar_t* text, int length) : CStringW(text, length, gZTStringManager) {}

ZTString::ZTString(const char* text) : ZTString()
{
    *this = text;
}

ZTString::ZTString(const CStringW& text) : CStringW(text.GetString(), text.GetLength(), gZTStringManager) {}

ZTString& ZTString::operator=(const CStringW& text)
{
    CStringW::operator=(text);
    return *this;
}

ZTString& ZTString::operator=(const wchar_t* text)
{
    CStringW::operator=(text);
    return *this;
}

ZTString& ZTString::operator=(const char* text)
{
    const std::wstring wide = text != nullptr ? Widen(text) : std::wstring();
    CStringW::operator=(ZTString(wide.data(), static_cast<int>(wide.size())));
    return *this;
}

bool operator<(const ZTString& left, const ZTString& right)
{
    return left.AsView() < right.AsView();
}
