// SPDX-License-Identifier: MIT
// A layer of the buffer under a session of OpenLDAP's library: what the library reads and writes passes
// through it on the way to the layer below.
#pragma once

#include <cstddef>

#include <lber.h>

namespace platform
{

class LdapLayer
{
public:
    LdapLayer() = default;
    LdapLayer(const LdapLayer&) = delete;
    LdapLayer& operator=(const LdapLayer&) = delete;
    virtual ~LdapLayer() = default;

    // Puts the layer into a buffer, which must not outlive it, at one of LBER_SBIOD_LEVEL_...
    void Attach(Sockbuf* buffer, int level);

protected:
    // These give what read() and write() give: -1 with EAGAIN in errno when nothing moves for now.
    virtual ber_slen_t Read(char* bytes, std::size_t length) = 0;
    virtual ber_slen_t Write(const char* bytes, std::size_t length) = 0;
    // True while Read may have something without waiting for the server. The uppermost layer knows it for
    // all.
    virtual bool HasReady() const { return false; }

    ber_slen_t ReadBelow(char* bytes, std::size_t length);
    ber_slen_t WriteBelow(const char* bytes, std::size_t length);

private:
    static int Setup(Sockbuf_IO_Desc* place, void* layer);
    static int Control(Sockbuf_IO_Desc* place, int option, void* argument);
    static ber_slen_t ReadAt(Sockbuf_IO_Desc* place, void* bytes, ber_len_t length);
    static ber_slen_t WriteAt(Sockbuf_IO_Desc* place, void* bytes, ber_len_t length);

    Sockbuf_IO_Desc* mPlace = nullptr;
};

} // namespace platform
