// SPDX-License-Identifier: MIT
// The program's resources, read back from the bytes that the resource compiler made: every dialog control by
// control, the texts, the icon's sizes, the version and the manifest.
#include "resources/resource.h"
#include "tests/framework/ResourceBytes.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

// Resource types, for which the resource compiler and the headers have names of different forms.
constexpr int kIcon = 3;
constexpr int kDialog = 5;
constexpr int kIconGroup = 14;
constexpr int kVersion = 16;
constexpr int kManifest = 24;

// Takes numbers and texts from a resource, in the order in which they lie.
class Reader
{
public:
    explicit Reader(std::string_view bytes) : mBytes(bytes) {}

    template <typename Number>
    Number Take()
    {
        Number value{};
        if (mPlace + sizeof(value) > mBytes.size())
            ADD_FAILURE() << "the resource is too short";
        else
            std::memcpy(&value, mBytes.data() + mPlace, sizeof(value));
        mPlace += sizeof(value);
        return value;
    }

    // A text of the resource, or "#" and a number. The texts here are ASCII.
    std::string TakeName()
    {
        std::string name;
        for (auto unit = Take<std::uint16_t>(); unit != 0; unit = Take<std::uint16_t>())
        {
            if (unit == 0xFFFF)
                return "#" + std::to_string(Take<std::uint16_t>());
            name += static_cast<char>(unit);
        }
        return name;
    }

    // "x, y, width, height"
    std::string TakeRectangle()
    {
        std::string text;
        for (const char* separator : {"", ", ", ", ", ", "})
            text += separator + std::to_string(Take<std::int16_t>());
        return text;
    }

    void AlignTo4() { mPlace = (mPlace + 3) / 4 * 4; }

private:
    std::string_view mBytes;
    std::size_t mPlace = 0;
};

using Bits = std::vector<std::pair<std::uint32_t, const char*>>;

// The names of the bits that are set, and what is left over as a number.
std::string NameBits(std::uint32_t style, const Bits& bits)
{
    std::string text;
    for (const auto& [bit, name] : bits)
    {
        if ((style & bit) != bit)
            continue;
        style &= ~bit;
        text += std::string(" ") + name;
    }
    if (style != 0)
        text += " and " + std::to_string(style);
    return text;
}

// A control's style in words; children are visible and not disabled unless it says so.
std::string DescribeStyle(const std::string& className, std::uint32_t style)
{
    struct Class
    {
        const char* kind;
        Bits bits;
    };
    static const std::map<std::string, Class> classes = {
        {"#128",
         {"button",
          {{BS_AUTOCHECKBOX, "check"}, {BS_DEFPUSHBUTTON, "default"}, {BS_MULTILINE, "multi-line"}}}},
        {"#129",
         {"edit",
          {{ES_MULTILINE, "multi-line"}, {ES_READONLY, "read-only"}, {ES_AUTOHSCROLL, "auto-scroll"}}}},
        {"#130", {"label", {}}},
        {"#133", {"combo", {{CBS_DROPDOWNLIST, "list"}}}},
    };
    const Bits common = {{WS_BORDER, "border"}, {WS_VSCROLL, "vertical-bar"}, {WS_HSCROLL, "horizontal-bar"},
                         {WS_TABSTOP, "tab"},   {WS_GROUP, "group"},          {WS_DISABLED, "disabled"}};
    const Class& control = classes.at(className);
    Bits bits = control.bits;
    bits.insert(bits.end(), common.begin(), common.end());
    EXPECT_TRUE(style & WS_CHILD);
    const char* hidden = style & WS_VISIBLE ? "" : " hidden";
    return control.kind + NameBits(style & ~static_cast<std::uint32_t>(WS_CHILD | WS_VISIBLE), bits) + hidden;
}

// The dialog's own line and one line for each control, in tab order.
std::vector<std::string> DescribeDialog(int id)
{
    Reader reader(FindResourceBytes(kDialog, id));
    EXPECT_EQ(reader.Take<std::uint32_t>(), 0xFFFF0001U) << "an extended template";
    reader.Take<std::uint32_t>(); // help id
    const auto extendedStyle = reader.Take<std::uint32_t>();
    const auto style = reader.Take<std::uint32_t>();
    const auto count = reader.Take<std::uint16_t>();
    const std::string rectangle = reader.TakeRectangle();
    EXPECT_EQ(reader.TakeName(), "") << "menu";
    EXPECT_EQ(reader.TakeName(), "") << "class";
    const std::string caption = reader.TakeName();
    const auto points = reader.Take<std::uint16_t>();
    reader.Take<std::uint32_t>(); // weight, italic, character set
    const std::string face = reader.TakeName();
    const Bits bits = {{DS_SETFONT, "font"},       {DS_MODALFRAME, "modal-frame"}, {DS_CENTER, "centred"},
                       {WS_POPUP, "popup"},        {WS_VISIBLE, "visible"},        {WS_CAPTION, "caption"},
                       {WS_SYSMENU, "system-menu"}};
    std::vector<std::string> lines{caption + " | " + rectangle + " | " + face + " " + std::to_string(points) +
                                   " |" + NameBits(style, bits) +
                                   (extendedStyle == WS_EX_APPWINDOW ? " task-bar" : "")};
    for (int i = 0; i < count; ++i)
    {
        reader.AlignTo4();
        reader.Take<std::uint32_t>(); // help id
        EXPECT_EQ(reader.Take<std::uint32_t>(), 0U) << "extended style";
        const auto controlStyle = reader.Take<std::uint32_t>();
        const std::string place = reader.TakeRectangle();
        const auto controlId = reader.Take<std::int32_t>();
        const std::string className = reader.TakeName();
        const std::string text = reader.TakeName();
        EXPECT_EQ(reader.Take<std::uint16_t>(), 0) << "creation data";
        lines.push_back(std::to_string(controlId) + " | " + text + " | " + place + " | " +
                        DescribeStyle(className, controlStyle));
    }
    return lines;
}

std::wstring LoadText(UINT id)
{
    wchar_t text[200] = {};
    LoadStringW(nullptr, id, text, 200);
    return text;
}

} // namespace

TEST(Resources, ConsoleDialog)
{
    EXPECT_THAT(
        DescribeDialog(102),
        ElementsAre("ZT Diagnostics | 0, 0, 429, 230 | Verdana 9 | font modal-frame centred popup visible "
                    "caption task-bar",
                    "1000 |  | 7, 7, 355, 216 | edit multi-line read-only auto-scroll border vertical-bar "
                    "horizontal-bar tab",
                    "1001 | Close | 372, 7, 50, 14 | button tab",
                    "1002 | LDAP ... | 372, 57, 50, 14 | button tab",
                    "1014 |  | 400, 163, 22, 14 | edit auto-scroll border tab hidden",
                    "1013 | Show Unused | 370, 177, 61, 10 | button check tab hidden",
                    "1012 | Full Map | 372, 190, 50, 14 | button tab hidden",
                    "1011 | Step Net Map | 372, 209, 50, 14 | button tab hidden",
                    "1015 | FTP Logs to Support | 372, 24, 50, 30 | button multi-line tab",
                    "1016 | Init Python | 372, 74, 50, 14 | button tab disabled hidden",
                    "1017 | CRC64 | 372, 145, 50, 14 | button tab"));
}

TEST(Resources, CredentialsDialog)
{
    EXPECT_THAT(
        DescribeDialog(129),
        ElementsAre(
            "DiagnosticsDlg | 0, 0, 195, 166 | Verdana 9 | font modal-frame centred popup visible caption "
            "system-menu",
            "1006 |  | 66, 7, 122, 14 | edit auto-scroll border tab",
            "1008 |  | 66, 29, 40, 14 | edit auto-scroll border tab",
            "1009 |  | 66, 51, 122, 14 | edit auto-scroll border tab",
            "1004 |  | 66, 73, 122, 14 | edit auto-scroll border tab",
            "1007 |  | 66, 95, 122, 14 | edit auto-scroll border tab",
            "1003 |  | 66, 117, 122, 125 | combo list vertical-bar tab",
            "1 | OK | 82, 145, 50, 14 | button default tab", "2 | Cancel | 138, 145, 50, 14 | button tab",
            "-1 | LDAP Server: | 7, 10, 44, 8 | label group", "-1 | Username: | 7, 76, 36, 8 | label group",
            "-1 | Password: | 7, 97, 34, 8 | label group",
            "-1 | Authentication: | 7, 119, 50, 8 | label group", "-1 | Port: | 7, 32, 17, 8 | label group",
            "-1 | Domain: | 7, 54, 27, 8 | label group"));
}

TEST(Resources, ChecksumDialog)
{
    EXPECT_THAT(
        DescribeDialog(132),
        ElementsAre("Dialog | 0, 0, 345, 143 | Verdana 9 | font modal-frame centred popup visible caption "
                    "system-menu",
                    "1 | OK | 288, 7, 50, 14 | button default tab",
                    "2 | Cancel | 288, 28, 50, 14 | button tab", "-1 | Input | 7, 7, 116, 8 | label group",
                    "1018 |  | 7, 21, 261, 14 | edit auto-scroll border tab",
                    "1013 | Wide characters | 7, 41, 230, 10 | button check tab",
                    "1019 | Get CRC64 | 7, 58, 139, 14 | button tab",
                    "1014 |  | 7, 92, 261, 14 | edit auto-scroll border tab",
                    "-1 | CRC64 | 7, 82, 95, 8 | label group", "-1 | CRC64 Hex | 7, 111, 76, 8 | label group",
                    "1015 |  | 7, 122, 261, 14 | edit auto-scroll border tab"));
}

TEST(Resources, Texts)
{
    EXPECT_EQ(LoadText(IDS_ADMINISTRATOR_CAPTION), L"Administrator Warning");
    EXPECT_EQ(LoadText(IDS_ADMINISTRATOR_TEXT),
              L"This application can only be run by an administrator of this computer.");
    EXPECT_EQ(LoadText(132), L"") << "the next one of the block";
}

TEST(Resources, IconHasAnImageOfEachSize)
{
    Reader reader(FindResourceBytes(kIconGroup, IDI_TAVO));
    EXPECT_EQ(reader.Take<std::uint32_t>(), 0x10000U) << "an icon";
    const auto count = reader.Take<std::uint16_t>();
    std::vector<int> sizes;
    for (int i = 0; i < count; ++i)
    {
        const int width = reader.Take<std::uint8_t>();
        EXPECT_EQ(reader.Take<std::uint8_t>(), width);
        sizes.push_back(width == 0 ? 256 : width);
        reader.Take<std::uint32_t>(); // colours, planes
        EXPECT_EQ(reader.Take<std::uint16_t>(), 32) << "bits a pixel";
        const auto size = reader.Take<std::uint32_t>();
        EXPECT_EQ(FindResourceBytes(kIcon, reader.Take<std::uint16_t>()).size(), size);
    }
    EXPECT_THAT(sizes, ElementsAre(16, 24, 32, 48, 64, 128, 256));
    EXPECT_NE(LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_TAVO)), nullptr);
}

TEST(Resources, VersionIsTheTrees)
{
    const std::string_view bytes = FindResourceBytes(kVersion, 1);
    const std::string_view signature("\xBD\x04\xEF\xFE", 4);
    ASSERT_NE(bytes.find(signature), std::string_view::npos);
    Reader reader(bytes.substr(bytes.find(signature)));
    reader.Take<std::uint64_t>(); // signature and structure version
    const auto high = reader.Take<std::uint32_t>();
    const auto low = reader.Take<std::uint32_t>();
    EXPECT_EQ(std::to_string(high >> 16) + "." + std::to_string(high & 0xFFFF) + "." +
                  std::to_string(low >> 16),
              TAVO_VERSION);
}

TEST(Resources, ManifestAsksForNothing)
{
    const std::string manifest(FindResourceBytes(kManifest, 1));
    EXPECT_THAT(manifest, HasSubstr(R"(<requestedExecutionLevel level="asInvoker" uiAccess="false"/>)"));
    EXPECT_THAT(manifest, HasSubstr(">true</dpiAware>"));
}
