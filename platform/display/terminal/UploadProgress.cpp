// SPDX-License-Identifier: MIT
#include "platform/display/terminal/UploadProgress.h"

#include <array>
#include <cmath>
#include <cwchar>

namespace platform
{

namespace
{

constexpr std::wstring_view kDone = L"% done, ";
constexpr std::wstring_view kDigits = L"0123456789";

std::wstring RateText(double bytesPerSecond)
{
    const bool isLarge = bytesPerSecond >= 1e6;
    std::array<wchar_t, 32> text;
    std::swprintf(text.data(), text.size(), isLarge ? L", %.1f MB/s" : L", %.0f KB/s",
                  bytesPerSecond / (isLarge ? 1e6 : 1e3));
    return text.data();
}

std::wstring TimeText(double seconds)
{
    const auto whole = static_cast<unsigned long>(std::lround(seconds));
    std::array<wchar_t, 48> text;
    if (whole >= 3600)
        std::swprintf(text.data(), text.size(), L", %lu:%02lu:%02lu left", whole / 3600, whole / 60 % 60,
                      whole % 60);
    else
        std::swprintf(text.data(), text.size(), L", %lu:%02lu left", whole / 60, whole % 60);
    return text.data();
}

} // namespace

std::optional<std::wstring> UploadProgress::Describe(std::wstring_view text, Clock::time_point now)
{
    const std::size_t sign = text.find(kDone);
    if (sign == std::wstring_view::npos)
        return std::nullopt;
    const std::wstring line(text.substr(0, text.find_first_of(L"\r\n", sign)));
    const std::size_t percent = line.find_last_not_of(kDigits, sign - 1) + 1;
    const unsigned long long bytes = std::wcstoull(line.c_str() + sign + kDone.size(), nullptr, 10);
    mPercent = std::wcstol(line.c_str() + percent, nullptr, 10);
    const bool isFirst = mFirstTime == Clock::time_point() || bytes < mBytes;
    mBytes = bytes;
    if (isFirst)
    {
        mFirstBytes = bytes;
        mFirstTime = now;
        return line;
    }
    const double seconds = std::chrono::duration<double>(now - mFirstTime).count();
    if (seconds <= 0 || bytes == mFirstBytes || mPercent <= 0)
        return line;
    const double rate = static_cast<double>(bytes - mFirstBytes) / seconds;
    const double left = static_cast<double>(bytes) * static_cast<double>(100 - mPercent) /
                        static_cast<double>(mPercent) / rate;
    return line + RateText(rate) + (IsComplete() ? L"" : TimeText(left));
}

} // namespace platform
