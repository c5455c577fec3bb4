// SPDX-License-Identifier: MIT
// The other process of the tests. The first argument says what it does.
#include <windows.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace
{

std::wstring Wide(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

HANDLE OpenOrCreate(const std::string& name)
{
    return CreateEventW(nullptr, TRUE, FALSE, Wide(name).c_str());
}

// wait EVENT READY MS: says that it is ready, then waits; 0 when the event came.
int WaitForEvent(const std::string& name, const std::string& ready, const std::string& milliseconds)
{
    const HANDLE event = OpenOrCreate(name);
    SetEvent(OpenOrCreate(ready));
    return WaitForSingleObject(event, static_cast<DWORD>(std::stoul(milliseconds))) == WAIT_OBJECT_0 ? 0 : 1;
}

// arguments FILE ...: writes the further arguments to a file, one a line.
int WriteArguments(int count, char** arguments)
{
    std::ofstream file(arguments[2], std::ios::binary);
    for (int index = 3; index < count; ++index)
    {
        file << arguments[index] << '\n';
    }
    return file.good() ? 0 : 1;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string command = count > 1 ? arguments[1] : "";
    if (command == "wait" && count == 5)
    {
        return WaitForEvent(arguments[2], arguments[3], arguments[4]);
    }
    if (command == "arguments" && count > 2)
    {
        return WriteArguments(count, arguments);
    }
    // open EVENT: the last error of opening it.
    if (command == "open" && count == 3)
    {
        OpenOrCreate(arguments[2]);
        return static_cast<int>(GetLastError());
    }
    if (command == "exit" && count == 3)
    {
        return std::atoi(arguments[2]);
    }
    return 99;
}
