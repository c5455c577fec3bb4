// SPDX-License-Identifier: MIT
// What the program uses of Oriska, the product's library for strings, formatted text, the checksum and
// timers. Everything lives in Oriska.dll (libOriska.so); any thread may call it, a string or a value
// belongs to one thread at a time like any other.
#pragma once

#include "framework/cstringt.h"
#include "oriskaExport.h"

#include <windows.h>

#include <cstdint>
#include <vector>

// The one string manager that every ZTString is made with; usable before any dynamic initialisation.
extern ORISKA_EXPORT IAtlStringMgr* const gZTStringManager;

class PlaceholderValue;

// The wide string of the whole system: the framework's string with the product's formatter.
class ORISKA_EXPORT ZTString : public CStringW
{
public:
    ZTString();
    ZTString(const wchar_t* text); // null gives the empty string
    ZTString(const wchar_t* text, int length);
    ZTString(const char* text); // widened from UTF-8
    ZTString(const CStringW& text);

    ZTString& operator=(const wchar_t* text); // null gives the empty string
    ZTString& operator=(const char* text);

    // Replaces the text by a formatted one; see _StrFormat for the format language. Any number of
    // PlaceholderValue arguments, or things one can be made from.
    template <typename... Values>
    void Format(const wchar_t* format, const Values&... values);
};

// Orders by code units, a prefix before the longer text: the order of every map and set of strings.
ORISKA_EXPORT bool operator<(const ZTString& left, const ZTString& right);

// One typed argument of a format text. It refers to its string and does not own it, so the string must
// outlive the call; it copies as plain data. The second constructor argument is always null.
class ORISKA_EXPORT PlaceholderValue
{
public:
    PlaceholderValue(const ZTString& text, const wchar_t* = nullptr);
    PlaceholderValue(const wchar_t* text, const wchar_t* = nullptr);
    PlaceholderValue(const char* text, const wchar_t* = nullptr);
    PlaceholderValue(unsigned char number, const wchar_t* = nullptr);
    PlaceholderValue(int number, const wchar_t* = nullptr);
    PlaceholderValue(unsigned int number, const wchar_t* = nullptr);
    PlaceholderValue(long number, const wchar_t* = nullptr);
    PlaceholderValue(unsigned long number, const wchar_t* = nullptr);
    PlaceholderValue(long long number, const wchar_t* = nullptr);
    PlaceholderValue(unsigned long long number, const wchar_t* = nullptr);
    PlaceholderValue(double number, const wchar_t* = nullptr);

    // Writes the value to `out`, which holds `capacity` characters. `spec` is "%" and a printf conversion,
    // or null for the value's natural form. Gives the characters written, without a terminator, or -1 when
    // they do not fit or the conversion does not suit the type of the value.
    int Format(wchar_t* out, int capacity, const wchar_t* spec) const;
};

using PlaceholderValues = std::vector<PlaceholderValue>;

// The text of a format. `{n}` or `{n:spec}` stands for argument n, `spec` being a printf conversion without
// its "%"; without n it takes the running index. "{{" gives one "{", a "}" alone stays. An index beyond
// the arguments gives "@@@" and ends the text.
ORISKA_EXPORT ZTString _StrFormat(const wchar_t* format, const PlaceholderValues& values);

// A string resource of a module, loaded at construction; empty text when there is none with that id.
class ORISKA_EXPORT String
{
public:
    String(UINT id, HINSTANCE instance);
    virtual ~String();
    String(const String&) = delete;
    String& operator=(const String&) = delete;

    const wchar_t* mText; // owned by this object, never null
};

// CRC-64/XZ of `byteCount` bytes at `data`; "123456789" gives 0x995DC9BBDF1939FA.
ORISKA_EXPORT std::uint64_t CRC64(const void* data, std::uint64_t byteCount);

// Full path of a file in the program's own folder; the file need not exist.
ORISKA_EXPORT ZTString GetPathInAppFolder(const wchar_t* name);

// Lock-wait recording: a switch, a start mark (never 0), the time since a mark in hundredths of a
// millisecond, and the book of waits by label. GetLockWaits gives the book as text, one label a line.
extern ORISKA_EXPORT bool gbRecordLockWaits;
ORISKA_EXPORT std::int64_t TimerStart();
ORISKA_EXPORT DWORD TimerEnd100thms(std::int64_t start);
ORISKA_EXPORT void RecordLockWait(const wchar_t* label, DWORD wait);
ORISKA_EXPORT ZTString GetLockWaits();

template <typename... Values>
void ZTString::Format(const wchar_t* format, const Values&... values)
{
    *this = _StrFormat(format, {PlaceholderValue(values)...});
}
