// SPDX-License-Identifier: MIT
// The report that the console opens with: the machine as the monitoring product sees it. The lines, their
// order and their words are fixed, and no step's failure stops it.
#include "console/MacSurvey.h"
#include "console/TavoDlg.h"

#include "foundation/DateValue.h"
#include "foundation/Kelvane.h"
#include "resources/resource.h"

#include <time.h>
#include <wchar.h>

namespace
{

DateValue Now()
{
    return DateFromTime(_time64(nullptr));
}

// The language tag that the system files under a locale's number, up to its first ";". Empty when there is
// none.
ZTString ReadLocaleTag(HKEY key, LCID lcid)
{
    constexpr DWORD kTagBytes = 500;
    wchar_t text[kTagBytes] = {};
    DWORD bytes = kTagBytes;
    RegQueryValueExW(key, _StrFormat(L"{0:04X}", {lcid}), nullptr, nullptr, reinterpret_cast<BYTE*>(text),
                     &bytes);
    return wcstok(text, L";");
}

} // namespace

BOOL CTavoDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    gConsoleWnd = m_hWnd;
    SendMessageW(m_hWnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(mIcon));
    SendMessageW(m_hWnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(mIcon));

    ReportMachine();
    ReportClock();
    ReportTimeZone();
    ReportNumbers();
    ReportMacAddress();
    ReportLocales();
    ReportCustomerService();
    if (!StartUnattendedShipment())
        return FALSE;

    UpdateData(FALSE);
    return TRUE;
}

void CTavoDlg::ReportMachine()
{
    const ZTString computer = GetLocalComputerName();
    AppendLine(_StrFormat(L"Current Computer: {0:s}\r\n", {computer}));
    const ZTString user = GetUserNameW(NameUnknown);
    AppendLine(_StrFormat(L"Current User: {0:s}\r\n", {user}));
}

// Each line reads the clock anew.
void CTavoDlg::ReportClock()
{
    _tzset();
    const ZTString local = FormatLocalDate(Now());
    AppendLine(_StrFormat(L"Current local time: {0:s}\r\n", {local}));
    const ZTString mail = FormatRFC822Date(Now());
    AppendLine(_StrFormat(L"Current RFC822 mail time: {0:s}\r\n", {mail}));
    const ZTString iso = FormatISO8601Date(Now());
    AppendLine(_StrFormat(L"Current ISO8601 time: {0:s}\r\n", {iso}));
    const ZTString odbc = FormatODBCDate(DateToTime(Now()));
    AppendLine(_StrFormat(L"Current ODBC time in UTC: {0:s}\r\n", {odbc}));
}

void CTavoDlg::ReportTimeZone()
{
    TIME_ZONE_INFORMATION zone{};
    switch (GetTimeZoneInformation(&zone))
    {
    case TIME_ZONE_ID_STANDARD:
        AppendLine(_StrFormat(L"Time Zone Info: Standard Time.  Bias={0:d}\r\n", {zone.StandardBias}));
        break;
    case TIME_ZONE_ID_DAYLIGHT:
        AppendLine(_StrFormat(L"Time Zone Info: Daylight Time.  Bias={0:d}\r\n", {zone.DaylightBias}));
        break;
    default:
        AppendLine(L"Time Zone Info: Can't determine if standard/daylight time\r\n");
        break;
    }
    AppendLine(
        _StrFormat(L"Timezone base bias: {0:d}\r\nStandard Bias: {1:d}\r\nDaylight Bias: {2:d}\r\n"
                   L"Timezone Standard Name: {3:s}\r\nTimezone Daylight Name: {4:s}\r\n",
                   {zone.Bias, zone.StandardBias, zone.DaylightBias, zone.StandardName, zone.DaylightName}));

    constexpr int kFirstYear = 2017;
    constexpr int kLastYear = 2023;
    for (int year = kFirstYear; year <= kLastYear; ++year)
    {
        int month1 = 0, day1 = 0, month2 = 0, day2 = 0;
        GetTimeZoneTransitionDates(year, month1, day1, month2, day2);
        AppendLine(_StrFormat(L"Daylight transitions: {0}-{1:02d}-{2:02d}, {0}-{3:02d}-{4:02d}\r\n",
                              {year, month1, day1, month2, day2}));
    }
}

void CTavoDlg::ReportNumbers()
{
    AppendLine(_StrFormat(L"1.2 = {0:0.1f}\r\n", {1.2}));
    const ZTString formatted = FormatFloatingPointNum(1.2, false, -1);
    AppendLine(_StrFormat(L"Formated 1.2 = {0:s}\r\n", {formatted}));
}

void CTavoDlg::ReportMacAddress()
{
    std::wstring log;
    const std::wstring address = GetMACAddress(log);
    AppendLine(_StrFormat(L"MAC address: {0:s}\r\n", {address.c_str()}));
    AppendLine(_StrFormat(L"MAC log: {0:s}\r\n", {log.c_str()}));
}

void CTavoDlg::ReportLocales()
{
    HKEY key = nullptr;
    // Created where it is missing, though it is only read.
    RegCreateKeyW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\MIME\\Database\\Rfc1766", &key);
    const LCID user = GetUserDefaultLCID();
    const ZTString userTag = ReadLocaleTag(key, user);
    AppendLine(_StrFormat(L"User default locale: [{0:s}] (x{1:04X})\r\n", {userTag, user}));
    const LCID system = GetSystemDefaultLCID();
    const ZTString systemTag = ReadLocaleTag(key, system);
    AppendLine(_StrFormat(L"System default locale: [{0:s}] (x{1:04X})\r\n", {systemTag, system}));
    RegCloseKey(key);
}

void CTavoDlg::ReportCustomerService()
{
    ZTString text = GetCustServiceInfo();
    text += L"\r\n";
    AppendLine(text);
}
