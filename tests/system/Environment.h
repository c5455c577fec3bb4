// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

// Sets a variable of the environment, or takes it out, until the end of the block.
class Variable
{
public:
    Variable(const char* name, const char* value) : mName(name)
    {
        if (const char* old = getenv(name))
        {
            mOld = old;
        }
        Set(value);
    }
    ~Variable() { Set(mOld ? mOld->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void Set(const char* value) const
    {
        if (value == nullptr)
        {
            unsetenv(mName);
        }
        else
        {
            setenv(mName, value, 1);
        }
    }

    const char* mName;
    std::optional<std::string> mOld;
};
