// SPDX-License-Identifier: MIT
// Tokens: who the process or a thread acts as, as SIDs.
#pragma once

#include "platform/kernel/Handle.h"
#include "platform/security/Sid.h"

#include "platformExport.h"

#include <vector>

class Token : public KernelObject
{
public:
    enum class Kind
    {
        Primary,       // the process's
        Impersonation, // a thread's
    };

    struct Group
    {
        SidBytes mSid;
        bool mDenyOnly; // an entry that allows takes no notice of it
    };

    Token(Kind kind, std::vector<Group> groups) : mKind(kind), mGroups(std::move(groups)) {}

    bool IsImpersonation() const { return mKind == Kind::Impersonation; }
    // The user first.
    const std::vector<Group>& Groups() const { return mGroups; }

private:
    Kind mKind;
    std::vector<Group> mGroups;
};

// The groups of a token for a user: the user, everybody, each group by its number, and Administrators when
// the user is root, or for deny only when one of the groups is an administrators' group by name.
PLATFORM_EXPORT std::vector<Token::Group> GroupsOfUser(unsigned user, const std::vector<unsigned>& groups,
                                                       bool inAdministratorGroup);
