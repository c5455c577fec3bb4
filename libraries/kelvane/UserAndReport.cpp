// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"

#include <array>
#include <string>

namespace
{

// Names and texts of the system are far shorter.
using Buffer = std::array<wchar_t, 1024>;
constexpr DWORD kBufferSize = std::tuple_size_v<Buffer>;

} // namespace

ZTString GetLocalComputerName()
{
    Buffer name{};
    DWORD size = kBufferSize;
    return GetComputerNameW(name.data(), &size) ? ZTString(name.data()) : ZTString();
}

ZTString GetUserNameW(EXTENDED_NAME_FORMAT)
{
    Buffer name{};
    DWORD size = kBufferSize;
    return GetUserNameW(name.data(), &size) ? ZTString(name.data()) : ZTString();
}

ZTString GetCustServiceInfo()
{
    return GetConfigStr(eConfigCustomerServiceText, nullptr);
}

ZTString GetSystemErrorMessage(DWORD code, eSysErrMsg, eMonitorType, bool)
{
    Buffer buffer{};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                   buffer.data(), kBufferSize, nullptr);
    ZTString text(buffer.data());
    text.Trim();
    text.Replace(L"\r\n", L" ");
    if (text.IsEmpty())
        text = L"Unknown error.";

    // Codes of the components that report in HRESULTs are known by their hexadecimal form.
    ZTString message;
    message.Format(code < 0x80000000 ? L"{0:u}: {1:s}" : L"0x{0:08X}: {1:s}", code, text);
    return message;
}
