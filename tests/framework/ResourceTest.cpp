// SPDX-License-Identifier: MIT
// The program's resources, read back from what the resource compiler made: every dialog control by control,
// the texts, the icon's sizes, the version and the manifest. The same compiler links the same bytes into the
// Windows program.
#include "platform/resource/Resources.h"
#include "resources/resource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>

using namespace platform;
using testing::ElementsAre;
using testing::HasSubstr;

// The .res file that tavo_resources embeds.
extern "C" const BYTE tavo_resources_begin[];
extern "C" const BYTE tavo_resources_end[];

namespace
{

// Resource types, for which the resource compiler and the headers have names of different forms.
constexpr UINT kIcon = 3;
constexpr UINT kDialog = 5;
constexpr UINT kIconGroup = 14;
constexpr UINT kVersion = 16;
constexpr UINT kManifest = 24;

Bytes FindBytes(UINT type, UINT id)
{
    for (const Resource& resource : ReadResFile({tavo_resources_begin, tavo_resources_end}))
        if (resource.type.Is(type) && resource.name.Is(id))
            return resource.data;
    return {};
}

std::string TextOf(UINT type, UINT id)
{
    const Bytes bytes = FindBytes(type, id);
    return {bytes.begin(), bytes.end()};
}

// The texts here are ASCII.
std::string Narrow(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

std::string Place(const DialogRect& rect)
{
    return std::to_string(rect.x) + ", " + std::to_string(rect.y) + ", " + std::to_string(rect.width) + ", " +
           std::to_string(rect.height);
}

using Bits = std::vector<std::pair<DWORD, const char*>>;

// The names of the bits that are set, and what is left over as a number.
std::string NameBits(DWORD style, const Bits& bits)
{
    std::string text;
    for (const auto& [bit, name] : bits)
    {
        if ((style & bit) != bit)
            continue;
        style &= ~bit;
        text += std::string(" ") + name;
    }
    return style == 0 ? text : text + " and " + std::to_string(style);
}

// A control's style in words; children are visible and not disabled unless it says so.
std::string DescribeStyle(const ControlTemplate& control)
{
    struct Class
    {
        const char* kind;
        Bits bits;
    };
    static const std::map<ControlClass, Class> classes = {
        {ControlClass::Button,
         {"button",
          {{BS_AUTOCHECKBOX, "check"}, {BS_DEFPUSHBUTTON, "default"}, {BS_MULTILINE, "multi-line"}}}},
        {ControlClass::Edit,
         {"edit",
          {{ES_MULTILINE, "multi-line"}, {ES_READONLY, "read-only"}, {ES_AUTOHSCROLL, "auto-scroll"}}}},
        {ControlClass::Static, {"label", {}}},
        {ControlClass::ComboBox, {"combo", {{CBS_DROPDOWNLIST, "list"}}}},
    };
    const Bits common = {{WS_BORDER, "border"}, {WS_VSCROLL, "vertical-bar"}, {WS_HSCROLL, "horizontal-bar"},
                         {WS_TABSTOP, "tab"},   {WS_GROUP, "group"},          {WS_DISABLED, "disabled"}};
    const Class& of = classes.at(control.windowClass);
    Bits bits = of.bits;
    bits.insert(bits.end(), common.begin(), common.end());
    EXPECT_TRUE(control.style & WS_CHILD);
    EXPECT_EQ(control.extendedStyle, 0U);
    const char* hidden = control.style & WS_VISIBLE ? "" : " hidden";
    return of.kind + NameBits(control.style & ~DWORD{WS_CHILD | WS_VISIBLE}, bits) + hidden;
}

// The dialog's own line and one line for each control, in tab order.
std::vector<std::string> DescribeDialog(int id)
{
    const std::optional<DialogTemplate> dialog =
        ReadDialogTemplate(FindBytes(kDialog, static_cast<UINT>(id)));
    if (!dialog)
        return {};
    const Bits bits = {{DS_SETFONT, "font"},       {DS_MODALFRAME, "modal-frame"}, {DS_CENTER, "centred"},
                       {WS_POPUP, "popup"},        {WS_VISIBLE, "visible"},        {WS_CAPTION, "caption"},
                       {WS_SYSMENU, "system-menu"}};
    std::vector<std::string> lines{Narrow(dialog->caption) + " | " + Place(dialog->rect) + " | " +
                                   Narrow(dialog->font.face) + " " + std::to_string(dialog->font.points) +
                                   " |" + NameBits(dialog->style, bits) +
                                   (dialog->extendedStyle == WS_EX_APPWINDOW ? " task-bar" : "")};
    for (const ControlTemplate& control : dialog->controls)
        lines.push_back(std::to_string(static_cast<int>(control.id)) + " | " + Narrow(control.text) + " | " +
                        Place(control.rect) + " | " + DescribeStyle(control));
    return lines;
}

std::wstring LoadText(UINT id, int room = 200)
{
    wchar_t text[200] = {};
    const int length = LoadStringW(nullptr, id, text, room);
    EXPECT_EQ(static_cast<std::size_t>(length), std::wcslen(text));
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
    EXPECT_EQ(LoadText(IDS_ADMINISTRATOR_TEXT, 5), L"This");
    EXPECT_EQ(LoadText(132), L"") << "the next one of the block";
    EXPECT_EQ(LoadText(4711), L"");
}

TEST(Resources, IconHasAnImageOfEachSize)
{
    std::vector<int> sizes;
    for (const IconEntry& entry : ReadIconGroup(FindBytes(kIconGroup, IDI_TAVO)))
    {
        sizes.push_back(entry.width);
        EXPECT_EQ(entry.bitsPerPixel, 32);
        EXPECT_FALSE(FindBytes(kIcon, entry.id).empty());
    }
    EXPECT_THAT(sizes, ElementsAre(16, 24, 32, 48, 64, 128, 256));
}

TEST(Resources, VersionIsTheTrees)
{
    const std::string bytes = TextOf(kVersion, 1);
    const std::size_t signature = bytes.find("\xBD\x04\xEF\xFE");
    ASSERT_NE(signature, std::string::npos);
    WORD parts[4]; // behind the signature and the structure's version: minor, major, build, patch
    std::memcpy(parts, bytes.data() + signature + 8, sizeof parts);
    EXPECT_EQ(std::to_string(parts[1]) + "." + std::to_string(parts[0]) + "." + std::to_string(parts[3]),
              TAVO_VERSION);
}

TEST(Resources, ManifestAsksForNothing)
{
    const std::string manifest = TextOf(kManifest, 1);
    EXPECT_THAT(manifest, HasSubstr(R"(<requestedExecutionLevel level="asInvoker" uiAccess="false"/>)"));
    EXPECT_THAT(manifest, HasSubstr(">true</dpiAware>"));
}
