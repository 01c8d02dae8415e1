#include "scripting/OptionList.h"

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "scripting/ScriptingError.h"
#include "scripting/StringCells.h"

namespace LibraryBrowser {

namespace {

// The allowed words as the messages list them: in the set's own order,
// joined by a comma without a blank.
std::string joined(const std::unordered_set<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty())
            text += ',';
        text += word;
    }
    return text;
}

} // namespace

void OptionList::readCells(const HostValue& cells)
{
    for (std::string& text : StringCells::read(cells))
        m_cells.push_back(std::move(text));
}

std::string OptionList::getErrorMsg() const
{
    if (m_cells.size() % 2 != 0)
        return Messages::xlatedMessageFromId(MessageId::TDLB_PairValueMismatch);
    for (std::size_t i = 0; i < m_cells.size(); i += 2) {
        const std::string& name = m_cells[i];
        const std::string& value = m_cells[i + 1];
        if (m_type.names.count(name) == 0)
            return Messages::xlatedMessageFromIdAndTwoCharStars(MessageId::TDLB_InvalidOption, name,
                                                                joined(m_type.names));
        if (m_type.values.count(value) == 0)
            return Messages::xlatedMessageFromIdAndTwoCharStars(MessageId::TDLB_InvalidValue, value,
                                                                joined(m_type.values));
    }
    return std::string();
}

OptionList OptionList::read(const OptionListType& type, const HostValue& cells)
{
    OptionList list(type);
    list.readCells(cells);
    const std::string fault = list.getErrorMsg();
    if (!fault.empty())
        throw ScriptingError(ScriptingError::PairValueMismatch, fault);
    return list;
}

} // namespace LibraryBrowser
