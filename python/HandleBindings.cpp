#include "Bindings.h"

#include "FastAccess.h"

#include "repository/TandrilObject.h"

#include <string>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

// A kind test and its conversion, as "isSubSystem" and "toSubSystem".
template <class PyClass, class Test, class Convert>
void addKind(PyClass& cls, const std::string& kind, Test test, Convert convert)
{
    cls.def(("is" + kind).c_str(), test,
            ("Whether the object is a " + kind + " or of a kind derived from it; the placeholder of a missing "
             "object counts by its kind.")
                .c_str());
    cls.def(("to" + kind).c_str(), convert,
            ("The same object as a " + kind + ", or a null " + kind + " if it is of another kind.").c_str());
}

// A constructor of the class from a handle of a narrower kind: the same
// object, with no test.
template <class Target, class Source, class PyClass>
void addWidening(PyClass& cls)
{
    cls.def(py::init<const Source&>(), py::arg("handle"), "The same object, seen as this kind.");
    py::implicitly_convertible<Source, Target>();
}

std::string describe(const Handle& handle)
{
    if (handle.isNull())
        return "null";
    return "'" + handle.id().str() + "'" + (handle.isValid() ? "" : " (invalid)");
}

template <class Kind>
py::class_<Kind, Handle> bindKind(py::module_& repository, const char* name)
{
    py::class_<Kind, Handle> cls(repository, name, classDoc(name).c_str());
    cls.def("__repr__", [name](const Kind& handle) {
        return std::string("<tandril.Repository.") + name + " " + describe(handle) + ">";
    });
    cls.def("__copy__", [](const Kind& handle) { return Kind(handle); });
    cls.def("__deepcopy__", [](const Kind& handle, py::dict) { return Kind(handle); });
    FastAccess::installTextGetters<Kind>(cls);
    return cls;
}

using Comparison = bool (*)(const Handle&, const Handle&);

void addComparisons(py::class_<Handle>& cls)
{
    struct Operator {
        const char* word;
        const char* dunder;
        Comparison compare;
    };
    const Operator operators[] = {
        {"eq", "__eq__", [](const Handle& a, const Handle& b) { return a == b; }},
        {"ne", "__ne__", [](const Handle& a, const Handle& b) { return a != b; }},
        {"lt", "__lt__", [](const Handle& a, const Handle& b) { return a < b; }},
        {"gt", "__gt__", [](const Handle& a, const Handle& b) { return a > b; }},
        {"le", "__le__", [](const Handle& a, const Handle& b) { return a <= b; }},
        {"ge", "__ge__", [](const Handle& a, const Handle& b) { return a >= b; }},
    };
    for (const Operator& op : operators) {
        cls.def(op.word, op.compare, py::arg("other"),
                "Compares two handles of any kinds by the identity of their objects' ids: equal for one "
                "object, an order that is stable for one run but not alphabetical.");
        cls.def(op.dunder, op.compare, py::is_operator());
    }
    // After __eq__, which would otherwise leave the class unhashable.
    cls.def("__hash__", &Handle::hash);
}

} // namespace

void bindHandles(py::module_& repository)
{
    py::class_<BlockIcon, BlockIconPtr> icon(repository, "Icon",
                                             "The icon of a block: an SVG document. An empty icon paints nothing.");
    icon.def_property_readonly(
        "svg", [](const BlockIcon& self) { return py::bytes(self.svg().constData(), std::size_t(self.svg().size())); },
        "The SVG document's bytes.");
    icon.def("isEmpty", &BlockIcon::isEmpty, "Whether the icon has no bytes.");
    icon.def("__bytes__", [](const BlockIcon& self) {
        return py::bytes(self.svg().constData(), std::size_t(self.svg().size()));
    });
    icon.def("__repr__", [](const BlockIcon& self) {
        return "<tandril.Repository.Icon " + std::to_string(self.svg().size()) + " bytes>";
    });

    py::class_<Handle> handle(repository, "Handle", classDoc("Handle").c_str());
    handle.def("isValid", &Handle::isValid, "Whether the object exists and is no placeholder of a missing one.");
    addComparisons(handle);
    const struct {
        const char* name;
        std::string (Handle::*read)() const;
        const char* doc;
    } texts[] = {
        {"Type", &Handle::getType, "\"Block\", \"SubSystem\", \"Library\", \"LibraryRef\" or \"Palette\"; "
                                   "\"InvalidBlock\" when there is no object."},
        {"Path", &Handle::getPath, "The object's path in its library."},
        {"Name", &Handle::getName, "The object's name."},
        {"DisplayName", &Handle::getDisplayName, "The name shown to the user."},
        {"ProductName", &Handle::getProductName, "The name of the object's product."},
        {"Description", &Handle::getDescription, "The object's description."},
        {"LibraryRefName", &Handle::getLibraryRefName, "The name of a library reference's target; else empty."},
        {"LibraryRefPath", &Handle::getLibraryRefPath, "The path of a library reference's target; else empty."},
    };
    for (const auto& text : texts)
        handle.def_property_readonly(text.name, text.read, text.doc);
    handle.def_property_readonly("Icon", &Handle::getIcon,
                                 "The object's icon, or None for an invalid object.");
    handle.def_property_readonly("IsEmpty", &Handle::getIsEmpty,
                                 "Whether a subsystem has no children; True for anything else.");
    handle.def_property_readonly("IsFlat", &Handle::getIsFlat,
                                 "Whether a subsystem has no subsystems below it; True for anything else.");
    handle.def_property_readonly("IsProduct", &Handle::getIsProduct,
                                 "Whether a library is a product's root; False for anything else.");

    auto tandrilObject = bindKind<TandrilObject>(repository, "TandrilObject");
    auto block = bindKind<Block>(repository, "Block");
    auto subSystem = bindKind<SubSystem>(repository, "SubSystem");
    bindKind<Library>(repository, "Library");
    bindKind<LibraryRef>(repository, "LibraryRef");
    bindKind<Palette>(repository, "Palette");

    addWidening<TandrilObject, Block>(tandrilObject);
    addWidening<TandrilObject, SubSystem>(tandrilObject);
    addWidening<TandrilObject, Library>(tandrilObject);
    addWidening<TandrilObject, LibraryRef>(tandrilObject);
    addWidening<TandrilObject, Palette>(tandrilObject);
    addWidening<Block, SubSystem>(block);
    addWidening<Block, Library>(block);
    addWidening<Block, LibraryRef>(block);
    addWidening<SubSystem, Library>(subSystem);
    addWidening<SubSystem, LibraryRef>(subSystem);

    addKind(tandrilObject, "Block", &TandrilObject::isBlock, &TandrilObject::toBlock);
    addKind(tandrilObject, "SubSystem", &TandrilObject::isSubSystem, &TandrilObject::toSubSystem);
    addKind(tandrilObject, "Library", &TandrilObject::isLibrary, &TandrilObject::toLibrary);
    addKind(tandrilObject, "LibraryRef", &TandrilObject::isLibraryRef, &TandrilObject::toLibraryRef);
    addKind(tandrilObject, "Palette", &TandrilObject::isPalette, &TandrilObject::toPalette);
    addKind(block, "SubSystem", &Block::isSubSystem, &Block::toSubSystem);
    addKind(block, "Library", &Block::isLibrary, &Block::toLibrary);
    addKind(block, "LibraryRef", &Block::isLibraryRef, &Block::toLibraryRef);
    addKind(subSystem, "Library", &SubSystem::isLibrary, &SubSystem::toLibrary);
    addKind(subSystem, "LibraryRef", &SubSystem::isLibraryRef, &SubSystem::toLibraryRef);
}

} // namespace LibraryBrowser::Python
