#include "platform/HostValue.h"

#include <utility>

namespace LibraryBrowser {

HostValue HostValue::string(const std::string& text)
{
    HostValue v;
    v.m_kind = Kind::String;
    v.m_rows = text.empty() ? 0 : 1;
    v.m_columns = text.size();
    v.m_text = text;
    return v;
}

HostValue HostValue::doubleScalar(double value)
{
    return doubleMatrix(1, 1, {value});
}

HostValue HostValue::doubleMatrix(std::size_t rows, std::size_t columns, std::vector<double> values)
{
    HostValue v;
    v.m_kind = Kind::Double;
    v.m_rows = rows;
    v.m_columns = columns;
    values.resize(rows * columns);
    v.m_doubles = std::move(values);
    return v;
}

HostValue HostValue::logicalScalar(bool value)
{
    return logicalMatrix(1, 1, {value});
}

HostValue HostValue::logicalMatrix(std::size_t rows, std::size_t columns, std::vector<bool> values)
{
    HostValue v;
    v.m_kind = Kind::Logical;
    v.m_rows = rows;
    v.m_columns = columns;
    values.resize(rows * columns);
    v.m_logicals = std::move(values);
    return v;
}

HostValue HostValue::cellArray(std::size_t rows, std::size_t columns)
{
    HostValue v;
    v.m_kind = Kind::Cell;
    v.m_rows = rows;
    v.m_columns = columns;
    v.m_cells.resize(rows * columns);
    return v;
}

HostValue HostValue::cellOfStrings(const std::vector<std::string>& texts)
{
    HostValue v = cellArray(texts.empty() ? 0 : 1, texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        v.m_cells[i] = string(texts[i]);
    return v;
}

HostValue HostValue::object(std::shared_ptr<HostObject> object)
{
    HostValue v;
    v.m_kind = Kind::Object;
    v.m_rows = object ? 1 : 0;
    v.m_columns = object ? 1 : 0;
    v.m_object = std::move(object);
    return v;
}

std::size_t HostValue::numberOfElements() const
{
    return m_rows * m_columns;
}

double HostValue::scalar() const
{
    if (m_kind == Kind::Double && !m_doubles.empty())
        return m_doubles.front();
    if (m_kind == Kind::Logical && !m_logicals.empty())
        return m_logicals.front() ? 1.0 : 0.0;
    return 0.0;
}

const HostValue& HostValue::cell(std::size_t index) const
{
    static const HostValue empty;
    return index < m_cells.size() ? m_cells[index] : empty;
}

void HostValue::setCell(std::size_t index, HostValue value)
{
    if (m_kind == Kind::Cell && index < m_cells.size())
        m_cells[index] = std::move(value);
}

std::vector<std::string> HostValue::toStringList() const
{
    if (m_kind == Kind::String)
        return {m_text};
    std::vector<std::string> texts;
    texts.reserve(m_cells.size());
    for (const HostValue& c : m_cells)
        texts.push_back(c.toString());
    return texts;
}

bool HostValue::operator==(const HostValue& other) const
{
    return m_kind == other.m_kind && m_rows == other.m_rows && m_columns == other.m_columns
        && m_text == other.m_text && m_doubles == other.m_doubles && m_logicals == other.m_logicals
        && m_cells == other.m_cells && m_object == other.m_object;
}

} // namespace LibraryBrowser
