// SPDX-License-Identifier: MIT
// A program with one dialog, for tests that use it as a person does. It prints what was chosen in it.
#include "resources/resource.h"

#include <windows.h>

#include <clocale>
#include <cstdio>
#include <string>

namespace
{

std::wstring TextOf(HWND dialog, int id)
{
    const HWND control = GetDlgItem(dialog, id);
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

INT_PTR Serve(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    switch (message)
    {
    case WM_INITDIALOG:
        for (const wchar_t* method : {L"Try all", L"Simple", L"Digest"})
            SendMessageW(GetDlgItem(dialog, IDC_AUTH_METHOD), CB_ADDSTRING, 0,
                         reinterpret_cast<LPARAM>(method));
        SendMessageW(GetDlgItem(dialog, IDC_AUTH_METHOD), CB_SETCURSEL, 0, 0);
        SetWindowTextW(GetDlgItem(dialog, IDC_PORT), L"389");
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, LOWORD(wParam));
        if (LOWORD(wParam) == IDOK)
            std::printf("server=%ls port=%ls user=%ls method=%ls\n", TextOf(dialog, IDC_SERVER).c_str(),
                        TextOf(dialog, IDC_PORT).c_str(), TextOf(dialog, IDC_USER).c_str(),
                        TextOf(dialog, IDC_AUTH_METHOD).c_str());
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

int main()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const INT_PTR result = DialogBoxParamW(nullptr, MAKEINTRESOURCEW(IDD_LDAP_CREDS), nullptr, &Serve, 0);
    const int answer = MessageBoxTimeoutW(nullptr, L"Again?", L"Small Program", MB_YESNO, 0, 3000);
    std::printf("result=%d answer=%d locale=%s\n", static_cast<int>(result), answer,
                std::setlocale(LC_ALL, nullptr));
    return 0;
}
