#pragma once

#include "platform/HostValue.h"
#include "repository/search/SearchOptions.h"
#include "scripting/OptionListType.h"

namespace LibraryBrowser {

class OptionList;

// The three search flags of a scripted findBlocks, read from its option row
// ("RegExp", "WholeWord", "MatchCase", each "on" or "off"; all off when not
// given, and the last pair of a name wins).
struct FindBlocksOptions {
    SearchOptions::RegExp regExp = SearchOptions::RegExpOff;
    SearchOptions::WholeWord wholeWord = SearchOptions::WholeWordOff;
    SearchOptions::MatchCase matchCase = SearchOptions::MatchCaseOff;

    // The allowed names and values, made on first use.
    static const OptionListType& type();

    // The flags of a search over the whole repository.
    static FindBlocksOptions overRepository(const OptionList& row);
    // The flags of a search below an object. Scripts have always had
    // "WholeWord" "on" search with the pattern as a regular expression here,
    // and keep it: both "RegExp" and "WholeWord" turn the regular expression
    // on, and the whole-word flag stays off.
    static FindBlocksOptions belowObject(const OptionList& row);

    // OptionList::read with the findBlocks type, then the flags of the form;
    // throws ScriptingError for a faulty row before anything is searched.
    static FindBlocksOptions readOverRepository(const HostValue& cells);
    static FindBlocksOptions readBelowObject(const HostValue& cells);
};

} // namespace LibraryBrowser
