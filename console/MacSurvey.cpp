// SPDX-License-Identifier: MIT
#include "console/MacSurvey.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <set>

namespace
{

// Room beyond what the first call asked for: adapters may come up between the two calls.
constexpr ULONG kSpareBytes = 8192;
constexpr int kLogPieceSize = 100;
constexpr int kByteTextSize = 5;
constexpr ULONG kLongestAddress = 15;
constexpr BYTE kLocallyAdministered = 0x02;
constexpr int kTries = 3;

struct AdapterFlags
{
    bool globallyUnique;
    bool isVirtual;
    bool firstValueZero;
};

AdapterFlags FlagsOf(const IP_ADAPTER_ADDRESSES& adapter)
{
    const BYTE first = adapter.PhysicalAddress[0];
    return {(first & kLocallyAdministered) == 0,
            adapter.IfType == IF_TYPE_SOFTWARE_LOOPBACK || adapter.IfType == IF_TYPE_TUNNEL, first == 0};
}

bool Counts(int attempt, const AdapterFlags& flags)
{
    switch (attempt)
    {
    case 0:
        return flags.globallyUnique && !flags.isVirtual && !flags.firstValueZero;
    case 1:
        return flags.globallyUnique && !flags.isVirtual;
    default:
        return true;
    }
}

void Log(std::wstring& log, const wchar_t* format, const PlaceholderValues& values)
{
    wchar_t piece[kLogPieceSize];
    if (FormatToBuffer(format, piece, kLogPieceSize, values) >= 0)
        log += piece;
}

std::wstring MacText(const IP_ADAPTER_ADDRESSES& adapter)
{
    std::wstring text;
    // The walk lets lengths pass that are longer than the field.
    const std::size_t length =
        std::min<std::size_t>(adapter.PhysicalAddressLength, std::size(adapter.PhysicalAddress));
    for (std::size_t i = 0; i < length; ++i)
    {
        wchar_t byteText[kByteTextSize];
        if (FormatToBuffer(L"{0:02X}", byteText, kByteTextSize, {adapter.PhysicalAddress[i]}) >= 0)
            text += byteText;
    }
    return text;
}

void SurveyAdapter(const IP_ADAPTER_ADDRESSES& adapter, int attempt, std::set<std::wstring>& found,
                   std::wstring& log)
{
    if (adapter.PhysicalAddressLength == 0 || adapter.PhysicalAddressLength > kLongestAddress)
    {
        Log(log, L"addrLen={0:u},", {adapter.PhysicalAddressLength});
        return;
    }
    const AdapterFlags flags = FlagsOf(adapter);
    const bool add = Counts(attempt, flags);
    Log(log, L"add={0:u}[gu:{1:u},v:{2:u},fvz:{3:u}],",
        {add ? 1 : 0, flags.globallyUnique ? 1 : 0, flags.isVirtual ? 1 : 0, flags.firstValueZero ? 1 : 0});
    if (!add)
        return;
    const std::wstring text = MacText(adapter);
    Log(log, L"mac:{0:s},", {text.c_str()});
    found.insert(text);
}

} // namespace

int FormatToBuffer(const wchar_t* format, wchar_t* buffer, int size, const PlaceholderValues& values)
{
    enum class eState
    {
        Text,
        Index,
        Conversion
    };
    if (size <= 0)
        return 0;
    eState state = eState::Text;
    int length = 0;
    std::size_t closed = 0; // placeholders so far
    std::size_t index = 0;
    bool hasIndex = false;
    std::wstring conversion;
    for (; *format && length < size; ++format)
    {
        const wchar_t character = *format;
        if (state == eState::Text)
        {
            if (character != L'{')
            {
                buffer[length++] = character;
                continue;
            }
            state = eState::Index;
            index = closed;
            hasIndex = false;
            conversion.clear();
        }
        else if (character == L'}')
        {
            if (index >= values.size())
            {
                for (const wchar_t mark : {L'@', L'@', L'@'})
                    if (length < size - 1)
                        buffer[length++] = mark;
                break;
            }
            const int written = values[index].Format(buffer + length, size - length,
                                                     conversion.empty() ? nullptr : conversion.c_str());
            if (written < 0)
                return -1;
            length += written;
            ++closed;
            state = eState::Text;
        }
        else if (state == eState::Conversion)
        {
            conversion += character;
        }
        else if (character == L':')
        {
            state = eState::Conversion;
            conversion = L"%";
        }
        else if (character >= L'0' && character <= L'9')
        {
            index = (hasIndex ? index * 10 : 0) + static_cast<std::size_t>(character - L'0');
            hasIndex = true;
        }
    }
    length = std::min(length, size - 1);
    buffer[length] = L'\0';
    return length;
}

std::wstring ChooseMacAddress(const IP_ADAPTER_ADDRESSES* first, const void* end, std::wstring& log)
{
    std::set<std::wstring> found;
    for (int attempt = 0; attempt < kTries && found.empty(); ++attempt)
    {
        Log(log, L"try:{0:d}-", {attempt});
        const IP_ADAPTER_ADDRESSES* adapter = first;
        do
        {
            SurveyAdapter(*adapter, attempt, found, log);
            adapter = adapter->Next;
        } while (adapter != nullptr && adapter < end);
    }
    std::wstring result = found.empty() ? std::wstring() : *found.begin();
    Log(log, L"macCount={0:u}, ret={1:s}", {static_cast<unsigned>(found.size()), result.c_str()});
    return result;
}

std::wstring GetMACAddress(std::wstring& log)
{
    ULONG needed = 0;
    GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, nullptr, &needed);
    ULONG size = needed + kSpareBytes;
    const auto buffer = std::make_unique<std::byte[]>(size);
    const auto first = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(buffer.get());
    const ULONG ret = GetAdaptersAddresses(AF_UNSPEC, 0, nullptr, first, &size);
    Log(log, L"BufSize={0:u}, ret={1:u}, ", {needed, ret});
    return ChooseMacAddress(first, buffer.get() + size, log);
}
