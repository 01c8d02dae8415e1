#include "scripting/StringCells.h"

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "scripting/ScriptingError.h"

namespace LibraryBrowser {

namespace {

[[noreturn]] void stringExpected()
{
    throw ScriptingError(ScriptingError::StringTypeExpected,
                         Messages::xlatedMessageFromId(MessageId::TDLB_StringTypeExpected));
}

} // namespace

std::vector<std::string> StringCells::read(const HostValue& cells)
{
    std::vector<std::string> texts;
    if (cells.kind() == HostValue::Kind::Empty)
        return texts;
    if (!cells.isCell())
        stringExpected();
    texts.reserve(cells.columns());
    for (std::size_t column = 0; column < cells.columns(); ++column) {
        const HostValue& cell = cells.cell(column);
        if (!cell.isString())
            stringExpected();
        texts.push_back(cell.toString());
    }
    return texts;
}

} // namespace LibraryBrowser
