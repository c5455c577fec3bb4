// SPDX-License-Identifier: MIT
// The framework's string: text of any length with a terminator after it, one pointer wide. Each string owns
// its text, which it gets from a string manager and gives back to the same one, so strings cross the borders
// of shared libraries. A string belongs to one thread at a time. When memory ends std::bad_alloc is thrown.
#pragma once

#include "text/FoldCase.h"

#include <windows.h>

#include <algorithm>
#include <climits>
#include <compare>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <utility>

class IAtlStringMgr;

// What lies in front of a string's characters.
struct CStringData
{
    IAtlStringMgr* manager; // where the block came from
    int length;             // characters, without the terminator
    int allocLength; // characters there is room for, without the terminator; 0 for the shared empty text
};

// Where strings get their memory. Any thread may call it.
class IAtlStringMgr
{
public:
    // A block for `bytes` bytes after the data, or null; the caller fills in the data.
    virtual CStringData* Allocate(std::size_t bytes) noexcept = 0;
    // Moves a block to another size; null leaves the old one as it was.
    virtual CStringData* Reallocate(CStringData* block, std::size_t bytes) noexcept = 0;
    virtual void Free(CStringData* block) noexcept = 0;
    // The empty text of all this manager's strings; it is never written to.
    virtual CStringData* GetNilString() noexcept = 0;

protected:
    ~IAtlStringMgr() = default;
};

// A manager on the C heap. As a static object it needs no dynamic initialisation and is never destroyed, so
// strings may live before and after everything else.
class CHeapStringManager final : public IAtlStringMgr
{
public:
    constexpr CHeapStringManager() noexcept : mNil{{this, 0, 0}, {}} {}

    CStringData* Allocate(std::size_t bytes) noexcept override { return Reallocate(nullptr, bytes); }
    // Inlined, the compiler would warn of a reallocation of the nil string, which no caller asks for.
    [[gnu::noinline]] CStringData* Reallocate(CStringData* block, std::size_t bytes) noexcept override
    {
        return static_cast<CStringData*>(std::realloc(block, sizeof(CStringData) + bytes));
    }
    void Free(CStringData* block) noexcept override { std::free(block); }
    CStringData* GetNilString() noexcept override { return &mNil.data; }

private:
    struct
    {
        CStringData data;
        wchar_t terminator;
    } mNil;
};

inline constinit CHeapStringManager gFrameworkStringManager;

template <typename XCHAR>
class CStringT
{
public:
    using View = std::basic_string_view<XCHAR>;

    explicit CStringT(IAtlStringMgr* manager = &gFrameworkStringManager) noexcept
        : mData(Text(manager->GetNilString()))
    {
    }
    CStringT(const XCHAR* text, IAtlStringMgr* manager = &gFrameworkStringManager) : CStringT(manager)
    {
        Assign(ViewOf(text));
    }
    CStringT(const XCHAR* text, int length, IAtlStringMgr* manager = &gFrameworkStringManager)
        : CStringT(manager)
    {
        Assign(View(text, static_cast<std::size_t>(length)));
    }
    CStringT(const CStringT& other) : CStringT(other.GetManager()) { Assign(other.AsView()); }
    CStringT(CStringT&& other) noexcept : CStringT(other.GetManager()) { std::swap(mData, other.mData); }
    ~CStringT() { Release(); }

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Assign takes a part of this text as well
    CStringT& operator=(const CStringT& other)
    {
        Assign(other.AsView());
        return *this;
    }
    CStringT& operator=(CStringT&& other) noexcept
    {
        std::swap(mData, other.mData);
        return *this;
    }
    CStringT& operator=(const XCHAR* text)
    {
        Assign(ViewOf(text));
        return *this;
    }

    int GetLength() const noexcept { return Data()->length; }
    int GetAllocLength() const noexcept { return Data()->allocLength; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    IAtlStringMgr* GetManager() const noexcept { return Data()->manager; }
    const XCHAR* GetString() const noexcept { return mData; }
    operator const XCHAR*() const noexcept { return mData; }
    View AsView() const noexcept { return {mData, Size()}; }
    // The terminator may be read, too.
    XCHAR operator[](int index) const noexcept { return mData[index]; }

    // Gives the text's memory back.
    void Empty() noexcept
    {
        IAtlStringMgr* manager = GetManager();
        Release();
        mData = Text(manager->GetNilString());
    }

    // Room to write into, for at least `minLength` characters and a terminator, holding the present text.
    // ReleaseBuffer must follow before any other operation.
    XCHAR* GetBuffer(int minLength)
    {
        Reserve(minLength > 1 ? static_cast<std::size_t>(minLength) : 1);
        return mData;
    }
    // Ends the writing; -1 takes the length up to the first NUL.
    void ReleaseBuffer(int newLength = -1)
    {
        SetLength(newLength < 0 ? std::char_traits<XCHAR>::length(mData)
                                : static_cast<std::size_t>(newLength));
    }

    // The text may be a part of this string. Growth is geometric: a sequence of appends costs linear time.
    void Append(const XCHAR* text, int length)
    {
        const auto count = static_cast<std::size_t>(length);
        const std::size_t oldSize = Size();
        const bool own = !std::less<>()(text, mData) && !std::less<>()(mData + oldSize, text);
        const std::ptrdiff_t offset = own ? text - mData : 0;
        if (oldSize + count > static_cast<std::size_t>(GetAllocLength()))
            Reserve(std::max(oldSize + count, std::min(oldSize + oldSize / 2, kMaxLength)));
        if (count == 0)
            return;
        std::char_traits<XCHAR>::move(mData + oldSize, own ? mData + offset : text, count);
        SetLength(oldSize + count);
    }
    CStringT& operator+=(const CStringT& text)
    {
        Append(text, text.GetLength());
        return *this;
    }
    CStringT& operator+=(const XCHAR* text)
    {
        const View view = ViewOf(text);
        Append(view.data(), static_cast<int>(view.size()));
        return *this;
    }
    CStringT& operator+=(XCHAR character)
    {
        if (GetLength() == GetAllocLength())
            Append(&character, 1);
        else
        {
            mData[GetLength()] = character;
            SetLength(Size() + 1);
        }
        return *this;
    }

    // Index of the first occurrence at or after `start`, or -1.
    int Find(const XCHAR* text, int start = 0) const noexcept
    {
        return Index(AsView().find(text, ToSize(start)));
    }
    int Find(XCHAR character, int start = 0) const noexcept
    {
        return Index(AsView().find(character, ToSize(start)));
    }

    // Parts of the text; a place or a count outside it is cut down to it.
    CStringT Left(int count) const { return Part(0, ToSize(count)); }
    CStringT Mid(int first) const { return Part(ToSize(first), Size()); }
    CStringT Mid(int first, int count) const { return Part(ToSize(first), ToSize(count)); }

    // Take characters of a set off the ends; without a set, white space.
    CStringT& TrimLeft(const XCHAR* set = kWhiteSpace)
    {
        const std::size_t first = AsView().find_first_not_of(set);
        Assign(AsView().substr(std::min(first, Size())));
        return *this;
    }
    CStringT& TrimRight(const XCHAR* set = kWhiteSpace)
    {
        Assign(AsView().substr(0, AsView().find_last_not_of(set) + 1));
        return *this;
    }
    CStringT& Trim(const XCHAR* set = kWhiteSpace) { return TrimRight(set).TrimLeft(set); }

    // Lower case of every alphabet, the same in every locale.
    CStringT& MakeLower()
    {
        if (!IsEmpty())
            text::FoldCase(mData, Size());
        return *this;
    }

    // Replaces every occurrence of `old`, which is not empty; gives their number.
    int Replace(const XCHAR* old, const XCHAR* replacement)
    {
        const View from = ViewOf(old);
        const View to = ViewOf(replacement);
        CStringT result(GetManager());
        int count = 0;
        std::size_t done = 0;
        for (std::size_t found; !from.empty() && (found = AsView().find(from, done)) != View::npos;
             done = found + from.size(), ++count)
        {
            result.Append(mData + done, static_cast<int>(found - done));
            result.Append(to.data(), static_cast<int>(to.size()));
        }
        if (count != 0)
        {
            result.Append(mData + done, static_cast<int>(Size() - done));
            std::swap(mData, result.mData);
        }
        return count;
    }

    // Negative, 0 or positive as this text comes before, equals or comes after the other, by code units.
    int Compare(const XCHAR* text) const noexcept { return AsView().compare(ViewOf(text)); }

    friend CStringT operator+(const CStringT& left, const CStringT& right)
    {
        return Concatenate(left.AsView(), right.AsView(), left.GetManager());
    }
    friend CStringT operator+(const CStringT& left, const XCHAR* right)
    {
        return Concatenate(left.AsView(), ViewOf(right), left.GetManager());
    }
    friend CStringT operator+(const XCHAR* left, const CStringT& right)
    {
        return Concatenate(ViewOf(left), right.AsView(), right.GetManager());
    }
    friend bool operator==(const CStringT& left, const CStringT& right) noexcept
    {
        return left.AsView() == right.AsView();
    }
    friend bool operator==(const CStringT& left, const XCHAR* right) noexcept
    {
        return left.Compare(right) == 0;
    }
    friend auto operator<=>(const CStringT& left, const CStringT& right) noexcept
    {
        return left.AsView() <=> right.AsView();
    }
    friend auto operator<=>(const CStringT& left, const XCHAR* right) noexcept
    {
        return left.AsView() <=> ViewOf(right);
    }

private:
    static constexpr XCHAR kWhiteSpace[] = {' ', '\t', '\n', '\v', '\f', '\r', 0};
    static constexpr std::size_t kMaxLength = INT_MAX - 1;

    static XCHAR* Text(CStringData* data) noexcept { return reinterpret_cast<XCHAR*>(data + 1); }
    CStringData* Data() const noexcept { return reinterpret_cast<CStringData*>(mData) - 1; }
    std::size_t Size() const noexcept { return static_cast<std::size_t>(GetLength()); }
    static View ViewOf(const XCHAR* text) noexcept { return text ? View(text) : View(); }
    static std::size_t ToSize(int value) noexcept { return value > 0 ? static_cast<std::size_t>(value) : 0; }
    static int Index(std::size_t found) noexcept
    {
        return found == View::npos ? -1 : static_cast<int>(found);
    }

    CStringT Part(std::size_t first, std::size_t count) const
    {
        const View part = AsView().substr(std::min(first, Size()), count);
        return CStringT(part.data(), static_cast<int>(part.size()), GetManager());
    }
    static CStringT Concatenate(View left, View right, IAtlStringMgr* manager)
    {
        CStringT result(manager);
        result.Reserve(left.size() + right.size());
        result.Append(left.data(), static_cast<int>(left.size()));
        result.Append(right.data(), static_cast<int>(right.size()));
        return result;
    }

    void Release() noexcept
    {
        if (GetAllocLength() != 0)
            GetManager()->Free(Data());
    }

    // Makes room for `capacity` characters without changing the text.
    void Reserve(std::size_t capacity)
    {
        if (capacity <= static_cast<std::size_t>(GetAllocLength()))
            return;
        if (capacity > kMaxLength)
            throw std::bad_alloc();
        IAtlStringMgr* manager = GetManager();
        const std::size_t bytes = (capacity + 1) * sizeof(XCHAR);
        const bool first = GetAllocLength() == 0;
        CStringData* data = first ? manager->Allocate(bytes) : manager->Reallocate(Data(), bytes);
        if (data == nullptr)
            throw std::bad_alloc();
        if (first)
            *data = {manager, 0, 0};
        data->allocLength = static_cast<int>(capacity);
        mData = Text(data);
        mData[data->length] = 0;
    }

    void SetLength(std::size_t length) noexcept
    {
        if (GetAllocLength() == 0)
            return;
        Data()->length = static_cast<int>(length);
        mData[length] = 0;
    }

    // The text may be a part of this string: a part never needs more room.
    void Assign(View text)
    {
        Reserve(text.size());
        std::char_traits<XCHAR>::move(mData, text.data(), text.size());
        SetLength(text.size());
    }

    XCHAR* mData;
};

using CStringW = CStringT<wchar_t>;
