// SPDX-License-Identifier: MIT
#include "platform/security/Token.h"

#include "winbase.h"

#include <grp.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

namespace
{

thread_local std::shared_ptr<Token> gThreadToken;

constexpr SID_IDENTIFIER_AUTHORITY kWorldAuthority = {{0, 0, 0, 0, 0, 1}};
constexpr SID_IDENTIFIER_AUTHORITY kNtAuthority = SECURITY_NT_AUTHORITY;
// Accounts of a Unix system, as Samba numbers those that have no SID of a domain.
constexpr SID_IDENTIFIER_AUTHORITY kUnixAuthority = {{0, 0, 0, 0, 0, 22}};
constexpr DWORD kUnixUsers = 1;
constexpr DWORD kUnixGroups = 2;

bool IsAdministratorGroup(gid_t id)
{
    constexpr std::string_view kNames[] = {"sudo", "wheel", "admin"};
    std::vector<char> buffer(16384);
    group entry = {};
    group* found = nullptr;
    while (getgrgid_r(id, &entry, buffer.data(), buffer.size(), &found) == ERANGE)
        buffer.resize(buffer.size() * 2);
    return found != nullptr && std::ranges::find(kNames, found->gr_name) != std::end(kNames);
}

std::vector<Token::Group> CurrentGroups()
{
    std::vector<unsigned> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
    groups.resize(
        static_cast<std::size_t>(std::max(getgroups(static_cast<int>(groups.size()), groups.data()), 0)));
    groups.push_back(getegid());
    const bool administrator = std::ranges::any_of(groups, IsAdministratorGroup);
    return GroupsOfUser(geteuid(), groups, administrator);
}

BOOL OpenToken(DWORD access, std::shared_ptr<Token> token, HANDLE* handle)
{
    if (access != TOKEN_QUERY)
        return FailWith(ERROR_INVALID_PARAMETER);
    *handle = MakeHandle(std::move(token));
    return TRUE;
}

} // namespace

std::vector<Token::Group> GroupsOfUser(unsigned user, const std::vector<unsigned>& groups,
                                       bool inAdministratorGroup)
{
    std::vector<Token::Group> list = {{MakeSid(kUnixAuthority, {kUnixUsers, user}), false},
                                      {MakeSid(kWorldAuthority, {0}), false}};
    for (const unsigned group : groups)
        list.push_back({MakeSid(kUnixAuthority, {kUnixGroups, group}), false});
    const bool root = user == 0;
    if (root || inAdministratorGroup)
    {
        list.push_back(
            {MakeSid(kNtAuthority, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS}), !root});
    }
    return list;
}

BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level)
{
    if (level != SecurityImpersonation)
        return FailWith(ERROR_INVALID_PARAMETER);
    gThreadToken = std::make_shared<Token>(Token::Kind::Impersonation, CurrentGroups());
    return TRUE;
}

BOOL RevertToSelf()
{
    gThreadToken.reset();
    return TRUE;
}

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token)
{
    if (process != GetCurrentProcess())
        return FailWith(ERROR_INVALID_HANDLE);
    return OpenToken(access, std::make_shared<Token>(Token::Kind::Primary, CurrentGroups()), token);
}

BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL, HANDLE* token)
{
    if (thread != GetCurrentThread())
        return FailWith(ERROR_INVALID_HANDLE);
    return gThreadToken == nullptr ? FailWith(ERROR_NO_TOKEN) : OpenToken(access, gThreadToken, token);
}
