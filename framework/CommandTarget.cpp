// SPDX-License-Identifier: MIT
#include "framework/afxwin.h"

const CRuntimeClass CObject::classCObject = {"CObject", nullptr};

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const CRuntimeClass* CObject::GetRuntimeClass() const
{
    return RUNTIME_CLASS(CObject);
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap()
{
    static constexpr AFX_MSGMAP_ENTRY end{};
    static constexpr AFX_MSGMAP map = {nullptr, &end};
    return &map;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const
{
    return GetThisMessageMap();
}

bool CCmdTarget::OnCmdMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result)
{
    const UINT id = message == WM_COMMAND ? LOWORD(wParam) : 0;
    const UINT code = message == WM_COMMAND ? HIWORD(wParam) : 0;
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->base != nullptr ? map->base() : nullptr)
    {
        for (const AFX_MSGMAP_ENTRY* row = map->entries; row->message != 0; ++row)
        {
            if (row->message == message && row->code == code && row->id == id)
            {
                result = row->invoke(this, wParam, lParam);
                return true;
            }
        }
    }
    return false;
}
