// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <map>
#include <mutex>
#include <string>

namespace
{

struct Waits
{
    std::uint64_t count = 0;
    std::uint64_t total = 0; // this and the next in hundredths of a millisecond
    DWORD longest = 0;
};

struct Book
{
    std::mutex mutex;
    std::map<std::wstring, Waits> byLabel;
};

// Never destroyed: locks are taken while static objects end.
Book& TheBook()
{
    static Book& book = *new Book;
    return book;
}

double ToMilliseconds(std::uint64_t hundredths)
{
    return static_cast<double>(hundredths) / 100.0;
}

} // namespace

bool gbRecordLockWaits = false;

std::int64_t TimerStart()
{
    const std::int64_t now =
        std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    return now != 0 ? now : 1;
}

DWORD TimerEnd100thms(std::int64_t start)
{
    constexpr std::int64_t kNanosecondsA100thms = 10'000;
    const std::int64_t elapsed = (TimerStart() - start) / kNanosecondsA100thms;
    return static_cast<DWORD>(std::clamp<std::int64_t>(elapsed, 0, std::numeric_limits<DWORD>::max()));
}

void RecordLockWait(const wchar_t* label, DWORD wait)
{
    Book& book = TheBook();
    const std::lock_guard guard(book.mutex);
    Waits& waits = book.byLabel[label];
    ++waits.count;
    waits.total += wait;
    waits.longest = std::max(waits.longest, wait);
}

ZTString GetLockWaits()
{
    Book& book = TheBook();
    const std::lock_guard guard(book.mutex);
    ZTString text;
    ZTString line;
    for (const auto& [label, waits] : book.byLabel)
    {
        line.Format(L"{0:s}: {1:u} waits, {2:0.2f} ms, longest {3:0.2f} ms\n", label.c_str(), waits.count,
                    ToMilliseconds(waits.total), ToMilliseconds(waits.longest));
        text += line;
    }
    return text;
}
