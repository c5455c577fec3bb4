// SPDX-License-Identifier: MIT
// Turns the whole command line into switches and values. It knows no switch names, never fails and reports
// no syntax error: what it cannot read it skips.
//
// A switch begins at "-" or "/", also inside a word, and ends at a blank, ":" or "=". A value in double
// quotes ends at the next double quote, any other at the next blank; there is no escape character.
#pragma once

#include "foundation/Oriska.h"

#include <map>

class CCmdLineParser
{
public:
    virtual ~CCmdLineParser();

    // Replaces the state from a command line; null changes nothing. The first entry of a switch stays.
    void Parse(const wchar_t* cmdLine);

    // The lookups take a switch in any case.
    bool HasKey(const wchar_t* key) const;
    // True when the switch is there with a value that is not empty.
    bool HasVal(const wchar_t* key) const;
    // The value, or null when the switch is absent. Belongs to this object until the next Parse.
    const wchar_t* GetVal(const wchar_t* key) const;

private:
    const ZTString* Find(const wchar_t* key) const;
    ZTString Fold(ZTString key) const;
    void Insert(const ZTString& key, const ZTString& value);

    ZTString mCmdLine;
    std::map<ZTString, ZTString> mValues;
    bool mCaseSensitive = false;
};

// The one parser, filled at the start of the run. Main thread only.
extern CCmdLineParser gCmdLineParser;
