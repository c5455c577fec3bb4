// SPDX-License-Identifier: MIT
// Two unattended shipments on one machine.
#include "tests/shipment/ShipmentRun.h"

#include <gmock/gmock.h>

#include <signal.h>

#include <future>
#include <thread>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace
{

// The process that runs a program, 0 when none does.
pid_t ProcessOf(const fs::path& program)
{
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc"))
    {
        std::error_code error;
        const fs::path running = fs::read_symlink(entry.path() / "exe", error);
        if (!error && running == program)
            return std::stoi(entry.path().filename().string());
    }
    return 0;
}

bool WaitFor(const std::function<bool()>& condition)
{
    for (int i = 0; i < 600; ++i)
    {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

} // namespace

using UnattendedShipment = ShipmentTest;

TEST_F(UnattendedShipment, SecondIsRefusedAndAfterAKillTheNextOneShips)
{
    ReplaceArchiver("touch packing; if [ -e '" + (folder.Path() / "hold").string() +
                    "' ]; then sleep 60; fi; exec \"$REAL\" \"$@\"");
    WriteFile(folder.Path() / "hold", "");
    const std::future<ProgramOutcome> first = std::async(std::launch::async, [&] { return Ship("first"); });
    ASSERT_TRUE(WaitFor([&] { return fs::exists(Logs() / "packing"); }));

    const ProgramFolder other;
    const ProgramOutcome second = other.Run(ShipmentTest::Unattended("second"));
    EXPECT_TRUE(second.ended);
    EXPECT_EQ(0, second.exitCode);
    EXPECT_THAT(second.console, HasSubstr("Current Computer: "));
    EXPECT_THAT(second.console, Not(HasSubstr("FTP_LOG:")));

    const pid_t process = ProcessOf(folder.Program());
    ASSERT_GT(process, 0);
    kill(process, SIGKILL);
    first.wait();

    const RealFtpServer server(kFtpUser, kFtpPassword);
    fs::remove(folder.Path() / "hold");
    WriteFile(Logs() / "third.zip", "left behind by an interrupted shipment");
    const ProgramOutcome third = Ship("third");
    EXPECT_THAT(Verdicts(third), testing::Contains("Successfully sent logs to Support")) << third.console;
    EXPECT_TRUE(fs::exists(Unpack(server.Directory() / "third.zip") / "packing"));
    EXPECT_THAT(Leftovers(), ElementsAre());
}

TEST_F(UnattendedShipment, ClosePressedMeanwhileCutsNothingShort)
{
    const RealFtpServer server(kFtpUser, kFtpPassword);
    ReplaceArchiver("sleep 2; exec \"$REAL\" \"$@\"");
    ProgramStart start;
    start.arguments = {"-FTP_LOG=case"};
    start.input = {"Close"};
    const ProgramOutcome outcome = folder.Run(start);
    EXPECT_TRUE(outcome.ended);
    EXPECT_THAT(Verdicts(outcome), testing::Contains("Successfully sent logs to Support")) << outcome.console;
    EXPECT_TRUE(fs::exists(server.Directory() / "case.zip"));
    EXPECT_THAT(Leftovers(), ElementsAre());
}
