#include "gui/NoResultsMessage.h"

#include "frame/MessageCatalogue.h"
#include "gui/BrowserUtils.h"
#include "gui/SearchResults.h"

#include <QString>

#include <vector>

namespace LibraryBrowser::NoResultsMessage {

using namespace BrowserUtils;

std::string status(const SearchResults& results)
{
    if (results.searchString.empty())
        return xlatedMessageFromId(MessageId::TDLB_GuiStatusBarNoSearchResults);
    return xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarNoMatchesForString, results.searchString);
}

std::string text(const SearchResults& results)
{
    const std::string message =
        results.searchString.empty()
            ? xlatedMessageFromId(MessageId::TDLB_GuiStatusBarNoSearchResults)
            : xlatedMessageFromIdAndCharStar(MessageId::TDLB_WarningNoSearchResultsFoundForString,
                                             results.searchString);
    // The searched text is the user's: it must show as typed, not as markup.
    std::string text = "<font color=red>" + QString::fromStdString(message).toHtmlEscaped().toStdString() + "</font>";
    if (results.useRegExp || results.matchWholeWord || results.matchCase || results.searchDescriptions)
        text += "\n \n" + searchOptions(results);
    return text;
}

std::string searchOptions(const SearchResults& results)
{
    std::vector<std::string> set;
    if (results.matchWholeWord)
        set.push_back(xlatedMessageFromId(MessageId::TDLB_GuiBlocksPageText_MatchWholeWord));
    if (results.matchCase)
        set.push_back(xlatedMessageFromId(MessageId::TDLB_GuiBlocksPageText_MatchCase));
    if (results.useRegExp)
        set.push_back(xlatedMessageFromId(MessageId::TDLB_GuiBlocksPageText_RegularExpression));
    // After the three: the menu's fourth entry, named as the menu names it.
    if (results.searchDescriptions)
        set.push_back("Search descriptions too");
    std::string text = xlatedMessageFromId(MessageId::TDLB_GuiBlocksPageText_SearchOptions) + " ";
    for (std::size_t i = 0; i < set.size(); ++i)
        text += (i ? ", " : "") + set[i];
    return text;
}

} // namespace LibraryBrowser::NoResultsMessage
