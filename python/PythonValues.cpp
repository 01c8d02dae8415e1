#include "PythonValues.h"

namespace py = pybind11;

namespace LibraryBrowser::Python {

HostValue PythonValues::toHostValue(py::handle object)
{
    if (py::isinstance<py::str>(object))
        return HostValue::string(object.cast<std::string>());
    // bool before int: a Python bool is an int too.
    if (py::isinstance<py::bool_>(object))
        return HostValue::logicalScalar(object.cast<bool>());
    if (py::isinstance<py::int_>(object) || py::isinstance<py::float_>(object))
        return HostValue::doubleScalar(object.cast<double>());
    if (py::isinstance<py::list>(object) || py::isinstance<py::tuple>(object)) {
        const py::sequence items = py::reinterpret_borrow<py::sequence>(object);
        HostValue cells = HostValue::cellArray(items.size() == 0 ? 0 : 1, items.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            cells.setCell(i, toHostValue(items[i]));
        return cells;
    }
    return HostValue();
}

} // namespace LibraryBrowser::Python
