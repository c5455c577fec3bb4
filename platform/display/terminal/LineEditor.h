// SPDX-License-Identifier: MIT
// A line of input that a person edits at a terminal: keys that move and delete, and the lines of before. The
// editor lies in a module of its own, so that a run without a person neither loads nor needs its library.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform
{

// What an editor asks of its terminal.
class LineEditorHost
{
public:
    LineEditorHost() = default;
    LineEditorHost(const LineEditorHost&) = delete;
    LineEditorHost& operator=(const LineEditorHost&) = delete;
    virtual ~LineEditorHost() = default;

    // The next character of a key that sends several: it has come already or comes within a moment.
    virtual std::optional<wchar_t> NextOfKey() = 0;
    // Whole characters in UTF-8 for the screen, and sequences that move its cursor.
    virtual void Draw(std::string_view utf8) = 0;
};

class LineEditor
{
public:
    LineEditor() = default;
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    virtual ~LineEditor() = default;

    // Shows the prompt, and after it an empty line to be edited. The cursor is at the start of a row.
    virtual void Begin(std::wstring prompt) = 0;
    // True when the key ended the line. The cursor is then on the row below it.
    virtual bool Take(wchar_t key) = 0;
    virtual std::wstring Text() const = 0;
    virtual void Replace(const std::wstring& text) = 0;

    // Takes prompt and text off the screen, and shows them again where the cursor then is.
    virtual void Hide() = 0;
    virtual void Show() = 0;

    // Offers a line to the keys that go back, for as long as this editor lives.
    virtual void Remember(const std::wstring& line) = 0;
    virtual bool MovesCursor() const = 0;
    virtual bool HasColours() const = 0;
};

// Null where the terminal has no cursor to move, or the module or its library is missing.
std::unique_ptr<LineEditor> MakeLineEditor(LineEditorHost& host);

// What the module libtavoedit.so exports under the name kLineEditorFactoryName; the editor belongs to the
// caller and ends before its host.
using LineEditorFactory = LineEditor* (*)(LineEditorHost&);
inline constexpr const char* kLineEditorFactoryName = "tavo_make_line_editor";

} // namespace platform
