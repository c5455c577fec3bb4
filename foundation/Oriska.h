// SPDX-License-Identifier: MIT
// What the program uses of Oriska, the product's library for strings, formatted text, the checksum and
// timers. Everything lives in Oriska.dll (libOriska.so); any thread may call it, a string or a value
// belongs to one thread at a time like any other.
#pragma once

#include "framework/cstringt.h"
#include "oriskaExport.h"

#include <windows.h>

#include <cstdint>
#include <string_view>
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

    ZTString& operator=(const CStringW& text);
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
// outlive the call; it copies as plain data. The second constructor argument is always null. A null text
// stands for the empty one.
class ORISKA_EXPORT PlaceholderValue
{
public:
    PlaceholderValue(const CStringW& text, const wchar_t* = nullptr); // a ZTString is one
    PlaceholderValue(const wchar_t* text, const wchar_t* = nullptr);
    PlaceholderValue(const char* text, const wchar_t* = nullptr); // UTF-8
    PlaceholderValue(unsigned char number, const wchar_t* = nullptr) : PlaceholderValue(unsigned{number}) {}
    PlaceholderValue(int number, const wchar_t* = nullptr) : PlaceholderValue(number, eKind::Signed) {}
    PlaceholderValue(unsigned int number, const wchar_t* = nullptr)
        : PlaceholderValue(number, eKind::Unsigned)
    {
    }
    PlaceholderValue(long number, const wchar_t* = nullptr) : PlaceholderValue(number, eKind::Signed) {}
    PlaceholderValue(unsigned long number, const wchar_t* = nullptr)
        : PlaceholderValue(number, eKind::Unsigned)
    {
    }
    PlaceholderValue(long long number, const wchar_t* = nullptr) : PlaceholderValue(number, eKind::Signed) {}
    PlaceholderValue(unsigned long long number, const wchar_t* = nullptr)
        : PlaceholderValue(number, eKind::Unsigned)
    {
    }
    PlaceholderValue(double number, const wchar_t* = nullptr)
        : mValue{.real = number}, mSize(sizeof number), mKind(eKind::Double)
    {
    }

    // Writes the value to `out`, which holds `capacity` characters. `spec` is "%" and a printf conversion,
    // or null for the value's natural form. Gives the characters written, no terminator among them, or -1
    // when they do not fit or the conversion does not suit the type of the value.
    int Format(wchar_t* out, int capacity, const wchar_t* spec) const;

private:
    friend ORISKA_EXPORT ZTString _StrFormat(const wchar_t* format,
                                             const std::vector<PlaceholderValue>& values);

    enum class eKind : unsigned char
    {
        Wide,
        Narrow,
        Signed,
        Unsigned,
        Double,
    };

    template <typename Integer>
    PlaceholderValue(Integer number, eKind kind)
        : mValue{.integer = static_cast<std::uint64_t>(number)}, mSize(sizeof number), mKind(kind)
    {
    }

    // `spec` comes without its "%"; an empty one is the natural form. False: nothing was added.
    bool AppendTo(ZTString& out, std::wstring_view spec) const;
    bool AppendInteger(ZTString& out, const struct FormatSpec& spec) const;

    union
    {
        const wchar_t* wide;
        const char* narrow;
        std::uint64_t integer; // a signed one is sign-extended
        double real;
    } mValue;
    std::size_t mSize; // characters of a text, bytes of a number
    eKind mKind;
};

using PlaceholderValues = std::vector<PlaceholderValue>;

// The text of a format. `{n}` or `{n:spec}` stands for argument n, `spec` being a printf conversion without
// its
// "%", of those that the product's texts use: integers take d u X, texts s S, doubles f, with the flags "-"
// and "0", width and precision (each cut down to 500). Without n it takes the running index, which every
// placeholder moves on by one. "{{" gives one "{", a "}" alone stays, and so does a "{" that does not begin a
// placeholder. An index beyond the arguments gives "@@@" and ends the text. Any other spec gives the value's
// natural form.
ORISKA_EXPORT ZTString _StrFormat(const wchar_t* format, const PlaceholderValues& values);

// A string resource of a module (null: the program), loaded at construction; the empty text when there is
// none with that id.
class ORISKA_EXPORT String
{
public:
    String(UINT id, HINSTANCE instance);
    virtual ~String();
    String(const String&) = delete;
    String& operator=(const String&) = delete;

    const wchar_t* mText; // owned by this object, never null

private:
    ZTString mStorage;
};

// CRC-64/XZ of `byteCount` bytes at `data`; "123456789" gives 0x995DC9BBDF1939FA.
ORISKA_EXPORT std::uint64_t CRC64(const void* data, std::uint64_t byteCount);

// Full path of a file in the program's own folder; the file need not exist.
ORISKA_EXPORT ZTString GetPathInAppFolder(const wchar_t* name);

// Lock-wait recording: a switch, to be set while no other thread runs; a start mark, never 0; the time since
// a mark in hundredths of a millisecond, which stops at its largest value; and the book of waits by label.
extern ORISKA_EXPORT bool gbRecordLockWaits;
ORISKA_EXPORT std::int64_t TimerStart();
ORISKA_EXPORT DWORD TimerEnd100thms(std::int64_t start);
// Adds one wait to the book. Any thread, also while static objects come and go.
ORISKA_EXPORT void RecordLockWait(const wchar_t* label, DWORD wait);
// The book as text, ordered by label, one line each, such as "Queue: 3 waits, 1.25 ms, longest 0.75 ms\n".
ORISKA_EXPORT ZTString GetLockWaits();

template <typename... Values>
void ZTString::Format(const wchar_t* format, const Values&... values)
{
    *this = _StrFormat(format, {PlaceholderValue(values)...});
}
