#include "PythonValues.h"

#include "repository/RepositoryReport.h"
#include "scripting/ScriptingError.h"

#include <string>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

bool isNumber(py::handle object)
{
    // A Python bool is an int too.
    return !py::isinstance<py::bool_>(object) &&
           (py::isinstance<py::int_>(object) || py::isinstance<py::float_>(object));
}


template <class Test>
bool allOf(const py::sequence& items, Test test)
{
    for (const py::handle item : items) {
        if (!test(item))
            return false;
    }
    return items.size() > 0;
}

// Rows of numbers, all as long as the first and none empty.
bool isNumberRows(const py::sequence& items)
{
    if (items.size() == 0 || !PythonValues::isSequence(items[0]))
        return false;
    const std::size_t columns = py::len(items[0]);
    return allOf(items, [columns](py::handle row) {
        return PythonValues::isSequence(row) && py::len(row) == columns && allOf(py::reinterpret_borrow<py::sequence>(row), isNumber);
    });
}

// Element (row, column) of a column-major matrix in the nesting Python reads.
template <class Element>
py::object nested(std::size_t rows, std::size_t columns, Element element)
{
    if (rows <= 1) {
        py::list row;
        for (std::size_t column = 0; column < columns; ++column)
            row.append(element(column));
        return row;
    }
    py::list matrix;
    for (std::size_t r = 0; r < rows; ++r) {
        py::list row;
        for (std::size_t column = 0; column < columns; ++column)
            row.append(element(column * rows + r));
        matrix.append(row);
    }
    return matrix;
}

void checkDepth(int depth)
{
    if (depth > PythonValues::MaxDepth)
        throw ScriptingError(PythonValues::TooDeep, "A value with lists nested more than " +
                                                        std::to_string(PythonValues::MaxDepth) +
                                                        " deep can't cross between Python and the host");
}

} // namespace

bool PythonValues::isSequence(py::handle object)
{
    if (py::isinstance<py::list>(object) || py::isinstance<py::tuple>(object))
        return true;
    // Texts are sequences of their characters to Python, never lists here.
    return PySequence_Check(object.ptr()) && !py::isinstance<py::str>(object) &&
           !py::isinstance<py::bytes>(object) && !PyByteArray_Check(object.ptr());
}

HostValue PythonValues::fromList(py::handle sequence, const char* argument)
{
    if (!isSequence(sequence))
        throw py::type_error(std::string(argument) + " must be a list, tuple or other sequence, not " +
                             py::str(sequence.get_type().attr("__name__")).cast<std::string>());
    return toHostValue(sequence);
}

HostValue PythonValues::toHostValue(py::handle object) { return toHostValue(object, 0); }

py::object PythonValues::toPython(const HostValue& value) { return toPython(value, 0); }

HostValue PythonValues::toHostValue(py::handle object, int depth)
{
    if (py::isinstance<py::str>(object))
        return HostValue::string(object.cast<std::string>());
    if (py::isinstance<py::bool_>(object))
        return HostValue::logicalScalar(object.cast<bool>());
    if (isNumber(object))
        return HostValue::doubleScalar(object.cast<double>());
    if (!isSequence(object))
        return HostValue();
    checkDepth(depth);
    const py::sequence items = py::reinterpret_borrow<py::sequence>(object);
    const std::size_t count = items.size();
    if (allOf(items, isNumber)) {
        std::vector<double> values;
        for (const py::handle item : items)
            values.push_back(item.cast<double>());
        return HostValue::doubleMatrix(1, count, std::move(values));
    }
    if (allOf(items, [](py::handle item) { return py::isinstance<py::bool_>(item); })) {
        std::vector<bool> values;
        for (const py::handle item : items)
            values.push_back(item.cast<bool>());
        return HostValue::logicalMatrix(1, count, std::move(values));
    }
    if (isNumberRows(items)) {
        const std::size_t columns = py::len(items[0]);
        std::vector<double> values(count * columns);
        for (std::size_t row = 0; row < count; ++row) {
            const py::sequence cells = py::reinterpret_borrow<py::sequence>(items[row]);
            for (std::size_t column = 0; column < columns; ++column)
                values[column * count + row] = cells[column].cast<double>();
        }
        return HostValue::doubleMatrix(count, columns, std::move(values));
    }
    HostValue cells = HostValue::cellArray(count == 0 ? 0 : 1, count);
    for (std::size_t i = 0; i < count; ++i)
        cells.setCell(i, toHostValue(items[i], depth + 1));
    return cells;
}

py::object PythonValues::toPython(const HostValue& value, int depth)
{
    switch (value.kind()) {
    case HostValue::Kind::String:
        return py::str(value.toString());
    case HostValue::Kind::Double:
        if (value.numberOfElements() == 1)
            return py::float_(value.doubles().front());
        return nested(value.rows(), value.columns(), [&](std::size_t i) { return py::float_(value.doubles()[i]); });
    case HostValue::Kind::Logical:
        if (value.numberOfElements() == 1)
            return py::bool_(value.logicals().front());
        return nested(value.rows(), value.columns(), [&](std::size_t i) { return py::bool_(value.logicals()[i]); });
    case HostValue::Kind::Cell:
        checkDepth(depth);
        return nested(value.rows(), value.columns(),
                      [&](std::size_t i) { return toPython(value.cell(i), depth + 1); });
    case HostValue::Kind::Object:
        if (auto report = std::dynamic_pointer_cast<RepositoryReport>(value.hostObject()))
            return py::cast(report);
        return py::none();
    case HostValue::Kind::Empty:
        break;
    }
    return py::none();
}

} // namespace LibraryBrowser::Python
