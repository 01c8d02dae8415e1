#include "TextSignatures.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

py::detail::function_record* recordOf(py::handle function)
{
    if (!function || !PyCFunction_Check(function.ptr()))
        return nullptr;
    py::handle self = PyCFunction_GET_SELF(function.ptr());
    if (!self || !py::isinstance<py::capsule>(self))
        return nullptr;
    auto capsule = py::reinterpret_borrow<py::capsule>(self);
    if (!py::detail::is_function_record_capsule(capsule))
        return nullptr;
    return capsule.get_pointer<py::detail::function_record>();
}

// A default a text signature can hold: the literals Python parses there.
std::string defaultText(py::handle value)
{
    if (value.is_none() || py::isinstance<py::bool_>(value) || py::isinstance<py::int_>(value) ||
        py::isinstance<py::float_>(value) || py::isinstance<py::str>(value))
        return py::repr(value).cast<std::string>();
    return "...";
}

std::string parameters(const py::detail::function_record& record)
{
    if (record.next)
        return record.is_method ? "(self, /, *args, **kwargs)" : "(*args, **kwargs)";
    std::string text = "(";
    const std::size_t named = record.nargs - (record.has_args ? 1 : 0) - (record.has_kwargs ? 1 : 0);
    for (std::size_t i = 0; i < named; ++i) {
        if (i > 0)
            text += ", ";
        if (i == record.nargs_pos && !record.has_args)
            text += "*, ";
        if (i == 0 && record.is_method) {
            text += "self";
        } else if (i < record.args.size()) {
            text += record.args[i].name;
            if (record.args[i].value)
                text += "=" + defaultText(record.args[i].value);
        } else {
            text += "arg" + std::to_string(i - (record.is_method ? 1 : 0));
        }
        if (record.nargs_pos_only > 0 && i + 1 == record.nargs_pos_only)
            text += ", /";
    }
    if (record.has_args)
        text += std::string(named > 0 ? ", " : "") + "*args";
    if (record.has_kwargs)
        text += std::string(named > 0 || record.has_args ? ", " : "") + "**kwargs";
    return text + ")";
}

void addTo(py::handle function)
{
    py::detail::function_record* record = recordOf(function);
    if (!record || !record->def || !record->def->ml_doc)
        return;
    const char* doc = record->def->ml_doc;
    const std::string name = record->name;
    // Done already: a function reached twice, by a class and an alias.
    if (std::strstr(doc, ")\n--\n\n"))
        return;
    const std::string text = name + parameters(*record) + "\n--\n\n" + doc;
    std::free(const_cast<char*>(record->def->ml_doc));
    record->def->ml_doc = strdup(text.c_str());
}

void addBelow(py::handle scope, int depth)
{
    // A module, or a class: their own functions and classes.
    const py::dict members = scope.attr("__dict__");
    for (const auto& [key, value] : members) {
        py::handle member = value;
        if (py::isinstance<py::staticmethod>(member))
            member = member.attr("__func__");
        else if (PyInstanceMethod_Check(member.ptr()))
            member = PyInstanceMethod_GET_FUNCTION(member.ptr());
        if (PyCFunction_Check(member.ptr()))
            addTo(member);
        else if (depth < 3 && (PyType_Check(member.ptr()) || PyModule_Check(member.ptr())) &&
                 py::hasattr(member, "__module__") &&
                 py::str(member.attr("__module__")).cast<std::string>().rfind("tandril", 0) == 0)
            addBelow(member, depth + 1);
    }
}

} // namespace

void TextSignatures::add(py::module_& module) { addBelow(module, 0); }

} // namespace LibraryBrowser::Python
