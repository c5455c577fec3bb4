// SPDX-License-Identifier: MIT
// Whatever a server says, line by line: the events stay few, short and harmless, and tell no password.
#include "libraries/ipworks/HarmlessText.h"
#include "libraries/ipworks/Upload.h"
#include "tests/fuzz/Require.h"
#include "text/Unicode.h"

#include <algorithm>

constexpr std::string_view kSecret = "Kesto-42";
constexpr std::size_t kCutMark = 3; // "..."
constexpr int kMostLines = 101;     // of one answer

static void RequireHarmless(std::string_view text)
{
    const std::size_t characters = text::FromUtf8(text).size();
    Require(characters <= kLongestText + kCutMark);
    Require(text.find(kSecret) == std::string_view::npos);
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        Require(byte >= 0x20 && byte != 0x7F && byte < 0xF5 && byte != 0xC0 && byte != 0xC1);
        Require(byte != 0xC2 || next >= 0xA0); // the C1 controls
    }
    // What is harmless stays as it is.
    if (characters <= kLongestText)
        Require(MakeHarmless(text, kSecret) == text);
}

static int OnEvent(void* lines, int eventId, int paramCount, void* params[], int*)
{
    Require(eventId == kIPWorksDialogue && paramCount == 2);
    ++*static_cast<int*>(lines);
    RequireHarmless(static_cast<const char*>(params[1]));
    return 0;
}

static void Fuzz(std::string_view text)
{
    UploadJob job;
    job.password = kSecret;
    int lines = 0;
    UploadEvents events(&OnEvent, &lines, job);
    for (std::string_view rest = text; !rest.empty();)
    {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, end);
        const int number = AnswerNumber(line);
        Require(number >= 0 && number <= 999);
        Require(number == 0 || std::to_string(1000 + number).substr(1) == line.substr(0, 3));
        events.Answer(line);
        rest.remove_prefix(end);
    }
    Require(lines <= kMostLines);
    RequireHarmless(MakeHarmless(text, kSecret));
}
