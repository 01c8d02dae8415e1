#include "scripting/FindBlocksOptions.h"

#include "scripting/OptionList.h"

#include <map>
#include <string>

namespace LibraryBrowser {

namespace {

const char* const RegExpName = "RegExp";
const char* const WholeWordName = "WholeWord";
const char* const MatchCaseName = "MatchCase";
const char* const On = "on";

// The names that are on after the last pair of each name has its say.
std::map<std::string, bool> switchedOn(const OptionList& row)
{
    std::map<std::string, bool> on;
    const std::vector<std::string>& cells = row.cells();
    for (std::size_t i = 0; i + 1 < cells.size(); i += 2)
        on[cells[i]] = cells[i + 1] == On;
    return on;
}

bool isOn(const std::map<std::string, bool>& on, const char* name)
{
    const auto it = on.find(name);
    return it != on.end() && it->second;
}

} // namespace

const OptionListType& FindBlocksOptions::type()
{
    static const OptionListType findBlocksType{{"on", "off"}, {WholeWordName, MatchCaseName, RegExpName}};
    return findBlocksType;
}

FindBlocksOptions FindBlocksOptions::overRepository(const OptionList& row)
{
    const std::map<std::string, bool> on = switchedOn(row);
    FindBlocksOptions options;
    options.regExp = isOn(on, RegExpName) ? SearchOptions::RegExpOn : SearchOptions::RegExpOff;
    options.wholeWord = isOn(on, WholeWordName) ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff;
    options.matchCase = isOn(on, MatchCaseName) ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff;
    return options;
}

FindBlocksOptions FindBlocksOptions::belowObject(const OptionList& row)
{
    const std::map<std::string, bool> on = switchedOn(row);
    FindBlocksOptions options;
    options.regExp = isOn(on, RegExpName) || isOn(on, WholeWordName) ? SearchOptions::RegExpOn
                                                                     : SearchOptions::RegExpOff;
    options.matchCase = isOn(on, MatchCaseName) ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff;
    return options;
}

FindBlocksOptions FindBlocksOptions::readOverRepository(const HostValue& cells)
{
    return overRepository(OptionList::read(type(), cells));
}

FindBlocksOptions FindBlocksOptions::readBelowObject(const HostValue& cells)
{
    return belowObject(OptionList::read(type(), cells));
}

} // namespace LibraryBrowser
