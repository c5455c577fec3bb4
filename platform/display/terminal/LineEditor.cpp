// SPDX-License-Identifier: MIT
#include "platform/display/terminal/LineEditor.h"

#include "platform/display/Module.h"

namespace platform
{

std::unique_ptr<LineEditor> MakeLineEditor(LineEditorHost& host)
{
    const auto factory =
        reinterpret_cast<LineEditorFactory>(FindInModule("libtavoedit.so", kLineEditorFactoryName));
    return std::unique_ptr<LineEditor>(factory != nullptr ? factory(host) : nullptr);
}

} // namespace platform
