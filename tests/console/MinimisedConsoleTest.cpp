// SPDX-License-Identifier: MIT
// What the console draws while it is minimised, of the layer's own inside, so on Linux only.
#include "console/TavoDlg.h"
#include "platform/dialogs/UserInput.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

namespace
{

class Minimised : public CTavoDlg
{
public:
    std::vector<platform::DrawnIcon> mDrawn;

protected:
    BOOL OnInitDialog() override
    {
        platform::UserMinimized(*platform::TopDialog(), true);
        SendMessageW(m_hWnd, WM_PAINT, 0, 0);
        mDrawn = platform::TopDialog()->dialog->drawn;
        EndDialog(1);
        return TRUE;
    }
};

} // namespace

TEST(Console, DrawsItsIconInTheMiddleWhileItIsMinimised)
{
    Minimised console;
    console.DoModal();
    ASSERT_EQ(console.mDrawn.size(), 1u);
    EXPECT_EQ(console.mDrawn[0].icon, LoadIconW(nullptr, MAKEINTRESOURCEW(IDI_TAVO)));
    EXPECT_EQ(console.mDrawn[0].x, 413); // of 858 pixels, which the icon takes 32 of
    EXPECT_EQ(console.mDrawn[0].y, 214); // of 460
}
