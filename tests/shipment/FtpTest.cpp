// SPDX-License-Identifier: MIT
#include "shipment/Ftp.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string_view>

static void* Value(int number)
{
    return reinterpret_cast<void*>(number);
}

static void* Value(const char* text)
{
    return const_cast<char*>(text);
}

static std::string_view Part(const void* text, int length)
{
    return {static_cast<const char*>(text), static_cast<std::size_t>(length)};
}

class NotingFTP : public FTP
{
public:
    int OnStatusText(FTPStatusEvent* e) override
    {
        return Note(1, e->connection, e->code, e->description, e->reserved);
    }
    int OnEvent2(FTPEvent2* e) override
    {
        return Note(2, e->text1, e->text2, e->number, e->size, e->text3, e->reserved);
    }
    int OnEvent3(FTPNumberEvent* e) override { return Note(3, e->number, e->reserved); }
    int OnErrorText(FTPErrorEvent* e) override { return Note(4, e->code, e->description, e->reserved); }
    int OnTraceText(FTPTraceEvent* e) override { return Note(5, e->direction, e->line, e->reserved); }
    int OnApproval(FTPApprovalEvent* e) override
    {
        const int decision = std::exchange(e->decision, -7);
        return Note(6, Part(e->certificate, e->certificateLength), e->subject, e->issuer, e->status, decision,
                    e->reserved);
    }
    int OnEvent7(FTPTextEvent* e) override { return Note(7, e->text, e->reserved); }
    int OnEvent8(FTPNumberEvent* e) override { return Note(8, e->number, e->reserved); }
    int OnProgress(FTPProgressEvent* e) override
    {
        return Note(9, e->direction, e->bytes, e->percent, Part(e->text, e->textLength), e->reserved);
    }

    std::string noted;

private:
    template <class... Fields>
    int Note(int event, const Fields&... fields)
    {
        std::ostringstream line;
        line << event << ':';
        ((line << ' ' << fields), ...);
        noted = line.str();
        return event * 10;
    }
};

TEST(FTPEventSink, GivesEachEventItsRecordAndItsResultBack)
{
    NotingFTP ftp;
    std::int64_t size = std::int64_t{5} << 40;
    // Its number and parameters, the length of its block or text, and what is noted with the reserved 0.
    const std::tuple<int, std::vector<void*>, int, std::string> rows[] = {
        {1, {Value("Control"), Value(4), Value("Logged in")}, 0, "1: Control 4 Logged in 0"},
        {2, {Value("a"), Value("b"), Value(-3), &size, Value("c")}, 0, "2: a b -3 5497558138880 c 0"},
        {3, {Value(-1)}, 0, "3: -1 0"},
        {4, {Value(530), Value("530 No.")}, 0, "4: 530 530 No. 0"},
        {5, {Value(1), Value("220 Ready.")}, 0, "5: 1 220 Ready. 0"},
        {6, {Value("block and more"), Value("s"), Value("i"), Value("w"), Value(1)}, 5, "6: block s i w 1 0"},
        {7, {Value("name")}, 0, "7: name 0"},
        {8, {Value(8)}, 0, "8: 8 0"},
        {9, {Value(0), &size, Value(99), Value("text")}, 4, "9: 0 5497558138880 99 text 0"},
    };
    for (auto [event, params, length, expected] : rows)
    {
        int lengths[5] = {};
        lengths[event == 9 ? 3 : 0] = length;
        EXPECT_EQ(event * 10, FTPEventSink(static_cast<FTP*>(&ftp), event, static_cast<int>(params.size()),
                                           params.data(), lengths));
        EXPECT_EQ(expected, ftp.noted);
        if (event == 6)
            EXPECT_EQ(Value(-7), params[4]) << "the decision goes back with its sign";
        FTP silent;
        EXPECT_EQ(0, FTPEventSink(&silent, event, 0, params.data(), lengths));
    }

    ftp.noted.clear();
    for (const int unknown : {0, 10})
        EXPECT_EQ(0, FTPEventSink(static_cast<FTP*>(&ftp), unknown, 0, nullptr, nullptr));
    EXPECT_EQ("", ftp.noted);
}
