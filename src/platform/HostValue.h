#pragma once

#include "platform/HostObject.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

// A value exchanged with the host interpreter: a string, a real or logical
// matrix, a cell array of values, or an object. Matrices and cells are stored
// column-major, as the host language keeps them.
class HostValue {
public:
    enum class Kind { Empty, String, Double, Logical, Cell, Object };

    HostValue() = default;

    static HostValue string(const std::string& text);
    static HostValue doubleScalar(double value);
    static HostValue doubleMatrix(std::size_t rows, std::size_t columns, std::vector<double> values);
    static HostValue logicalScalar(bool value);
    static HostValue logicalMatrix(std::size_t rows, std::size_t columns, std::vector<bool> values);
    static HostValue cellArray(std::size_t rows, std::size_t columns);
    // A 1-by-n cell array of strings.
    static HostValue cellOfStrings(const std::vector<std::string>& texts);
    static HostValue object(std::shared_ptr<HostObject> object);

    Kind kind() const { return m_kind; }
    bool isEmpty() const { return m_kind == Kind::Empty || numberOfElements() == 0; }
    bool isString() const { return m_kind == Kind::String; }
    bool isDouble() const { return m_kind == Kind::Double; }
    bool isLogical() const { return m_kind == Kind::Logical; }
    bool isCell() const { return m_kind == Kind::Cell; }
    bool isObject() const { return m_kind == Kind::Object; }

    std::size_t rows() const { return m_rows; }
    std::size_t columns() const { return m_columns; }
    std::size_t numberOfElements() const;

    // The text of a string value; empty for any other kind.
    const std::string& toString() const { return m_text; }
    // The first element of a real or logical value; 0 for others and for empty values.
    double scalar() const;
    const std::vector<double>& doubles() const { return m_doubles; }
    const std::vector<bool>& logicals() const { return m_logicals; }

    const std::vector<HostValue>& cells() const { return m_cells; }
    const HostValue& cell(std::size_t index) const;
    void setCell(std::size_t index, HostValue value);
    // Strings of a cell array (non-strings give empty texts), or the one text
    // of a string value.
    std::vector<std::string> toStringList() const;

    const std::shared_ptr<HostObject>& hostObject() const { return m_object; }

    bool operator==(const HostValue& other) const;
    bool operator!=(const HostValue& other) const { return !(*this == other); }

private:
    Kind m_kind = Kind::Empty;
    std::size_t m_rows = 0;
    std::size_t m_columns = 0;
    std::string m_text;
    std::vector<double> m_doubles;
    std::vector<bool> m_logicals;
    std::vector<HostValue> m_cells;
    std::shared_ptr<HostObject> m_object;
};

} // namespace LibraryBrowser
