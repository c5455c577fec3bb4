// SPDX-License-Identifier: MIT
// The messages that a directory server sends, before the library reads them: what is no LDAP ends the stream
// at once, and what nobody asked for never reaches the library, which keeps no words of it and does not
// outlive every form of it.
#pragma once

#include "platform/net/LdapFault.h"

#include <cstddef>
#include <string>
#include <string_view>

class LdapMessages
{
public:
    // Takes the next bytes of the stream.
    void Append(std::string_view bytes);

    // What the library may read now; Drop tells how much of it has been read.
    std::string_view Ready() const { return std::string_view(mBytes).substr(mRead, mCleared - mRead); }
    void Drop(std::size_t count) { mRead += count; }

    // Why nothing follows what is ready: the server's notice of disconnection, or bytes that are no LDAP.
    // Success while more may come.
    const LdapFault& Ending() const { return mEnding; }

private:
    void Clear();
    // Takes a message that answers no request.
    void TakeUnasked(std::string_view message);

    std::string mBytes;
    std::size_t mRead = 0;    // of mBytes, by the library
    std::size_t mCleared = 0; // of mBytes, for the library
    std::size_t mPending = 0; // bytes of a cleared message that have not come yet
    bool mHasBegun = false;
    LdapFault mEnding;
};
