// SPDX-License-Identifier: MIT
#include "platform/kernel/CommandLine.h"

#include <gtest/gtest.h>

using namespace platform;

TEST(CommandLine, IsQuotedAsAWindowsUserWouldHaveTypedIt)
{
    const std::pair<std::vector<std::wstring>, const wchar_t*> rows[] = {
        {{L"/opt/Tavo"}, L"/opt/Tavo"},
        {{L"/opt/my folder/Tavo", L"-a"}, L"\"/opt/my folder/Tavo\" -a"},
        {{L"T", L"-FTP_LOG=my name"}, L"T -FTP_LOG=\"my name\""},
        {{L"T", L"/SETCONFIG:a:b c"}, L"T /SETCONFIG:\"a:b c\""}, // the first separator ends the key
        {{L"T", L"-SETCONFIG", L"n:v w"}, L"T -SETCONFIG \"n:v w\""},
        {{L"T", L"-a", L""}, L"T -a \"\""},
        {{L"T", L"-a", L"x"}, L"T -a x"},
        {{L"T", L"-a", L"  "}, L"T -a \"  \""},
        {{L"T", L"-a=", L"b"}, L"T -a= b"},
        {{L"T", L"-max= b"}, L"T -max=\" b\""},
        {{L"T", L"-a b=c"}, L"T \"-a b=c\""},     // the blank comes first
        {{L"T", L"x=a b"}, L"T \"x=a b\""},       // no switch
        {{L"T", L"-a=\"b c\""}, L"T -a=\"b c\""}, // quoted already
        {{L"T", L"\"b c\""}, L"T \"b c\""},
        {{L"T", L"-a=b\"c"}, L"T -a=b\"c"},
        {{L"T", L"-a=x\ty"}, L"T -a=x\ty"}, // a tab ends no value
        {{}, L""},
    };
    for (const auto& [arguments, line] : rows)
        EXPECT_EQ(JoinCommandLine(arguments), line);
}
