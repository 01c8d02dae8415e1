// The extension module behind the Python package "tandril".

#include "Bindings.h"
#include "TextSignatures.h"

#include "scripting/RepositoryPackage.h"

namespace py = pybind11;

namespace LibraryBrowser::Python {

std::string classDoc(const std::string& className)
{
    const ScriptedClassInfo& info = RepositoryPackage::classInfo(className);
    return info.detailedDescription.empty() ? info.description
                                            : info.description + "\n\n" + info.detailedDescription;
}

} // namespace LibraryBrowser::Python

PYBIND11_MODULE(_tandril, tandril)
{
    using namespace LibraryBrowser::Python;
    tandril.doc() = "The Tandril library browser: its repository and its window, for scripts.";
    // Classes and functions take their module's __module__ for their own and
    // for the signatures in their docstrings: the public names, not this
    // extension's.
    tandril.attr("__module__") = "tandril";
    bindSession(tandril);
    bindErrors(tandril);
    py::module_ repository = tandril.def_submodule("Repository", "The library browser's repository package.");
    repository.attr("__module__") = "tandril.Repository";
    repository.attr("__name__") = "tandril.Repository";
    // Bases before the classes that derive from them.
    bindHandles(repository);
    bindIterator(repository);
    bindReport(repository);
    bindRepository(repository);
    bindRanking(repository);
    bindBrowser(tandril);
    TextSignatures::add(tandril);
}
