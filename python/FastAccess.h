#pragma once

// pybind11 before Qt: Qt's "slots" keyword would break the interpreter's headers.
#include <pybind11/pybind11.h>

#include "repository/Handle.h"

#include <string>

namespace LibraryBrowser::Python {

// The few calls a script makes once per object of a walk, served straight
// through the interpreter's slots instead of pybind11's general dispatch,
// which costs several times the C++ work behind them. What they do is what
// the bound methods of the same names do.
class FastAccess {
public:
    // The value behind an instance of a bound class, or null if the instance
    // holds none (a Python subclass whose __init__ did not run).
    template <class T>
    static T* valueOf(PyObject* self)
    {
        auto* instance = reinterpret_cast<pybind11::detail::instance*>(self);
        return instance->get_value_and_holder(nullptr, false).value_ptr<T>();
    }

    // The iterator type's __next__ as its tp_iternext slot.
    static void installIteratorNext(pybind11::handle iteratorType);
    // The text properties of a handle class (Name, Path...) as slot getters
    // on that class; they read the class's own values, so no cast is made.
    template <class Kind>
    static void installTextGetters(pybind11::handle kindType)
    {
        addTextGetter(kindType, "Name", &readText<Kind, &Handle::getName>);
        addTextGetter(kindType, "Path", &readText<Kind, &Handle::getPath>);
        addTextGetter(kindType, "DisplayName", &readText<Kind, &Handle::getDisplayName>);
    }

private:
    using TextReader = std::string (*)(const void* value);

    template <class Kind, std::string (Handle::*read)() const>
    static std::string readText(const void* value)
    {
        return (static_cast<const Kind*>(value)->*read)();
    }

    static void addTextGetter(pybind11::handle kindType, const char* name, TextReader read);
};

} // namespace LibraryBrowser::Python
