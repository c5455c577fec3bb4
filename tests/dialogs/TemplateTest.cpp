// SPDX-License-Identifier: MIT
// What the layer reads out of a .res file of the resource compiler: templates of dialogs.
#include "platform/resource/Resources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace platform;
using testing::ElementsAre;

namespace
{

// Two strings, a new and an old template, and one named resource.
Bytes File()
{
    static std::ifstream file(TAVO_SOURCE_DIR "/tests/fuzz/corpus/fuzz_res/small.res", std::ios::binary);
    static const std::vector<BYTE> bytes{std::istreambuf_iterator<char>(file), {}};
    return bytes;
}

Bytes FindDialog(UINT id)
{
    for (const Resource& resource : ReadResFile(File()))
        if (resource.type.Is(LOWORD(reinterpret_cast<std::uintptr_t>(RT_DIALOG))) && resource.name.Is(id))
            return resource.data;
    return {};
}

// A line for the dialog and one for each control.
std::vector<std::wstring> Describe(const std::optional<DialogTemplate>& dialog)
{
    if (!dialog)
        return {};
    const auto place = [](const DialogRect& rect)
    {
        return std::to_wstring(rect.x) + L"," + std::to_wstring(rect.y) + L"," + std::to_wstring(rect.width) +
               L"," + std::to_wstring(rect.height);
    };
    const DialogFont& font = dialog->font;
    std::vector<std::wstring> lines{dialog->caption + L" " + place(dialog->rect) + L" " + font.face + L" " +
                                    std::to_wstring(font.points) + (font.italic ? L" italic" : L"")};
    for (const ControlTemplate& control : dialog->controls)
        lines.push_back(std::to_wstring(static_cast<int>(control.windowClass)) + L" " +
                        std::to_wstring(control.id) + L" " + control.text + L" " + place(control.rect));
    return lines;
}

} // namespace

TEST(ResFile, HoldsTemplatesOfTheNewForm)
{
    EXPECT_THAT(Describe(ReadDialogTemplate(FindDialog(101))),
                ElementsAre(L"New 0,0,200,120 Verdana 9 italic", L"2 4294967295 L 7,79,40,8",
                            L"1 1000  7,7,120,60", L"4 1001 x 7,7,50,14"));
    EXPECT_FALSE(ReadDialogTemplate(FindDialog(102))) << "of the old form";
}
