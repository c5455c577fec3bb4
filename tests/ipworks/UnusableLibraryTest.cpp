// SPDX-License-Identifier: MIT
// A libcurl on another TLS library takes no check of the certificate: our option setter plays it. Linux only.
#include "tests/ipworks/Recorder.h"

#include <curl/curl.h>

#include <cstdarg>
#include <dlfcn.h>

static CURLoption gRefused{};

#undef curl_easy_setopt
extern "C" [[gnu::visibility("default")]] CURLcode curl_easy_setopt(CURL* curl, CURLoption option, ...)
{
    va_list rest;
    va_start(rest, option);
    void* const value = va_arg(rest, void*);
    va_end(rest);
    static const auto real =
        reinterpret_cast<CURLcode (*)(CURL*, CURLoption, ...)>(dlsym(RTLD_NEXT, "curl_easy_setopt"));
    return option == gRefused ? CURLE_NOT_BUILT_IN : real(curl, option, value);
}

TEST(Component, LibraryThatLacksAnOptionIsNotUsedAndNamed)
{
    Recorder recorder;
    gRefused = CURLOPT_SSL_CTX_FUNCTION;
    EXPECT_EQ(1011, recorder.Upload());
    EXPECT_THAT(recorder.LastError(),
                testing::StartsWith("1011 The transfer library cannot be used: SSL_CTX_FUNCTION: "));
    EXPECT_TRUE(recorder.server.Commands().empty());
    gRefused = {};
    EXPECT_EQ(0, recorder.Upload()) << recorder.LastError();
}
