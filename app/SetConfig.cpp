// SPDX-License-Identifier: MIT
#include "app/RunModes.h"

#include "app/CmdLineParser.h"
#include "foundation/EndOfRun.h"
#include "foundation/Kelvane.h"

namespace
{

void ShowFailure(const ZTString& name)
{
    constexpr DWORD kSeconds = 60;
    const ZTString text = _StrFormat(
        L"Failed to Set Value {0}.   Perhaps Tavo.exe needs to be run as an administrator?", {name});
    TimedMessageBox(L"Failed to Set Value", text, MB_OK, kSeconds, 1);
}

void SetString(eConfigID id, const ZTString& name, const ZTString& value)
{
    {
        const EndOfRunWaits wait; // for the store to be whole
        SetConfigStr(id, value, true, nullptr);
    }
    ResetConfigVal(id);
    if (GetConfigStr(id, nullptr) == value)
    {
        _Log(kLogProgress, L"Setting {0:s} = '{1:s}'", {name, value});
        return;
    }
    _Log(kLogFailure, L"Failed to set {0:s} = '{1:s}'", {name, value});
    ShowFailure(name);
}

void SetNumber(eConfigID id, const ZTString& name, DWORD number)
{
    {
        const EndOfRunWaits wait;
        SetConfigDWord(id, number, true, nullptr);
    }
    ResetConfigVal(id);
    if (GetConfigDWord(id, nullptr) == number)
    {
        _Log(kLogProgress, L"Setting {0:s} = {1:u}", {name, number});
        return;
    }
    _Log(kLogFailure, L"Failed to set {0:s} = {1:u}", {name, number});
    ShowFailure(name);
}

void SetByName(const ZTString& name, const ZTString& value)
{
    const eConfigID id = GetConfigID(name, true);
    if (id == eConfigNone)
    {
        _Log(kLogFailure, L"Got unknown setting: {0:s}", {name});
        return;
    }
    const eParamType type = GetConfigType(id);
    switch (type)
    {
    case eParamString:
        SetString(id, name, value);
        break;
    case eParamDWord:
        SetNumber(id, name, static_cast<DWORD>(wtodw(value)));
        break;
    default:
        _Log(kLogFailure, L"Got unknown type {0:u} for value {1:s}", {static_cast<int>(type), name});
        break;
    }
}

} // namespace

const wchar_t* RunSetConfig()
{
    gRunningApp = kAppSetConfig;
    const ZTString setting = gCmdLineParser.GetVal(L"SETCONFIG");
    const int colon = setting.Find(L':');
    if (colon >= 0)
        SetByName(setting.Left(colon), setting.Mid(colon + 1));
    return L"finished SETCONFIG";
}
