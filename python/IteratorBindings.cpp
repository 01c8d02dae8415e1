#include "Bindings.h"

#include "FastAccess.h"

#include "repository/TandrilObject.h"
#include "repository/TandrilObjectIterator.h"

namespace py = pybind11;

namespace LibraryBrowser::Python {

void bindIterator(py::module_& repository)
{
    using Iterator = TandrilObjectIterator;
    py::class_<Iterator> iterator(repository, "TandrilObjectIterator", classDoc("TandrilObjectIterator").c_str());
    iterator.def("current", &Iterator::current, "The object at the position; a null object past the end.");
    iterator.def("next", &Iterator::next, "Moves to the next object; past the end it does nothing.");
    iterator.def("restart", &Iterator::restart, "Moves back to the first object.");
    iterator.def("isValidIterator", &Iterator::isValidIterator, "Whether the iterator stands at an object.");
    iterator.def("isEmpty", &Iterator::isEmpty,
                 "True only for an iterator that has not moved and stands at no object.");
    iterator.def("size", &Iterator::sizeForNumora,
                 "The number of objects, counted by a walk of its own: the iterator does not move.");
    // A Python loop moves the iterator, as next() does; restart() walks again.
    iterator.def("__iter__", [](py::object self) { return self; });
    iterator.def("__next__", [](Iterator& self) {
        if (!self.isValidIterator())
            throw py::stop_iteration();
        TandrilObject object = self.current();
        self.next();
        return object;
    });
    // What a for loop calls, once per object.
    FastAccess::installIteratorNext(iterator);
    iterator.def("__repr__", [](Iterator& self) {
        if (!self.isValidIterator())
            return std::string("<tandril.Repository.TandrilObjectIterator ") +
                   (self.isEmpty() ? "(empty)>" : "(past the end)>");
        return "<tandril.Repository.TandrilObjectIterator at '" + self.current().getPath() + "'>";
    });
    // Copies walk on independently from where the original stands; they read
    // through the same reader, so they keep the original (and its reader) alive.
    iterator.def("__copy__", [](const Iterator& self) { return Iterator(self); }, py::keep_alive<0, 1>());
    iterator.def(
        "__deepcopy__", [](const Iterator& self, py::dict) { return Iterator(self); }, py::keep_alive<0, 1>());
}

} // namespace LibraryBrowser::Python
