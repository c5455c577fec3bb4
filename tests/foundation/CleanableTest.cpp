// SPDX-License-Identifier: MIT
#include "foundation/Cleanable.h"
#include "foundation/StaticOrder.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <thread>

// The text, the count and the size in KB.
using Report = std::tuple<std::string, std::uint64_t, std::uint64_t>;

static Report ReportOf(Cleanable& object)
{
    ZTString text;
    std::uint64_t count = 0;
    std::uint64_t size = 0;
    object.GetReport(text, count, size);
    return {{text.GetString(), text.GetString() + text.GetLength()}, count, size};
}

static std::size_t Registered()
{
    const CAcquireCS registry(GetgCleanablesCS());
    return GetgCleanables().size();
}

// Counted right after the containers have come to life; only objects of a class can be ordered.
[[gnu::init_priority(kStaticContainers + 1)]] const std::optional<std::size_t> gEarlyCount = Registered();

TEST(Cleanable, SixVectorsAreRegisteredBeforeTheProgramStarts)
{
    EXPECT_EQ(gEarlyCount, 6u);
    const CAcquireCS registry(GetgCleanablesCS());
    for (Cleanable* object : GetgCleanables())
    {
        EXPECT_EQ(ReportOf(*object), (Report{"ZTString in CleanableVector<ZTString>", 0, 0}));
        const auto* const vector = dynamic_cast<CleanableVector<ZTString>*>(object);
        ASSERT_NE(vector, nullptr);
        EXPECT_EQ(vector->mLock.mState, kLockUsable);
        EXPECT_EQ(vector->mLock.mLabel, nullptr);
    }
    EXPECT_STREQ(GetgCleanablesCS().mLabel, L"gCleanablesCS");
    EXPECT_STREQ(GetgCleanablesDeleteCS().mLabel, L"gCleanablesDeleteCS");
}

TEST(Cleanable, IsRegisteredWhileItLivesAndKeepsItsMemoryWhenCleaned)
{
    const std::size_t before = Registered();
    {
        CleanableVector<ZTString> vector;
        EXPECT_EQ(GetgCleanables().count(&vector), 1u);
        vector.mItems.assign(1000, ZTString(L"element"));
        const std::size_t capacity = vector.mItems.capacity();
        EXPECT_EQ(vector.GetCount(), 1000u);
        vector.Clean();
        EXPECT_EQ(vector.GetCount(), 0u);
        EXPECT_EQ(vector.mItems.capacity(), capacity);
        EXPECT_EQ(vector.mLock.mOwnerThread, 0u);
    }
    EXPECT_EQ(Registered(), before);
}

TEST(Cleanable, ReportsElementsOfAnySize)
{
    CleanableVector<std::uint64_t> eights;
    for (const std::size_t count : {0u, 127u, 128u})
    {
        eights.mItems.resize(count);
        EXPECT_EQ(std::get<2>(ReportOf(eights)), count / 128);
    }

    CleanableVector<char> characters;
    characters.mItems.resize(2047);
    EXPECT_EQ(ReportOf(characters), (Report{"char in CleanableVector<char>", 2047, 1}));

    CleanableVector<std::array<char, 100'000>> blocks;
    blocks.mItems.resize(3);
    EXPECT_EQ(std::get<2>(ReportOf(blocks)), 292u);
    EXPECT_EQ(DescribeContainer(nullptr, nullptr), L"unknown in CleanableVector")
        << "where the library cannot tell names";
}

TEST(Cleanable, CountsTheTextOfTheFrameworksStrings)
{
    CleanableVector<CStringW> strings;
    strings.mItems.assign(10'000, CStringW(std::wstring(50, L'x').c_str()));
    std::uint64_t characters = 0;
    for (const CStringW& item : strings.mItems)
        characters += static_cast<std::uint64_t>(item.GetAllocLength()) + 5;
    EXPECT_GE(characters, 550'000u);
    EXPECT_EQ(ReportOf(strings),
              (Report{"ZTString in CleanableVector<ZTString >", 10'000, characters * 2 / 1024}))
        << "the blank is the compiler's";
}

TEST(Cleanable, StandsEightThreadsAndAWalkerOfTheRegistry)
{
    const std::size_t before = Registered();
    CleanableVector<ZTString> shared;
    // Does with each registered object what one from outside may do.
    const std::jthread walker(
        [](const std::stop_token& end)
        {
            while (!end.stop_requested())
            {
                const CAcquireCS noneEnds(GetgCleanablesDeleteCS());
                CAcquireCS registry(GetgCleanablesCS());
                const std::set<Cleanable*> objects = GetgCleanables();
                registry.Release();
                for (Cleanable* object : objects)
                {
                    ReportOf(*object);
                    if (object->GetCount() > 100)
                        object->Clean();
                }
            }
        });
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(
            [&shared, i]
            {
                for (int round = 0; round < 200; ++round)
                {
                    CleanableVector<int> own;
                    {
                        const CAcquireCS lock(shared.mLock), ownLock(own.mLock);
                        shared.mItems.emplace_back(L"element");
                        own.mItems.resize(150);
                    }
                    if (round % 8 == i)
                        shared.Clean();
                    shared.GetCount();
                }
            });
    threads.clear();
    EXPECT_EQ(Registered(), before + 1);
}
