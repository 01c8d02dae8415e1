#include "FastAccess.h"

#include "repository/TandrilObject.h"
#include "repository/TandrilObjectIterator.h"

#include <deque>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

const char* const NoValue = "the object was not constructed";

PyObject* nextObject(PyObject* self)
{
    auto* iterator = FastAccess::valueOf<TandrilObjectIterator>(self);
    if (!iterator) {
        PyErr_SetString(PyExc_TypeError, NoValue);
        return nullptr;
    }
    // The end: a null result without an error is StopIteration.
    if (!iterator->isValidIterator())
        return nullptr;
    try {
        TandrilObject object = iterator->current();
        iterator->next();
        return py::cast(std::move(object)).release().ptr();
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    }
    return nullptr;
}

// Where the getter finds the reader of its property.
struct TextGetter {
    PyGetSetDef definition;
    std::string (*read)(const void* value);
};

PyObject* getText(PyObject* self, void* closure)
{
    const auto* getter = static_cast<const TextGetter*>(closure);
    const void* value = FastAccess::valueOf<void>(self);
    if (!value) {
        PyErr_SetString(PyExc_TypeError, NoValue);
        return nullptr;
    }
    try {
        const std::string text = getter->read(value);
        return PyUnicode_DecodeUTF8(text.data(), Py_ssize_t(text.size()), "replace");
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    }
    return nullptr;
}

} // namespace

void FastAccess::installIteratorNext(py::handle iteratorType)
{
    auto* type = reinterpret_cast<PyTypeObject*>(iteratorType.ptr());
    type->tp_iternext = nextObject;
    PyType_Modified(type);
}

void FastAccess::addTextGetter(py::handle kindType, const char* name, TextReader read)
{
    // The interpreter keeps pointers to the definitions for the life of the
    // classes, which is the life of the process.
    static std::deque<TextGetter> getters;
    const py::object inherited = kindType.attr(name);
    getters.push_back(TextGetter{{}, read});
    TextGetter& getter = getters.back();
    getter.definition.name = name;
    getter.definition.get = getText;
    getter.definition.closure = &getter;
    const py::object doc = inherited.attr("__doc__");
    static std::deque<std::string> docs;
    docs.push_back(doc.is_none() ? std::string() : doc.cast<std::string>());
    getter.definition.doc = docs.back().c_str();
    auto* type = reinterpret_cast<PyTypeObject*>(kindType.ptr());
    const py::object descriptor = py::reinterpret_steal<py::object>(PyDescr_NewGetSet(type, &getter.definition));
    if (!descriptor)
        throw py::error_already_set();
    kindType.attr(name) = descriptor;
}

} // namespace LibraryBrowser::Python
