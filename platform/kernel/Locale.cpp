// SPDX-License-Identifier: MIT
#include "platform/kernel/Locale.h"

#include "platform/kernel/Text.h"

#include <langinfo.h>
#include <locale.h>
#include <unicode/uloc.h>

#include <array>
#include <cstdlib>

using namespace platform;

namespace
{

constexpr LCID kEnglishUnitedStates = 0x0409;
// What numbers look like is what the user's locale means on Windows.
constexpr std::array kFormatVariables = {"LC_ALL", "LC_NUMERIC", "LANG"};
constexpr std::array kTextVariables = {"LC_ALL", "LC_CTYPE", "LANG"};

std::string UserLocale(const std::array<const char*, 3>& variables)
{
    for (const char* variable : variables)
    {
        const char* value = getenv(variable);
        if (value != nullptr && *value != '\0')
            return value;
    }
    return {};
}

// The locale that the lines of a locale.conf(5) set: LC_ALL, LC_NUMERIC or LANG, the first that is there.
std::string LocaleOfFile(std::string_view content)
{
    for (const std::string_view variable : kFormatVariables)
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

std::string SystemLocale()
{
    for (const char* path : {"/etc/default/locale", "/etc/locale.conf"})
        if (std::string name = LocaleOfFile(ReadWholeFile(path)); !name.empty())
            return name;
    return {};
}

// The part of a name after `mark`, up to the next mark.
std::string_view PartAfter(std::string_view name, char mark)
{
    const std::size_t at = name.find(mark);
    if (at == std::string_view::npos)
        return {};
    const std::string_view part = name.substr(at + 1);
    return part.substr(0, part.find('@'));
}

std::string CountryOf(const char* locale)
{
    std::array<char, ULOC_COUNTRY_CAPACITY> country = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_getCountry(locale, country.data(), country.size(), &error);
    return country.data();
}

// Some languages have their number by the script that goes without saying: az_AZ is az_Latn_AZ there. A
// number that stands for the language alone, as ICU gives it for en_DK and syr, does not count: no user's
// default has it.
LCID NumberOf(const std::string& locale)
{
    std::array<char, ULOC_FULLNAME_CAPACITY> full = {}; // the last one of each stays 0
    std::array<char, ULOC_FULLNAME_CAPACITY> numbered = {};
    UErrorCode error = U_ZERO_ERROR;
    uloc_addLikelySubtags(locale.c_str(), full.data(), full.size() - 1, &error);
    LCID id = uloc_getLCID(full.data());
    uloc_getLocaleForLCID(id, numbered.data(), numbered.size() - 1, &error);
    if (U_FAILURE(error) || full != numbered)
    {
        id = uloc_getLCID(locale.c_str());
        error = U_ZERO_ERROR;
        uloc_getLocaleForLCID(id, numbered.data(), numbered.size() - 1, &error);
    }
    const std::string country = CountryOf(numbered.data());
    return U_SUCCESS(error) && !country.empty() && country == CountryOf(locale.c_str()) ? id : 0;
}

bool IsStandardC(std::string_view base)
{
    return base.empty() || base == "C" || base == "POSIX";
}

std::string IcuLocale(std::string_view name)
{
    std::string base(name.substr(0, name.find_first_of(".@")));
    const std::string_view modifier = PartAfter(name, '@');
    if (base.starts_with("tl_"))
        base.replace(0, 2, "fil");                  // the C library's name of Filipino
    const bool isSerbian = base.starts_with("sr_"); // in Cyrillic there wherever it is spoken
    const char* script = modifier == "latin" || modifier == "iqtelif"                ? "_Latn"
                         : modifier == "cyrillic" || (isSerbian && modifier.empty()) ? "_Cyrl"
                         : modifier == "devanagari"                                  ? "_Deva"
                                                                                     : "";
    base.insert(std::min(base.find('_'), base.size()), script);
    return base + (modifier == "valencia" ? "_VALENCIA" : "");
}

} // namespace

LCID platform::LcidOfLocale(std::string_view name)
{
    if (IsStandardC(name.substr(0, name.find_first_of(".@"))))
        return kEnglishUnitedStates;
    const LCID id = NumberOf(IcuLocale(name));
    return id == 0 ? LOCALE_CUSTOM_DEFAULT : id;
}

std::string platform::UserCharset()
{
    constexpr const char* kUsual = "UTF-8";
    const std::string name = UserLocale(kTextVariables);
    if (const std::string_view named = PartAfter(name, '.'); !named.empty())
        return std::string(named);
    // A name without a character set stands for the one that the system's definition of it has.
    const locale_t locale = name.empty() ? nullptr : newlocale(LC_CTYPE_MASK, name.c_str(), nullptr);
    if (locale == nullptr)
        return kUsual;
    std::string charset = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return charset;
}

std::string platform::LocaleWithoutNumber()
{
    const auto isWithout = [](const std::string& name)
    { return LcidOfLocale(name) == LOCALE_CUSTOM_DEFAULT; };
    const std::string user = UserLocale(kFormatVariables);
    const std::string system = SystemLocale();
    if (isWithout(user) && isWithout(system) && user != system)
        return {};
    return IcuLocale(isWithout(user) ? user : isWithout(system) ? system : std::string());
}

LCID GetUserDefaultLCID()
{
    return LcidOfLocale(UserLocale(kFormatVariables));
}

LCID GetSystemDefaultLCID()
{
    return LcidOfLocale(SystemLocale());
}
