// SPDX-License-Identifier: MIT
#pragma once

#include "base/Deadline.h"

#include "platformExport.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform
{

// Adds to a console line that says how far an upload is how fast it goes and how long it will take, from what
// the lines before it said.
class UploadProgress
{
public:
    // "…42% done, 1000 sent, 1.5 MB/s, 0:41 left", without a line end; nothing for any other text.
    PLATFORM_EXPORT std::optional<std::wstring> Describe(std::wstring_view text, Clock::time_point now);

    // Of the line described last.
    bool IsComplete() const { return mPercent == 100; }

private:
    unsigned long long mFirstBytes = 0;
    unsigned long long mBytes = 0;
    Clock::time_point mFirstTime;
    long mPercent = 0;
};

} // namespace platform
