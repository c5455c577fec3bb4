// SPDX-License-Identifier: MIT
// Names of the machine, the user and the program.
#include "platform/kernel/Error.h"
#include "platform/kernel/Text.h"
#include "text/Unicode.h"
#include "winbase.h"
#include "libloaderapi.h"
#include "security.h"

#include <pwd.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

using namespace platform;

namespace
{

std::wstring HostName()
{
    std::array<char, HOST_NAME_MAX + 1> name = {};
    gethostname(name.data(), name.size() - 1);
    const std::string_view full = name.data();
    return text::FromUtf8(full.substr(0, full.find('.')));
}

// The effective user's; the number for one without an account.
std::wstring LoginName()
{
    const uid_t id = geteuid();
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    while (getpwuid_r(id, &entry, buffer.data(), buffer.size(), &found) == ERANGE)
        buffer.resize(buffer.size() * 2);
    return found == nullptr ? std::to_wstring(id) : text::FromUtf8(found->pw_name);
}

// The rule of these calls: `size` is the buffer's on entry, afterwards the characters with the terminator
// needed, or written.
bool CopyWithSize(const std::wstring& text, wchar_t* buffer, DWORD& size)
{
    const bool copied = CopyOut(text, buffer, buffer == nullptr ? 0 : size);
    size = static_cast<DWORD>(text.size()) + 1;
    return copied;
}

} // namespace

BOOL GetComputerNameW(LPWSTR buffer, LPDWORD size)
{
    if (!CopyWithSize(HostName(), buffer, *size))
        return FailWith(ERROR_BUFFER_OVERFLOW);
    --*size; // the terminator is not counted here
    return TRUE;
}

BOOL GetUserNameW(LPWSTR buffer, LPDWORD size)
{
    return CopyWithSize(LoginName(), buffer, *size) ? TRUE : FailWith(ERROR_INSUFFICIENT_BUFFER);
}

HMODULE GetModuleHandleW(LPCWSTR)
{
    static char program; // its address is the handle
    return reinterpret_cast<HMODULE>(&program);
}

DWORD GetModuleFileNameW(HMODULE, LPWSTR buffer, DWORD size)
{
    std::vector<char> bytes(PATH_MAX);
    const ssize_t length = readlink("/proc/self/exe", bytes.data(), bytes.size() - 1);
    // Where /proc is not mounted, the file that the kernel was told to start.
    if (length <= 0 && realpath(reinterpret_cast<const char*>(getauxval(AT_EXECFN)), bytes.data()) == nullptr)
    {
        FailWith(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const std::wstring path = text::FromUtf8(bytes.data());
    if (CopyOut(path, buffer, size))
    {
        SetLastError(ERROR_SUCCESS);
        return static_cast<DWORD>(path.size());
    }
    CopyOut(std::wstring_view(path).substr(0, size - 1), buffer, size); // cut, as on Windows
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}
