// SPDX-License-Identifier: MIT
// The uppermost layer of a session's buffer: it hands OpenLDAP's library whole messages and ends the stream
// at what is not LDAP or takes too much memory. What nobody asked for never reaches the library, which keeps
// no words of it and does not outlive every form of it.
#pragma once

#include "platform/net/BerReader.h"
#include "platform/net/LdapFault.h"
#include "platform/net/LdapLayer.h"

#include <string>
#include <string_view>

namespace platform
{

class LdapMessageLayer : public LdapLayer
{
public:
    void Attach(Sockbuf* buffer);

    // From now on the messages of another answer come, which may take 64 MB.
    void BeginAnswer() { mTaken = 0; }
    // The memory that it takes, in bytes.
    std::size_t Taken() const { return mTaken; }

    // Why no more messages come: the server's notice of disconnection, bytes that are not LDAP, too many of
    // them, or too little memory. Success while more may come.
    const LdapFault& Ending() const { return mEnding; }

    // The result that the last answer to a request bore, with the server's words; where it names another
    // server and says nothing else, its first address is the cause.
    LdapFault ResultOf(int request) const;

protected:
    ber_slen_t Read(char* bytes, std::size_t length) override;
    // Overwrites what it has written: the library gives a request's memory back as it is, and with it the
    // password of a bind.
    ber_slen_t Write(const char* bytes, std::size_t length) override;
    bool HasReady() const override { return !mIsDrained; }

private:
    // Reads what has come and takes the next whole message from it. Gives what Read gives when there is none.
    ber_slen_t Fill();
    void TakeMessage();
    void Judge(std::string_view message);

    BerReader mReader;
    std::string mBytes;
    std::size_t mRead = 0;  // of mBytes, by the library
    std::size_t mReady = 0; // of mBytes, for the library
    std::size_t mTaken = 0;
    bool mIsDrained = true; // nothing more can be read for now
    bool mHasBegun = false; // a message has come
    LdapFault mEnding;

    // The last result, and the request that it answers.
    int mAnswered = 0;
    LdapFault mResult;
};

} // namespace platform
