// SPDX-License-Identifier: MIT
// What another account may have put into the place of the file that is to be sent. Linux only.
#include "tests/ipworks/Recorder.h"

#include <unistd.h>

TEST(Upload, FileThatAnotherAccountCouldHavePutThereIsNotSent)
{
    Recorder recorder;
    const std::filesystem::path link = recorder.Directory() / "link";
    const std::filesystem::path theirs = recorder.Directory() / "theirs";
    std::filesystem::create_symlink(recorder.File(), link);
    WriteFile(theirs, "theirs");
    if (chown(theirs.c_str(), 1, 1) != 0)
        GTEST_SKIP() << "only root can give a file away";
    const std::pair<std::filesystem::path, std::string> rows[] = {{link, "It is a link."},
                                                                  {theirs, "It belongs to another account."},
                                                                  {"/dev/null", "It is not a plain file."}};
    for (const auto& [path, problem] : rows)
    {
        recorder.SetLocalFile(path);
        EXPECT_EQ(1004, recorder.Upload());
        EXPECT_EQ("1004 Cannot open the local file: " + problem, recorder.LastError());
    }
    EXPECT_TRUE(recorder.server.Commands().empty());
}
