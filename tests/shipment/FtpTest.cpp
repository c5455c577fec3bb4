// SPDX-License-Identifier: MIT
#include "shipment/Ftp.h"
#include "shipment/ZTFtp.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

void* Value(int number)
{
    return reinterpret_cast<void*>(number);
}

void* Value(const char* text)
{
    return const_cast<char*>(text);
}

// Writes each event down as one line.
class NotingFTP : public FTP
{
public:
    int OnStatusText(FTPStatusEvent* event) override
    {
        return Note(
            1, std::string(event->connection) + " " + std::to_string(event->code) + " " + event->description,
            event->reserved);
    }
    int OnEvent2(FTPEvent2* event) override
    {
        return Note(2,
                    std::string(event->text1) + " " + event->text2 + " " + std::to_string(event->number) +
                        " " + std::to_string(event->size) + " " + event->text3,
                    event->reserved);
    }
    int OnEvent3(FTPNumberEvent* event) override
    {
        return Note(3, std::to_string(event->number), event->reserved);
    }
    int OnErrorText(FTPErrorEvent* event) override
    {
        return Note(4, std::to_string(event->code) + " " + event->description, event->reserved);
    }
    int OnTraceText(FTPTraceEvent* event) override
    {
        return Note(5, std::to_string(event->direction) + " " + event->line, event->reserved);
    }
    int OnApproval(FTPApprovalEvent* event) override
    {
        const std::string block(static_cast<const char*>(event->certificate),
                                static_cast<std::size_t>(event->certificateLength));
        const std::string text = block + " " + event->subject + " " + event->issuer + " " + event->status +
                                 " " + std::to_string(event->decision);
        event->decision = -7;
        return Note(6, text, event->reserved);
    }
    int OnEvent7(FTPTextEvent* event) override { return Note(7, event->text, event->reserved); }
    int OnEvent8(FTPNumberEvent* event) override
    {
        return Note(8, std::to_string(event->number), event->reserved);
    }
    int OnProgress(FTPProgressEvent* event) override
    {
        return Note(9,
                    std::to_string(event->direction) + " " + std::to_string(event->bytes) + " " +
                        std::to_string(event->percent) + " " +
                        std::string(event->text, static_cast<std::size_t>(event->textLength)),
                    event->reserved);
    }

    std::string noted;

private:
    int Note(int event, const std::string& text, int reserved)
    {
        noted = std::to_string(event) + ": " + text;
        return reserved == 0 ? event * 10 : -1;
    }
};

} // namespace

TEST(FTPEventSink, GivesEachEventItsRecordAndItsResultBack)
{
    NotingFTP ftp;
    std::int64_t size = std::int64_t{5} << 40;
    struct Row
    {
        int event;
        std::vector<void*> params;
        std::vector<int> lengths;
        std::string expected;
    } rows[] = {
        {1, {Value("Control"), Value(4), Value("Logged in")}, {0, 0, 0}, "1: Control 4 Logged in"},
        {2,
         {Value("a"), Value("b"), Value(-3), &size, Value("c")},
         {0, 0, 0, 0, 0},
         "2: a b -3 5497558138880 c"},
        {3, {Value(-1)}, {0}, "3: -1"},
        {4, {Value(530), Value("530 No.")}, {0, 0}, "4: 530 530 No."},
        {5, {Value(1), Value("220 Ready.")}, {0, 0}, "5: 1 220 Ready."},
        {6,
         {Value("block and more"), Value("s"), Value("i"), Value("w"), Value(1)},
         {5, 0, 0, 0, 0},
         "6: block s i w 1"},
        {7, {Value("name")}, {0}, "7: name"},
        {8, {Value(0)}, {0}, "8: 0"},
        {9, {Value(0), &size, Value(99), Value("text")}, {0, 0, 0, 4}, "9: 0 5497558138880 99 text"},
    };
    for (Row& row : rows)
    {
        EXPECT_EQ(row.event * 10,
                  FTPEventSink(static_cast<FTP*>(&ftp), row.event, static_cast<int>(row.params.size()),
                               row.params.data(), row.lengths.data()));
        EXPECT_EQ(row.expected, ftp.noted);
    }
    // The decision goes back with its sign.
    EXPECT_EQ(Value(-7), rows[5].params[4]);

    ftp.noted.clear();
    EXPECT_EQ(0, FTPEventSink(static_cast<FTP*>(&ftp), 0, 0, nullptr, nullptr));
    EXPECT_EQ(0, FTPEventSink(static_cast<FTP*>(&ftp), 10, 0, nullptr, nullptr));
    EXPECT_EQ("", ftp.noted);
}

TEST(ZTFTP, ApprovesWhateverItIsAskedAndCountsWithoutALine)
{
    ZTFTP ftp;
    FTPApprovalEvent approval{nullptr, 0, "", "", "expired", 0, 0};
    EXPECT_EQ(0, ftp.OnApproval(&approval));
    EXPECT_EQ(1, approval.decision);

    // The figure starts as 0, so the first event with 0 makes no line, but it counts.
    FTPProgressEvent progress{0, 12, 0, "", 0, 0};
    EXPECT_EQ(0, ftp.bytesSent);
    EXPECT_EQ(0, ftp.OnProgress(&progress));
    EXPECT_EQ(12, ftp.bytesSent);
    EXPECT_EQ(0, gLastFTPPercent);
}

TEST(FTP, HandsResultsAndTextsOnUnchanged)
{
    FTP ftp;
    EXPECT_EQ(0, ftp.SetUser("user"));
    EXPECT_EQ(0, ftp.SetPassword("secret"));
    EXPECT_EQ(0, ftp.SetRemoteHost("host"));
    EXPECT_EQ(0, ftp.SetRemoteFile("file"));
    EXPECT_EQ(0, ftp.SetPassive(0));
    EXPECT_EQ(0, ftp.SetTransferMode(2));
    EXPECT_EQ(0, ftp.SetLocalFile(L"nowhere"));
    EXPECT_STREQ("", ftp.GetLastError());
    EXPECT_EQ(1003, ftp.SetPassive(2));
    EXPECT_STREQ("1003 Passive mode is 1 or 0.", ftp.GetLastError());
    EXPECT_EQ(1004, ftp.Upload());
}
