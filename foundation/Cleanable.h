// SPDX-License-Identifier: MIT
// Objects that can be emptied and measured from outside, entered in a registry of the whole process.
// Who walks the registry (GetgCleanables) takes GetgCleanablesDeleteCS for as long as he uses what he finds,
// and GetgCleanablesCS after it while he reads the set: then no entry ends under his hands.
#pragma once

#include "foundation/Kelvane.h"
#include "foundation/Locks.h"
#include "foundation/TypeName.h"

#include <cstdint>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <vector>

// Any thread may call an object's operations.
class Cleanable
{
public:
    virtual ~Cleanable() = default;

    // Removes all elements.
    virtual void Clean() = 0;
    // A description, the number of elements and an estimate of their size in KB, rounded down.
    virtual void GetReport(ZTString& text, std::uint64_t& count, std::uint64_t& sizeKB) = 0;
    virtual std::uint64_t GetCount() = 0;
};

// A vector with a lock of its own, in the registry from the end of its construction to the start of its
// destruction. Neither lock of the registry is held together with its own.
template <typename T>
class CleanableVector final : public Cleanable
{
public:
    CleanableVector()
    {
        const CAcquireCS registry(GetgCleanablesCS());
        GetgCleanables().insert(this);
    }
    ~CleanableVector() override
    {
        const CAcquireCS end(GetgCleanablesDeleteCS());
        const CAcquireCS registry(GetgCleanablesCS());
        GetgCleanables().erase(this);
    }
    CleanableVector(const CleanableVector&) = delete;
    CleanableVector& operator=(const CleanableVector&) = delete;

    // The memory for the elements is kept.
    void Clean() override
    {
        const CAcquireCS lock(mLock);
        const CAcquireCS again(mLock); // given; the lock is re-entrant
        mItems.clear();
    }

    // The elements' own size, without what they point to; but for the framework's strings, their text.
    void GetReport(ZTString& text, std::uint64_t& count, std::uint64_t& sizeKB) override
    {
        constexpr bool kStrings = std::is_same_v<T, CStringW>;
        const auto own = UndecoratedName(typeid(*this));
        const auto element = UndecoratedName(typeid(T));

        const CAcquireCS lock(mLock);
        count = mItems.size();
        sizeKB = (count * sizeof(T)) >> 10;
        if constexpr (kStrings)
        {
            // Given: ten bytes of bookkeeping for each text, and two for each character that it has room for.
            std::uint64_t characters = 5 * count;
            for (const T& item : mItems)
                characters += static_cast<std::uint64_t>(item.GetAllocLength());
            sizeKB = characters * 2 / 1024;
        }
        text = DescribeContainer(kStrings ? "ZTString" : element.get(), own.get());
        text.Replace(L"CStringT<wchar_t>", L"ZTString");
    }

    std::uint64_t GetCount() override
    {
        const CAcquireCS lock(mLock);
        return mItems.size();
    }

    std::vector<T> mItems;
    CLockCS mLock; // guards mItems
};
