#include "Bindings.h"

#include "PythonSession.h"
#include "PythonValues.h"

#include "repository/Repository.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "scripting/FindBlocksOptions.h"
#include "scripting/GenerationModeWords.h"
#include "scripting/StringCells.h"

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

// The walks behind an iterator read through the reader that made them, so
// an iterator keeps its reader's Python object (and so the reader) alive.
const py::keep_alive<0, 1> iteratorKeepsReader;

// A reader, writer or repository in a repr: what it is and its report.
template <class Store>
std::string describe(const char* kind, Store& store, const std::string& where)
{
    return std::string("<tandril.Repository.") + kind + where + ", report: " +
           describeReport(*store.getRepositoryReport()) + ">";
}

// The scripted class of file utilities has static methods only.
struct Util {};

void bindReader(py::module_& repository)
{
    using Reader = RepositoryReader;
    py::class_<Reader, RepositoryReaderPtr> reader(repository, "Reader", classDoc("Reader").c_str());
    reader.def_static(
        "open",
        [](const std::string& directory) {
            PythonSession::ensureStarted();
            return Reader::open(directory);
        },
        py::arg("directory"),
        "A reader on the store in the directory, with a report of its own. A missing store gives a reader "
        "that doesn't exist.");
    reader.def("getRepositoryReport", &Reader::getRepositoryReport, "The report of the reader's work.");
    reader.def("__repr__", [](Reader& self) {
        return describe("Reader", self, self.exists() ? "" : " (no store)");
    });
    reader.def("getIcon", &Reader::getIcon, py::arg("object"), "The object's icon, or None.");
    reader.def("exists", &Reader::exists, "Whether there is a readable top-level manifest.");
    reader.def("isProductUpToDate", py::overload_cast<const TandrilObject&>(&Reader::isProductUpToDate),
               py::arg("product"), "Whether the stored data of the product agrees with the host's files.");
    reader.def("isProductUpToDate", py::overload_cast<const TandrilObject&, bool>(&Reader::isProductUpToDate),
               py::arg("product"), py::arg("ignoreTimestamp").noconvert(),
               "The same, with file dates left out of the comparison when ignoreTimestamp is True.");
    reader.def("isProductUpToDate", py::overload_cast<const std::string&>(&Reader::isProductUpToDate),
               py::arg("name"), "The same for the product of that name; False if there is none.");
    reader.def("getProductsIterator", &Reader::getProductsIterator, iteratorKeepsReader, "The valid products.");
    reader.def("getTopLevelIterator", &Reader::getTopLevelIterator, iteratorKeepsReader,
               "The products shown at the top of the tree.");
    reader.def("getChildrenIterator", py::overload_cast<const TandrilObject&>(&Reader::getChildrenIterator),
               py::arg("object"), iteratorKeepsReader,
               "The children of a subsystem (a library reference's are its target's); empty for anything else.");
    reader.def("getTandrilObject", &Reader::getTandrilObject, py::arg("path"),
               "The object of a unique path; an invalid object keeping the path if there is none.");
    reader.def(
        "getProduct", [](Reader& self, const std::string& name) { return TandrilObject(self.getProduct(name)); },
        py::arg("name"), "The product that the name starts with; a null object if there is none.");
    reader.def("getDepthFirstIterator", py::overload_cast<>(&Reader::getDepthFirstIterator), iteratorKeepsReader,
               "Everything below the products, parents before their children.");
    reader.def("getDepthFirstIterator", py::overload_cast<const TandrilObject&>(&Reader::getDepthFirstIterator),
               py::arg("root"), iteratorKeepsReader, "Everything below the object, which is not itself returned.");
    reader.def(
        "findBlocks", [](Reader& self, const std::string& pattern) { return self.findBlocks(pattern); },
        py::arg("pattern"), iteratorKeepsReader,
        "Every object whose shown name contains the pattern, ignoring case, over the whole repository.");
    reader.def(
        "findBlocks",
        [](Reader& self, const std::string& pattern, const TandrilObject& object) {
            return self.findBlocks(pattern, object);
        },
        py::arg("pattern"), py::arg("object"), iteratorKeepsReader, "The same below the object.");
    reader.def(
        "findBlocks",
        [](Reader& self, const std::string& pattern, const py::sequence& options) {
            const FindBlocksOptions flags =
                FindBlocksOptions::readOverRepository(PythonValues::fromList(options, "options"));
            return self.findBlocks(pattern, flags.regExp, flags.wholeWord, flags.matchCase);
        },
        py::arg("pattern"), py::arg("options"), iteratorKeepsReader,
        "The same with options, a list of pairs of names and values: \"RegExp\", \"WholeWord\" or\n"
        "\"MatchCase\", then \"on\" or \"off\"; the last pair of a name wins. A bad list raises tandril.Error.");
    reader.def(
        "findBlocks",
        [](Reader& self, const std::string& pattern, const TandrilObject& object, const py::sequence& options) {
            const FindBlocksOptions flags = FindBlocksOptions::readBelowObject(PythonValues::fromList(options, "options"));
            return self.findBlocks(pattern, object, flags.regExp, flags.wholeWord, flags.matchCase);
        },
        py::arg("pattern"), py::arg("object"), py::arg("options"), iteratorKeepsReader,
        "The same below the object with options. Here \"WholeWord\" \"on\" searches with the pattern as a\n"
        "regular expression, as \"RegExp\" \"on\" does.");
}

void bindWriter(py::module_& repository)
{
    using Writer = RepositoryWriter;
    py::class_<Writer, RepositoryWriterPtr> writer(repository, "Writer", classDoc("Writer").c_str());
    // Generation reaches the windows on the repository through its signals.
    const py::call_guard<OnStartingThread> onStartingThread;
    writer.def_static(
        "open",
        [](const std::string& directory) {
            PythonSession::ensureStarted();
            return Writer::open(directory);
        },
        py::arg("directory"), "A writer on the store in the directory, with its products brought up to date.");
    writer.def_static(
        "open",
        [](const std::string& directory, const py::sequence& hostPath) {
            // Started first: the message of a refused list comes from the module's catalogue.
            PythonSession::ensureStarted();
            const std::vector<std::string> directories = StringCells::read(PythonValues::fromList(hostPath, "hostPath"));
            return Writer::open(directory, directories);
        },
        py::arg("directory"), py::arg("hostPath"),
        "The same with the products of the directories listed; an element that is no string raises "
        "tandril.Error.");
    writer.def("getRepositoryReport", &Writer::getRepositoryReport, "The report of the writer's work.");
    writer.def("__repr__", [](Writer& self) { return describe("Writer", self, ""); });
    writer.def("generateRepository", py::overload_cast<>(&Writer::generateRepository), onStartingThread,
               "Generates what changed of every product.");
    writer.def(
        "generateRepository",
        [](Writer& self, const std::string& mode) { self.generateRepository(GenerationModeWords::modeOf(mode)); },
        py::arg("mode"), onStartingThread,
        "Generates every product in the mode: \"Minimal\", \"IgnoreTimestamp\" or \"Regenerate\"; any other "
        "word is \"Minimal\".");
    writer.def(
        "generateProduct",
        [](Writer& self, const TandrilObject& product) { self.generateProduct(product.toLibrary()); },
        py::arg("product"), onStartingThread, "Generates what changed of the product.");
    writer.def(
        "generateProduct",
        [](Writer& self, const TandrilObject& product, const std::string& mode) {
            self.generateProduct(product.toLibrary(), GenerationModeWords::modeOf(mode));
        },
        py::arg("product"), py::arg("mode"), onStartingThread,
        "Generates the product in the mode, as generateRepository does.");
    writer.def("destroyRepository", &Writer::destroyRepository, onStartingThread, "Removes the store's data.");
    writer.def(
        "destroyProduct", [](Writer& self, const TandrilObject& product) { self.destroyProduct(product.toLibrary()); },
        py::arg("product"), onStartingThread, "Removes the stored data of the product.");
    writer.def("updateProducts", &Writer::updateProducts, onStartingThread,
               "Brings the list of products up to date with the products on the host's path.");
}

} // namespace

void bindRepository(py::module_& repository)
{
    bindReader(repository);
    bindWriter(repository);

    py::class_<Repository, RepositoryWriter, RepositoryReader, std::shared_ptr<Repository>> cls(
        repository, "Repository", classDoc("Repository").c_str());
    cls.def_static(
        "open",
        [] {
            PythonSession::ensureStarted();
            return Repository::open();
        },
        "The repository on the default stores: the shipped one below the host's root, the writable one in the "
        "preferences directory.");
    cls.def("getRepositoryReport", &Repository::getRepositoryReport, "The report of the repository's work.");
    cls.def("__repr__", [](Repository& self) {
        return describe("Repository", self,
                        " of root '" + PythonSession::root().toStdString() + "' and preferences '" +
                            PythonSession::preferencesDirectory().toStdString() + "'");
    });

    py::class_<Util> util(repository, "Util", classDoc("Util").c_str());
    util.def_static(
        "computeCheckSum",
        [](const std::string& path, RepositoryReport& report) { return computeCheckSum(report, path); },
        py::arg("path"), py::arg("report"),
        "The MD5 checksum of the file as sixteen decimal byte values; empty, with an error in the report, if "
        "the file can't be read.");
}

} // namespace LibraryBrowser::Python
