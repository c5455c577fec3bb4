// SPDX-License-Identifier: MIT
// Cuts a stream into tokens, each behind its length in four bytes, most significant first.
#pragma once

#include <string>
#include <string_view>

class GssFrames
{
public:
    // False once a length came that no token has; the stream is then useless.
    bool Append(std::string_view bytes);
    // Takes the next token out; false while it is not complete.
    bool Next(std::string& token);
    bool HasNext() const;

    static std::string Frame(std::string_view token);

private:
    std::string mBytes;
};
