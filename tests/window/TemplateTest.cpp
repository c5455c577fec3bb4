// SPDX-License-Identifier: MIT
// What the layer reads out of a .res file of the resource compiler: both forms of templates, cut at any byte.
#include "platform/resource/Resources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace platform;

namespace
{

// tests/fuzz/corpus/fuzz_res/small.res: two strings, a new and an old template, and one named resource.
class SmallRes : public testing::Test
{
protected:
    Bytes File() const { return mFile; }

    Bytes Find(LPCWSTR type, UINT id) const
    {
        for (const Resource& resource : ReadResFile(mFile))
            if (resource.type.Is(LOWORD(reinterpret_cast<std::uintptr_t>(type))) && resource.name.Is(id))
                return resource.data;
        return {};
    }

private:
    static std::vector<BYTE> Load()
    {
        std::ifstream file(TAVO_SOURCE_DIR "/tests/fuzz/corpus/fuzz_res/small.res", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    const std::vector<BYTE> mFile = Load();
};

std::string Text(const DialogRect& rect)
{
    return std::to_string(rect.x) + "," + std::to_string(rect.y) + "," + std::to_string(rect.width) + "," +
           std::to_string(rect.height);
}

} // namespace

TEST_F(SmallRes, HoldsATemplateOfTheNewForm)
{
    const auto dialog = ReadDialogTemplate(Find(RT_DIALOG, 101));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->caption, L"New");
    EXPECT_EQ(Text(dialog->rect), "0,0,200,120");
    EXPECT_EQ(dialog->font.face, L"Verdana");
    EXPECT_EQ(dialog->font.points, 9);
    EXPECT_EQ(dialog->font.weight, 400);
    EXPECT_TRUE(dialog->font.italic);
    ASSERT_EQ(dialog->controls.size(), 3u);
    EXPECT_EQ(dialog->controls[0].windowClass, ControlClass::Static);
    EXPECT_EQ(dialog->controls[0].text, L"L");
    EXPECT_EQ(dialog->controls[1].windowClass, ControlClass::Edit);
    EXPECT_EQ(dialog->controls[1].id, 1000u);
    EXPECT_EQ(Text(dialog->controls[1].rect), "7,7,120,60");
    EXPECT_NE(dialog->controls[1].style & ES_MULTILINE, 0u);
    EXPECT_EQ(dialog->controls[2].windowClass, ControlClass::Other);
}

TEST_F(SmallRes, HoldsATemplateOfTheOldForm)
{
    const auto dialog = ReadDialogTemplate(Find(RT_DIALOG, 102));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->caption, L"Old");
    EXPECT_EQ(dialog->font.face, L"F");
    EXPECT_EQ(dialog->font.points, 8);
    ASSERT_EQ(dialog->controls.size(), 2u);
    EXPECT_EQ(dialog->controls[0].windowClass, ControlClass::Button);
    EXPECT_EQ(dialog->controls[0].id, 1u);
    EXPECT_EQ(dialog->controls[1].windowClass, ControlClass::ComboBox);
    EXPECT_EQ(Text(dialog->controls[1].rect), "7,7,120,60");
}

TEST_F(SmallRes, CutAnywhereLosesNoMoreThanItsEnd)
{
    const std::size_t all = ReadResFile(File()).size();
    EXPECT_EQ(all, 6u) << "the empty one in front, two blocks of strings, two templates, the named one";
    std::size_t before = 0;
    for (std::size_t length = 0; length < File().size(); ++length)
    {
        const std::size_t count = ReadResFile(File().first(length)).size();
        EXPECT_GE(count, before);
        before = count;
    }
    for (const UINT id : {101, 102})
    {
        const Bytes whole = Find(RT_DIALOG, id);
        for (std::size_t length = 0; length + sizeof(DWORD) < whole.size(); ++length)
            EXPECT_FALSE(ReadDialogTemplate(whole.first(length))) << id << " cut at " << length;
    }
}
