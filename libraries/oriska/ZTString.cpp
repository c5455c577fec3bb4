// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include "text/Unicode.h"

namespace
{

constinit CHeapStringManager gManager;

} // namespace

constinit IAtlStringMgr* const gZTStringManager = &gManager;

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
    const std::wstring wide = text != nullptr ? text::FromUtf8(text) : std::wstring();
    CStringW::operator=(ZTString(wide.data(), static_cast<int>(wide.size())));
    return *this;
}

bool operator<(const ZTString& left, const ZTString& right)
{
    return left.AsView() < right.AsView();
}
