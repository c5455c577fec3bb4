// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

class CountingManager final : public IAtlStringMgr
{
public:
    CStringData* Allocate(std::size_t bytes) noexcept override
    {
        ++mAlive;
        return Reallocate(nullptr, bytes);
    }
    CStringData* Reallocate(CStringData* block, std::size_t bytes) noexcept override
    {
        ++mRequests;
        return mFull ? nullptr : mHeap.Reallocate(block, bytes);
    }
    void Free(CStringData* block) noexcept override
    {
        --mAlive;
        mHeap.Free(block);
    }
    CStringData* GetNilString() noexcept override { return &mNil.data; }

    int mRequests = 0;
    int mAlive = 0;
    bool mFull = false;

private:
    CHeapStringManager mHeap;
    struct
    {
        CStringData data;
        wchar_t terminator;
    } mNil{{this, 0, 0}, 0};
};

static_assert(std::is_nothrow_move_constructible_v<ZTString> && std::is_nothrow_move_assignable_v<ZTString>);

TEST(String, AppendsInLinearTimeAndGivesAllMemoryBack)
{
    CountingManager manager;
    {
        CStringW text(&manager);
        EXPECT_EQ(manager.mRequests, 0) << "the empty text costs nothing";
        for (int i = 0; i < 20'000; ++i)
            text += L"[12ms] a line of the console\r\n";
        EXPECT_EQ(text.GetLength(), 20'000 * 30);
        EXPECT_LT(manager.mRequests, 40);
        CStringW copy(text);
        const CStringW moved(std::move(copy));
        EXPECT_EQ(moved, text);
        text.Empty();
        EXPECT_EQ(text.GetAllocLength(), 0);
        EXPECT_EQ(manager.mAlive, 1);
        text = L"kept";
        manager.mFull = true;
        EXPECT_THROW(text += std::wstring(1000, L'x').c_str(), std::bad_alloc);
        EXPECT_EQ(text, L"kept");
    }
    EXPECT_EQ(manager.mAlive, 0);
}

TEST(String, TakesPartsOfItselfAsArguments)
{
    ZTString text(L"abc");
    text += text;
    EXPECT_EQ(text, L"abcabc");
    for (int i = 0; i < 5; ++i) // however much room is left
        text.Append(text.GetString() + 1, 2);
    EXPECT_EQ(text, L"abcabcbcbcbcbcbc");
    text = text.GetString() + 13;
    EXPECT_EQ(text, L"cbc");
    const ZTString& self = text;
    text = self;
    EXPECT_EQ(text, L"cbc");
    EXPECT_EQ(text.Replace(text, L"new"), 1);
    EXPECT_EQ(text, L"new");
}

TEST(String, AnswersAboutItsParts)
{
    const ZTString text(L"key:value:end");
    EXPECT_EQ(text.Find(L":"), 3);
    EXPECT_EQ(text.Find(L':', 4), 9);
    EXPECT_EQ(text.Find(L"nowhere"), -1);
    EXPECT_EQ(text.Find(L':', 99), -1);
    EXPECT_EQ(text.Left(3), L"key");
    EXPECT_EQ(text.Mid(4, 5), L"value");
    EXPECT_EQ(text.Mid(10), L"end");
    EXPECT_EQ(text.Left(-1), L"");
    EXPECT_EQ(text.Left(99), text);
    EXPECT_EQ(text.Mid(99), L"");
    EXPECT_EQ(text[13], L'\0');
}

TEST(String, TrimsAndReplaces)
{
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> kCases[] = {
        {L"\"a\"b\"", L"\"", L"a\"b"}, {L"--", L"-", L""},       {L"", L"-", L""},
        {L"abc", L"xyz", L"abc"},      {L"xyazy", L"zyx", L"a"},
    };
    for (const auto& [text, set, expected] : kCases)
        EXPECT_EQ(ZTString(text).Trim(set), expected);
    EXPECT_EQ(ZTString(L" \t\r\n a b \v\f").Trim(), L"a b");
    EXPECT_EQ(ZTString(L"  a ").TrimLeft(), L"a ");
    EXPECT_EQ(ZTString(L"  a ").TrimRight(), L"  a");

    ZTString text(L"aXaXa");
    EXPECT_EQ(text.Replace(L"X", L"--"), 2);
    EXPECT_EQ(text, L"a--a--a");
    EXPECT_EQ(text.Replace(L"--", nullptr), 2);
    EXPECT_EQ(text, L"aaa");
    EXPECT_EQ(text.Replace(L"aa", L"a"), 1) << "what was put in is not searched again";
    EXPECT_EQ(text, L"aa");
    EXPECT_EQ(text.Replace(L"", L"x"), 0);
}

// The process runs in the "C" locale, in which the C library knows ASCII letters alone.
TEST(String, LowersTheCaseOfAnyAlphabetWithoutALocale)
{
    ZTString text(L"FTP_Log ÄÖÜ ΣΩ ЖЯ ß 1€");
    EXPECT_EQ(text.MakeLower(), L"ftp_log äöü σω жя ß 1€");
    EXPECT_EQ(ZTString(L"").MakeLower(), L"");
    ZTString astral(L"A\U0001F600B");
    EXPECT_EQ(astral.MakeLower(), L"a\U0001F600b");
}

TEST(String, WidensUtf8)
{
    EXPECT_EQ(ZTString("a\xF0\x9F\x98\x80"), L"a\U0001F600");
    EXPECT_EQ(ZTString(static_cast<const char*>(nullptr)), L"");
    EXPECT_EQ(ZTString(static_cast<const wchar_t*>(nullptr)), L"");
    ZTString text(L"before");
    text = "after";
    EXPECT_EQ(text, L"after");
    text = CStringW(L"plain");
    EXPECT_EQ(text, L"plain");
    EXPECT_EQ(text.GetManager(), gZTStringManager);
    EXPECT_EQ(L"<" + text + L"|" + text + nullptr, L"<plain|plain");
}

TEST(String, OrdersByCodeUnitsAPrefixFirst)
{
    const wchar_t* const kOrder[] = {L"", L"A", L"B", L"Ba", L"a", L"aa", L"b", L"\xE9", L"\xFFFD"};
    for (const wchar_t* left : kOrder)
        for (const wchar_t* right : kOrder)
        {
            const bool less = std::wstring(left) < right;
            EXPECT_EQ(ZTString(left) < ZTString(right), less);
            EXPECT_EQ(ZTString(left).Compare(right) < 0, less);
            EXPECT_EQ(ZTString(left) == right, std::wstring(left) == right);
        }
}

TEST(ResourceString, ComesFromTheProgramOrIsEmpty)
{
    EXPECT_EQ(ZTString(String(IDS_ADMINISTRATOR_CAPTION, nullptr).mText),
              String(IDS_ADMINISTRATOR_CAPTION, GetModuleHandleW(nullptr)).mText);
    EXPECT_STRNE(String(IDS_ADMINISTRATOR_CAPTION, nullptr).mText, L"");
    EXPECT_STREQ(String(9999, nullptr).mText, L"");
}
