#pragma once

#include "platform/HostValue.h"
#include "scripting/OptionListType.h"

#include <string>
#include <vector>

namespace LibraryBrowser {

// A script's row of option names and values, as in {"RegExp", "on"},
// checked against an OptionListType.
class OptionList {
public:
    explicit OptionList(const OptionListType& type) : m_type(type) {}

    // Appends the strings of the cell array to the row; an element that is
    // no string throws ScriptingError (StringTypeExpected).
    void readCells(const HostValue& cells);
    void append(const std::string& cell) { m_cells.push_back(cell); }

    // Empty when the row is fine, else the text of its first fault: an odd
    // number of cells, an unknown name, or a value that isn't allowed.
    std::string getErrorMsg() const;
    // readCells, then a ScriptingError (PairValueMismatch) with the text of
    // getErrorMsg() if the row is faulty.
    static OptionList read(const OptionListType& type, const HostValue& cells);

    const OptionListType& type() const { return m_type; }
    // Name, value, name, value, in the order given.
    const std::vector<std::string>& cells() const { return m_cells; }

private:
    const OptionListType& m_type;
    std::vector<std::string> m_cells;
};

} // namespace LibraryBrowser
