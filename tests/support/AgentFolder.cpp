// SPDX-License-Identifier: MIT
#include "tests/support/AgentFolder.h"

#include <algorithm>
#include <cstdio>

AgentFolder::AgentFolder()
{
    fs::copy(TAVO_AGENT, Agent());
}

fs::path AgentFolder::Agent() const
{
    return Path() / fs::path(TAVO_AGENT).filename();
}

std::wstring AgentFolder::Line(const std::string& answers, const std::vector<std::string>& steps) const
{
    std::wstring line = L"\"" + Agent().wstring() + L"\" \"" + (Path() / answers).wstring() + L"\"";
    for (const std::string& step : steps)
        line += L" \"" + std::wstring(step.begin(), step.end()) + L"\"";
    return line;
}

ChildProcess AgentFolder::Start(const std::vector<std::string>& steps) const
{
    return ChildProcess(Line("answers-" + std::to_string(++mRuns), steps));
}

AgentOutcome AgentFolder::Run(const std::vector<std::string>& steps, bool asNobody) const
{
    const std::string answers = "answers-" + std::to_string(++mRuns);
    const std::string errors = answers + ".errors";
    std::wstring user;
    if (asNobody)
    {
        for (const std::string& name : {answers, errors})
        {
            Write(name, "");
            fs::permissions(Path() / name, fs::perms(0666));
        }
        // The tree may lie where only root may look.
        for (const char* name : {"libKelvane.so", "libOriska.so", "libtavoplatform.so"})
            fs::copy_file(fs::path(TAVO_AGENT).parent_path().parent_path() / "bin" / name, Path() / name,
                          fs::copy_options::skip_existing);
        user = kAsNobody + L"env \"LD_LIBRARY_PATH=" + Path().wstring() + L"\" ";
    }
    const DWORD exitCode = ChildProcess(user + Line(answers, steps)).ExitCode();
    return {exitCode, Read(answers), Read(errors)};
}

std::vector<std::string> AgentFolder::Names(const std::string& start) const
{
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(Path()))
        if (const std::string name = entry.path().filename().string(); name.starts_with(start))
            names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

std::string Encoded(const std::string& text)
{
    std::string encoded;
    for (const char byte : text)
    {
        char form[4];
        std::snprintf(form, sizeof form, "%%%02X", static_cast<unsigned char>(byte));
        encoded += form;
    }
    return encoded;
}
