// SPDX-License-Identifier: MIT
// The program that ships on a machine that lacks something. scripts/check-faults tries far more of that.
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <span>

#include <unistd.h>

TEST(SickMachine, GetsAnAnswerToo)
{
    const std::string report = "Customer service: [^\n]*\n$";
    const std::string tokyo = "bias: -540\n(.*\n){2}Timezone Standard Name: Tokyo Standard Time\n";
    const auto bareEtc = [](const std::string& filled)
    { return "unset TZ; unshare -m sh -c 'mount -t tmpfs none /etc; cd /etc; " + filled + "; $PROGRAM'"; };
    const std::string zone = " /usr/share/zoneinfo/Asia/Tokyo localtime; ";
    const std::string bareDev = "unshare -imn sh -c 'mount -t tmpfs none /dev; ";
    // A display server that takes the connection and then says nothing.
    const auto silent = [](const std::string& family, const std::string& address, const std::string& display)
    {
        return "python3 -c 'import os, socket\nserver = socket.socket(socket.AF_" + family +
               ")\nserver.bind(" + address + ")\nserver.listen()\nos.environ." + display +
               "\nos.system(\"timeout 120 $PROGRAM\")'";
    };
    const std::string unanswered =
        "^No windows can be shown: the display \"[^\n]+\" did not answer in 10 s\nZT .*" + report;
    const std::string longestName(64, 'h');
    const std::pair<std::string, std::string> rows[] = {
        {"unshare --uts sh -c 'echo " + longestName + " >/proc/sys/kernel/hostname; $PROGRAM'",
         "Current Computer: " + longestName + "\n"},
        {bareEtc("ln -s" + zone + "echo Europe/Paris > timezone"), tokyo},
        {bareEtc("cp" + zone + "echo Asia/Tokyo > timezone"), tokyo},
        {bareEtc("echo Asia/Tokyo > timezone"), // which is not in force
         "bias: 0\n(.*\n){2}Timezone Standard Name: Coordinated Universal Time\n"},
        {bareEtc(
             R"(mkdir default; printf "LANGUAGE=fr\nLANG=\"\"\nLANG=\047de_DE\047 \r\n" > default/locale)"),
         "System default locale: \\[de-de\\] \\(x0407\\)\n"},
        {bareEtc(R"(printf "#\nLANG=de_DE\nLC_ALL=fr_FR" > locale.conf)"),
         "System default locale: \\[fr-fr\\] \\(x040C\\)\n"},
        {bareDev + "$PROGRAM -FTP_LOG=x -AUTOCLOSE=yes'",
         "FTP_LOG: Failed to launch before FTP: .*Err=31: A device attached to the system is not "
         "functioning.\n$"},
        {bareDev + "$PROGRAM >&-; timeout 30 sh -c \"$PROGRAM <&-\"'", // for it wants its own input
         "^Tavo: the console's text cannot be written: Bad file descriptor\nZT .*" + report},
        // An account with one thread, which root can make.
        {"prlimit --nproc=1 setpriv --reuid=64322 --regid=64322 --clear-groups $PROGRAM",
         "administrator of this computer.\nPress: OK\n$"},
        {"cd ${PROGRAM%/*}; install -D /usr/share/zoneinfo/Asia/Tokyo zoneinfo/right/Asia/Tokyo; "
         "ln -s zoneinfo/right/Asia zones; TZDIR=$PWD/zones TZ=Tokyo $PROGRAM",
         tokyo},
        {"rm ${PROGRAM%/*}/libtavoqt.so; DISPLAY=:0 $PROGRAM",
         "^No windows can be shown: [^\n]*libtavoqt.so[^\n]*\nZT .*" + report},
        {"prlimit --stack=65536 $PROGRAM", report},
        {"$PROGRAM <&-", report},
        {silent("INET", "(\"127.0.0.1\", 0)",
                "update(DISPLAY = f\"127.0.0.1:{server.getsockname()[1] - 6000}\")"),
         unanswered},
        {"cd ${PROGRAM%/*}; " +
             silent("UNIX", "\"silent\"", "update(WAYLAND_DISPLAY = os.path.abspath(\"silent\"))"),
         unanswered},
        // Qt has it, and it would end the process.
        {"DISPLAY=:0 QT_QPA_PLATFORM=eglfs $PROGRAM", "^No windows can be shown: QT_QPA_PLATFORM names "
                                                      "\"eglfs\", where xcb, wayland or offscreen can be\nZT "
                                                      ".*" +
                                                          report},
        {"$PROGRAM >/dev/full", "^Tavo: the console's text cannot be written: No space left on device\n$"},
        // Nobody reads any more.
        {"{ sleep 1; env --default-signal=PIPE $PROGRAM; echo $? >&2; } | true", "^0\n$"},
    };
    for (const auto& [command, answer] : std::span(rows).subspan(getuid() == 0 ? 0 : 9))
    {
        const ProgramFolder folder;
        EXPECT_THAT(Said("export PROGRAM='" + folder.Program().string() +
                         "' DISPLAY= WAYLAND_DISPLAY= && { " + command + "; } </dev/null 2>&1"),
                    testing::ContainsRegex(answer))
            << command;
    }
}
