// SPDX-License-Identifier: MIT
#include "platform/kernel/Locale.h"

#include <langinfo.h>
#include <locale.h>
#include <unicode/uloc.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace
{

constexpr LCID kEnglishUnitedStates = 0x0409;
constexpr std::array kVariables = {"LC_ALL", "LC_CTYPE", "LANG"};

std::string UserLocale()
{
    for (const char* variable : kVariables)
    {
        const char* value = getenv(variable);
        if (value != nullptr && *value != '\0')
            return value;
    }
    return {};
}

// The part of a name behind `mark`, up to the next mark.
std::string_view PartBehind(std::string_view name, char mark)
{
    const std::size_t at = name.find(mark);
    if (at == std::string_view::npos)
        return {};
    const std::string_view part = name.substr(at + 1);
    return part.substr(0, part.find('@'));
}

// Some languages have their number by the script that goes without saying: sr_RS is sr_Cyrl_RS there.
LCID NumberOf(const std::string& locale)
{
    std::array<char, ULOC_FULLNAME_CAPACITY> full = {};
    std::array<char, ULOC_FULLNAME_CAPACITY> numbered = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_addLikelySubtags(locale.c_str(), full.data(), full.size(), &error);
    const LCID id = uloc_getLCID(full.data());
    uloc_getLocaleForLCID(id, numbered.data(), numbered.size(), &error);
    return U_SUCCESS(error) && full == numbered ? id : uloc_getLCID(locale.c_str());
}

bool IsStandardC(std::string_view base)
{
    return base.empty() || base == "C" || base == "POSIX";
}

} // namespace

LCID LcidOfLocale(std::string_view name)
{
    std::string base(name.substr(0, name.find_first_of(".@")));
    if (IsStandardC(base))
        return kEnglishUnitedStates;
    const std::string_view modifier = PartBehind(name, '@');
    const char* script = modifier == "latin" ? "_Latn" : modifier == "cyrillic" ? "_Cyrl" : "";
    base.insert(std::min(base.find('_'), base.size()), script);
    const LCID id = NumberOf(base);
    return id == 0 ? LOCALE_CUSTOM_DEFAULT : id;
}

std::string LocaleOfFile(std::string_view content)
{
    for (const std::string_view variable : kVariables)
    {
        for (std::string_view rest = content; !rest.empty();)
        {
            std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            if (!line.starts_with(variable) || line.substr(variable.size(), 1) != "=")
                continue;
            line.remove_prefix(variable.size() + 1);
            line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
            if (line.size() >= 2 && (line.front() == '"' || line.front() == '\'') &&
                line.back() == line.front())
                line = line.substr(1, line.size() - 2);
            if (!line.empty())
                return std::string(line);
        }
    }
    return {};
}

std::string UserCharset()
{
    const std::string name = UserLocale();
    if (const std::string_view named = PartBehind(name, '.'); !named.empty())
        return std::string(named);
    // A name without a character set stands for the one that the system's definition of it has.
    const locale_t locale = newlocale(LC_CTYPE_MASK, name.c_str(), nullptr);
    if (locale == nullptr)
        return "US-ASCII";
    std::string charset = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return charset;
}

LCID GetUserDefaultLCID()
{
    return LcidOfLocale(UserLocale());
}

LCID GetSystemDefaultLCID()
{
    for (const char* path : {"/etc/default/locale", "/etc/locale.conf"})
    {
        std::ifstream file(path);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        const std::string name = LocaleOfFile(content);
        if (!name.empty())
            return LcidOfLocale(name);
    }
    return kEnglishUnitedStates;
}
