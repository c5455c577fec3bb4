// SPDX-License-Identifier: MIT
// What the console draws while it is minimised and how it scrolls, of the layer's own inside, so on Linux
// only.
#include "console/TavoDlg.h"
#include "platform/dialogs/UserInput.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <tuple>

static std::vector<std::pair<WPARAM, LPARAM>> gScrolls;

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == EM_LINESCROLL)
        gScrolls.emplace_back(wParam, lParam);
    return reinterpret_cast<decltype(&SendMessageW)>(dlsym(RTLD_NEXT, "SendMessageW"))(window, message,
                                                                                       wParam, lParam);
}

using Drawn = std::tuple<HICON, int, int>;
static std::vector<Drawn> gDrawn;

BOOL DrawIcon(HDC context, int x, int y, HICON icon)
{
    EXPECT_EQ(context, reinterpret_cast<HDC>(platform::TopDialog()->handle));
    gDrawn.emplace_back(icon, x, y);
    return TRUE;
}

class Minimised : public CTavoDlg
{
    BOOL OnInitDialog() override
    {
        CTavoDlg::OnInitDialog();
        const LRESULT lines = SendMessageW(::GetDlgItem(m_hWnd, IDC_OUTPUT), EM_GETLINECOUNT, 0, 0);
        EXPECT_EQ(gScrolls.back(), std::pair(WPARAM{0}, LPARAM{lines})) << "the last line is in sight";
        const HICON icon = LoadIconW(nullptr, MAKEINTRESOURCEW(IDI_TAVO));
        EXPECT_EQ(platform::TopDialog()->dialog->icon, icon);
        EXPECT_EQ(SendMessageW(m_hWnd, WM_QUERYDRAGICON, 0, 0), reinterpret_cast<LRESULT>(icon));
        platform::UserMinimized(*platform::TopDialog(), true);
        SendMessageW(m_hWnd, WM_PAINT, 0, 0);
        // Of 858 and 460 pixels, of which the icon takes 32.
        EXPECT_EQ(gDrawn, std::vector{Drawn(icon, 413, 214)});
        EndDialog(1);
        return TRUE;
    }
};

TEST(Console, ScrollsToItsEndAndDrawsItsIconInTheMiddleWhileItIsMinimised)
{
    EXPECT_EQ(Minimised().DoModal(), 1);
}
