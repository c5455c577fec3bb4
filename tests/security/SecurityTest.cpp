// SPDX-License-Identifier: MIT
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{

struct FreeSidOf
{
    void operator()(void* sid) const { FreeSid(sid); }
};
using OwnedSid = std::unique_ptr<void, FreeSidOf>;

OwnedSid MakeSid(BYTE authority, const std::vector<DWORD>& subAuthorities)
{
    SID_IDENTIFIER_AUTHORITY id = {{0, 0, 0, 0, 0, authority}};
    std::vector<DWORD> all = subAuthorities;
    all.resize(8);
    PSID sid = nullptr;
    EXPECT_TRUE(AllocateAndInitializeSid(&id, static_cast<BYTE>(subAuthorities.size()), all[0], all[1],
                                         all[2], all[3], all[4], all[5], all[6], all[7], &sid));
    return OwnedSid(sid);
}

struct Entry
{
    BYTE type; // 0 allows, 1 denies
    DWORD mask;
    PSID sid;
};

// Descriptor and access list with the given entries.
class Guard
{
public:
    explicit Guard(const std::vector<Entry>& entries) : mOwner(MakeSid(1, {0})), mAcl(256)
    {
        const auto acl = reinterpret_cast<PACL>(mAcl.data());
        EXPECT_TRUE(InitializeAcl(acl, static_cast<DWORD>(mAcl.size() * sizeof(DWORD)), ACL_REVISION2));
        auto* at = reinterpret_cast<BYTE*>(acl + 1);
        for (const Entry& entry : entries)
        {
            EXPECT_TRUE(AddAccessAllowedAce(acl, ACL_REVISION2, entry.mask, entry.sid));
            auto* head = reinterpret_cast<ACE_HEADER*>(at);
            head->AceType = entry.type;
            at += head->AceSize;
        }
        EXPECT_TRUE(InitializeSecurityDescriptor(&mDescriptor, SECURITY_DESCRIPTOR_REVISION));
        EXPECT_TRUE(SetSecurityDescriptorDacl(&mDescriptor, TRUE, acl, FALSE));
        EXPECT_TRUE(SetSecurityDescriptorOwner(&mDescriptor, mOwner.get(), FALSE));
        EXPECT_TRUE(SetSecurityDescriptorGroup(&mDescriptor, mOwner.get(), FALSE));
    }

    SECURITY_DESCRIPTOR* Descriptor() { return &mDescriptor; }

private:
    OwnedSid mOwner;
    std::vector<DWORD> mAcl;
    SECURITY_DESCRIPTOR mDescriptor = {};
};

class AccessCheckTest : public testing::Test
{
protected:
    AccessCheckTest()
    {
        EXPECT_TRUE(ImpersonateSelf(SecurityImpersonation));
        EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &mToken));
    }
    ~AccessCheckTest() override
    {
        EXPECT_TRUE(CloseHandle(mToken));
        EXPECT_TRUE(RevertToSelf());
    }

    // The last error, ERROR_SUCCESS when it could judge.
    DWORD Check(Guard& guard, DWORD desired, DWORD length = sizeof(PRIVILEGE_SET))
    {
        GENERIC_MAPPING mapping = {1, 2, 0, 3};
        PRIVILEGE_SET privileges = {};
        mStatus = FALSE;
        const BOOL judged = AccessCheck(guard.Descriptor(), mToken, desired, &mapping, &privileges, &length,
                                        &mGranted, &mStatus);
        return judged ? DWORD{ERROR_SUCCESS} : GetLastError();
    }

    HANDLE mToken = nullptr;
    DWORD mGranted = 0;
    BOOL mStatus = FALSE;
};

} // namespace

TEST(ThreadToken, IsThereOnlyWhileImpersonating)
{
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_TOKEN});
    EXPECT_TRUE(ImpersonateSelf(SecurityImpersonation));
    EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token));
    EXPECT_TRUE(CloseHandle(token));
    EXPECT_TRUE(RevertToSelf());
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token));
}

TEST_F(AccessCheckTest, GoesThroughTheListEntryByEntry)
{
    const OwnedSid everyone = MakeSid(1, {0});
    const OwnedSid stranger = MakeSid(5, {21, 1, 2, 3, 9999});
    const PSID all = everyone.get();
    const PSID other = stranger.get();
    struct Row
    {
        std::vector<Entry> entries;
        DWORD desired;
        bool granted;
    };
    const Row rows[] = {
        {{}, 1, false}, // an empty list, unlike none, grants nothing
        {{{0, 3, all}}, 1, true},
        {{{0, 3, all}}, 4, false},
        {{{0, 3, other}}, 1, false},
        {{{0, 1, all}, {0, 2, all}}, 3, true}, // rights add up
        {{{1, 1, all}, {0, 3, all}}, 1, false},
        {{{1, 1, all}, {0, 3, all}}, 2, true},
        {{{0, 3, all}, {1, 1, all}}, 1, true}, // granted before it could be denied
        {{{1, 3, other}, {0, 3, all}}, 1, true},
    };
    for (const Row& row : rows)
    {
        Guard guard(row.entries);
        EXPECT_EQ(Check(guard, row.desired), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(mStatus != FALSE, row.granted) << "row " << &row - rows;
        EXPECT_EQ(mGranted, row.granted ? row.desired : 0);
    }
    Guard open({});
    EXPECT_TRUE(SetSecurityDescriptorDacl(open.Descriptor(), TRUE, nullptr, FALSE));
    EXPECT_EQ(Check(open, 3), DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(mStatus) << "no list";
}

TEST_F(AccessCheckTest, RefusesWhatItCannotJudge)
{
    Guard guard({});
    EXPECT_EQ(Check(guard, GENERIC_READ), DWORD{ERROR_GENERIC_NOT_MAPPED});
    EXPECT_EQ(Check(guard, 1, 8), DWORD{ERROR_INSUFFICIENT_BUFFER});
    Guard ownerless({});
    EXPECT_TRUE(SetSecurityDescriptorOwner(ownerless.Descriptor(), nullptr, FALSE));
    EXPECT_EQ(Check(ownerless, 1), DWORD{ERROR_INVALID_SECURITY_DESCR});

    HANDLE process = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &process));
    std::swap(mToken, process);
    EXPECT_EQ(Check(guard, 1), DWORD{ERROR_NO_IMPERSONATION_TOKEN});
    std::swap(mToken, process);
    CloseHandle(process);
}
