// SPDX-License-Identifier: MIT
// Part of the program itself, not of the layer's library: it runs before any library's own start. Variables
// that make a library load code, or write a file, of the caller's choice are taken out of the environment,
// since the program is run as root. Those that name data, such as KRB5_CONFIG and SSL_CERT_FILE, stay.
#include <algorithm>
#include <string_view>

namespace
{

constexpr std::string_view kDropped[] = {
    "GCONV_PATH",
    "GIO_EXTRA_MODULES",
    "GIO_MODULE_DIR",
    "GSSNTLMSSP_DEBUG",
    "GSS_MECH_CONFIG",
    "GTK_MODULES",
    "GTK_PATH",
    "KRB5_TRACE",
    "LDAPCONF",
    "LDAPRC",
    "LIBGL_DRIVERS_PATH",
    "NTLM_USER_FILE",
    "OPENSSL_CONF",
    "OPENSSL_CONF_INCLUDE",
    "OPENSSL_ENGINES",
    "OPENSSL_MODULES",
    "QT_PLUGIN_PATH",
    "QT_QPA_GENERIC_PLUGINS",
    "QT_QPA_PLATFORM_PLUGIN_PATH",
    "SASL_CONF_PATH",
    "SASL_PATH",
    "SSLKEYLOGFILE",
};

void DropVariables(int, char**, char** environment)
{
    const auto isDropped = [](const char* variable)
    {
        const std::string_view text = variable;
        const std::size_t end = text.find('=');
        return end != text.npos && std::ranges::find(kDropped, text.substr(0, end)) != std::end(kDropped);
    };
    char** kept = environment;
    for (char** variable = environment; *variable != nullptr; ++variable)
        if (!isDropped(*variable))
            *kept++ = *variable;
    *kept = nullptr;
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const gDropVariables)(int, char**,
                                                                           char**) = DropVariables;

} // namespace
