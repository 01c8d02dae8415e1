// The scripted class "StandaloneBrowser": the methods of the window that
// scripts may use, in the class's order, each a thin call on the window.

#include "Bindings.h"

#include "BrowserArrays.h"
#include "BrowserHandle.h"
#include "PythonSession.h"
#include "ScopedCount.h"
#include "PythonValues.h"

#include "gui/GuiBlock.h"
#include "scripting/ScriptingError.h"

#include <pybind11/stl.h>

#include <QCoreApplication>
#include <QMainWindow>
#include <QPixmap>

#include <string>
#include <type_traits>
#include <vector>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

// A member of one of the package's enums (or None for a value it has no
// word for), named so in the signatures of the methods that return one.
template <int Kind>
class EnumMember : public py::object {
public:
    explicit EnumMember(py::object member) : py::object(std::move(member)) {}
};
using LayoutTypeMember = EnumMember<0>;
using IconSizeMember = EnumMember<1>;
using BlocksPageTypeMember = EnumMember<2>;

} // namespace

} // namespace LibraryBrowser::Python

namespace pybind11::detail {

template <>
struct handle_type_name<LibraryBrowser::Python::LayoutTypeMember> {
    static constexpr auto name = const_name("Optional[tandril.LayoutType]");
};
template <>
struct handle_type_name<LibraryBrowser::Python::IconSizeMember> {
    static constexpr auto name = const_name("Optional[tandril.IconSize]");
};
template <>
struct handle_type_name<LibraryBrowser::Python::BlocksPageTypeMember> {
    static constexpr auto name = const_name("tandril.BlocksPageType");
};

} // namespace pybind11::detail

namespace LibraryBrowser::Python {

namespace {

using Class = py::class_<BrowserHandle>;

// Timers that came due while the script ran, and everything a call set
// off, are handled before the script goes on: it sees a settled window.
void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Window calls under way: a host function served from Python may call the
// class again while the window waits for its answer.
int runningCalls = 0;

template <class Operation>
auto onWindow(const BrowserHandle& handle, Operation operation)
{
    PythonSession::checkThread();
    const ScopedCount running(runningCalls);
    settle();
    StandaloneBrowser& window = handle.window();
    if constexpr (std::is_void_v<std::invoke_result_t<Operation, StandaloneBrowser&>>) {
        operation(window);
        settle();
    } else {
        auto result = operation(window);
        settle();
        return result;
    }
}

// A method that calls one window operation with the script's arguments.
template <class Result, class... Args, class... Extra>
void method(Class& cls, const char* name, Result (StandaloneBrowser::*operation)(Args...), const Extra&... extra)
{
    cls.def(
        name,
        [operation](const BrowserHandle& self, Args... args) {
            return onWindow(self, [&](StandaloneBrowser& window) { return (window.*operation)(args...); });
        },
        extra...);
}

template <class Result, class... Args, class... Extra>
void method(Class& cls, const char* name, Result (StandaloneBrowser::*operation)(Args...) const,
            const Extra&... extra)
{
    cls.def(
        name,
        [operation](const BrowserHandle& self, Args... args) {
            return onWindow(self, [&](StandaloneBrowser& window) { return (window.*operation)(args...); });
        },
        extra...);
}

// The enum types are Python enums of their own module; the class carries them.
py::object enumType(const char* name) { return py::type::of<BrowserHandle>().attr(name); }

// A member, its word or its number; anything else raises the enum's ValueError.
int enumNumber(const char* type, const py::object& value)
{
    return enumType(type)(value).attr("number").cast<int>();
}

py::object enumMember(const char* type, int number)
{
    try {
        return enumType(type)(number);
    } catch (const py::error_already_set&) {
        // A value the enum has no word for.
        return py::none();
    }
}

const py::arg path("path");

void bindWindowMethods(Class& cls)
{
    cls.def(
        "enableLogging",
        [](const BrowserHandle& self) {
            onWindow(self, [](StandaloneBrowser& w) {
                w.repository().getRepositoryReport()->logToConsoleInteractively(true);
            });
        },
        "Echoes the repository's log to the console as it is written.");
    cls.def(
        "disableLogging",
        [](const BrowserHandle& self) {
            onWindow(self, [](StandaloneBrowser& w) {
                w.repository().getRepositoryReport()->logToConsoleInteractively(false);
            });
        },
        "Stops echoing the repository's log.");
    method(cls, "show", &StandaloneBrowser::showBrowser,
           "Shows the window; after a close it checks the products again first.");
    method(cls, "hide", &StandaloneBrowser::hideBrowser, "Hides the window, saving the preferences.");
    method(cls, "setTitle", &StandaloneBrowser::setBrowserTitle, py::arg("title"), "Sets the window's title.");
    method(cls, "close", &StandaloneBrowser::closeBrowser,
           "Closes (hides) the window, saving the preferences, and tells whether it was open before.");
    method(cls, "isOpen", &StandaloneBrowser::isOpen, "Whether the window is shown.");
    method(cls, "doubleClickBlock", &StandaloneBrowser::doubleClickBlock, path,
           "Does what a double click on the tile of that display path on the current page does.");
    method(cls, "expandTreeNodeByName", &StandaloneBrowser::expandTreeNodeByName, path,
           "Expands the tree node of that display path.");
    method(cls, "getBlocks", &StandaloneBrowser::getLibraryPageBlockNames,
           "The display paths of the library page's tiles.");
    method(cls, "getResultsPageBlockNames", &StandaloneBrowser::getResultsPageBlockNames,
           "The display paths of the results page's tiles.");
    method(cls, "getResultsPageSectionNames", &StandaloneBrowser::getResultsPageSectionNames,
           "The names of the results page's sections, one per library with hits.");
    method(cls, "getResultsSectionBlockNames", &StandaloneBrowser::getResultsSectionBlockNames, py::arg("section"),
           "The display paths of the tiles in the section of that name.");
    method(cls, "isResultsSectionVisibleGui", &StandaloneBrowser::isResultsSectionVisibleGui, py::arg("section"),
           "Whether the section of that name is open on the results page.");
    method(cls, "hideResultsSectionByName", &StandaloneBrowser::hideResultsSectionByName, py::arg("section"),
           "Closes the section of that name; whether there was one.");
    method(cls, "showResultsSectionByName", &StandaloneBrowser::showResultsSectionByName, py::arg("section"),
           "Opens the section of that name; whether there was one.");
    method(cls, "getChildren", &StandaloneBrowser::getChildren, path,
           "The display paths of the children of an expanded tree node; empty for a closed or unknown one.");
    method(cls, "getSelectedBlockName", &StandaloneBrowser::getSelectedBlockName,
           "The display path of the selected tile on the current page; empty without one.");
    method(cls, "getCurrentTreeNode", &StandaloneBrowser::getCurrentTreeNode,
           "The display path of the node whose blocks the library page shows.");
    method(cls, "getSearchResults", &StandaloneBrowser::getSearchResultsDisplayPathNames,
           "The lines of the search results list: the display paths of the last search's hits.");
    method(cls, "getTitle", &StandaloneBrowser::getTitle, "The window's title.");
    method(cls, "isBlockDescriptionVisible", &StandaloneBrowser::isBlockDescriptionVisible,
           "Whether the block description is shown.");
    method(cls, "isSelectedTreeNodeCurrent", &StandaloneBrowser::isSelectedTreeNodeCurrent,
           "Whether the page shows the node selected in the tree, or still waits for the selection timer.");
    method(cls, "isSearchResultsVisible", &StandaloneBrowser::isSearchResultsVisible,
           "Whether the search results list is shown.");
    method(cls, "openNewLibrary", &StandaloneBrowser::openNewLibrary, "Asks the host for a new library.");
    method(cls, "openNewModel", &StandaloneBrowser::openNewModel, "Asks the host for a new model.");
    method(cls, "searchForBlock", &StandaloneBrowser::searchForBlock, py::arg("text"),
           "Searches the libraries for the text with the search options, as the search bar does, and shows the "
           "results page.");
    method(cls, "selectSearchResult", &StandaloneBrowser::selectSearchResultByDisplayPathName, path,
           "Selects the hit of that display path on the results page.");
    method(cls, "selectTreeNodeByName", &StandaloneBrowser::selectTreeNodeByName, path,
           "Selects the tree node of that display path and shows its blocks at once.");
    method(cls, "selectTreeNodeByNameGui", &StandaloneBrowser::selectTreeNodeByNameGui, path,
           "Selects the tree node as the keyboard does: its blocks come when the selection timer fires.");
    method(cls, "selectBlockByName", &StandaloneBrowser::selectBlockByName, path,
           "Selects the tile of that display path on the current page.");
    cls.def(
        "destroyInstance",
        [](const BrowserHandle&) {
            PythonSession::checkThread();
            // The window may be the one whose call is waiting for the host.
            if (runningCalls > 0 || StandaloneBrowser::isInstanceBeingBuilt())
                throw ScriptingError(BrowserHandle::Busy,
                                     "The browser window can't be destroyed from within one of its own calls.");
            StandaloneBrowser::destroyInstance();
            settle();
        },
        "Destroys the process's window, whichever handle it is called on. Handles on it are stale then: their\n"
        "calls raise tandril.Error. A host function served from Python can't destroy it while a call of the\n"
        "window waits for its answer.");
    method(cls, "selectBlockInLibraryView", &StandaloneBrowser::selectBlockInLibraryView, path,
           "Shows the hit of that display path among its library's blocks on the library page.");
    cls.def(
        "setIconSize",
        [](const BrowserHandle& self, const py::object& size) {
            const IconSize value = IconSize(enumNumber("IconSize", size));
            onWindow(self, [&](StandaloneBrowser& w) { w.setIconSize(value); });
        },
        py::arg("size"), "Sets the icon size: an IconSize, or its word (\"COMPACT\" ... \"LARGE\").");
}

void bindCreate(Class& cls)
{
    cls.def_static(
        "create",
        [](const RepositoryPtr& repository) {
            if (!repository)
                throw py::type_error("create needs a tandril.Repository.Repository, not None");
            std::unique_ptr<BrowserHandle> handle = BrowserHandle::create(repository);
            settle();
            return handle;
        },
        py::arg("repository"),
        "A new window on the repository, apart from the process's window. The handle owns it: the window goes "
        "when the handle does.");
}

void bindViewMethods(Class& cls)
{
    cls.def(
        "setLayout",
        [](const BrowserHandle& self, const py::object& layout) {
            const LayoutType value = LayoutType(enumNumber("LayoutType", layout));
            onWindow(self, [&](StandaloneBrowser& w) { w.setLayout(value); });
        },
        py::arg("layout"), "Sets the pages' layout: a LayoutType, or its word (\"LIST\", \"GRID\").");
    method(cls, "showBlockDescription", &StandaloneBrowser::showBlockDescription, py::arg("show").noconvert(),
           "Shows or hides the block description.");
    method(cls, "showSearchResults", &StandaloneBrowser::showSearchResults, py::arg("show").noconvert(),
           "Shows or hides the search results list.");
    method(cls, "addSelectedBlockToCurrentOpenSystem", &StandaloneBrowser::addSelectedBlockToCurrentOpenSystem,
           "Adds the selected block to the system open in front.");
    method(cls, "selectBlockLeft", &StandaloneBrowser::selectBlockLeft, "Moves the selection one tile left.");
    method(cls, "selectBlockRight", &StandaloneBrowser::selectBlockRight, "Moves the selection one tile right.");
    method(cls, "selectBlockUp", &StandaloneBrowser::selectBlockUp, "Moves the selection one tile up.");
    method(cls, "selectBlockDown", &StandaloneBrowser::selectBlockDown, "Moves the selection one tile down.");
    method(cls, "getLibraryNumIconCols", &StandaloneBrowser::getLibraryNumIconCols,
           "The columns of tiles on the library page.");
    method(cls, "getResultsNumIconCols", &StandaloneBrowser::getResultsNumIconCols,
           "The columns of tiles on the results page.");
    cls.def(
        "getLayoutType",
        [](const BrowserHandle& self) {
            const LayoutType layout = onWindow(self, [](StandaloneBrowser& w) { return w.getLayoutType(); });
            return LayoutTypeMember(enumMember("LayoutType", int(layout)));
        },
        "The pages' layout, a LayoutType.");
    cls.def(
        "getIconSize",
        [](const BrowserHandle& self) {
            const IconSize size = onWindow(self, [](StandaloneBrowser& w) { return w.getIconSize(); });
            return IconSizeMember(enumMember("IconSize", int(size)));
        },
        "The icon size, an IconSize.");
    method(cls, "getFontSize", &StandaloneBrowser::getFontPointSize, "The window's font size in points.");
    method(cls, "increaseFontSize", &StandaloneBrowser::increaseFontSize, "A font two points larger, up to 24.");
    method(cls, "decreaseFontSize", &StandaloneBrowser::decreaseFontSize, "A font two points smaller, down to 8.");
    method(cls, "showSelectedBlockParams", &StandaloneBrowser::showSelectedBlockParams,
           "Opens the parameters dialog of the selected block.");
    cls.def(
        "goToParent",
        [](const BrowserHandle& self) { onWindow(self, [](StandaloneBrowser& w) { w.goToParent(); }); },
        "Selects the parent of the current tree node.");
    method(cls, "getGUIFont", &StandaloneBrowser::getGUIFont, "The point size of the font the window has now.");
    method(cls, "refreshLibraryBrowser", &StandaloneBrowser::refreshLibraryBrowser,
           "Brings the repository up to date with the libraries and fills the tree again.");
    method(cls, "collapseTreeNodeByName", &StandaloneBrowser::collapseTreeNodeByName, path,
           "Collapses the tree node of that display path.");
    method(cls, "isTreeNodeExpanded", &StandaloneBrowser::isTreeNodeExpanded, path,
           "Whether the tree node of that display path is expanded.");
}

void bindArrayMethods(Class& cls)
{
    cls.def(
        "getPosition",
        [](const BrowserHandle& self) {
            const QRect position = onWindow(self, [](StandaloneBrowser& w) { return w.getPosition(); });
            return BrowserArrays::fromPosition(position).doubles();
        },
        "The window's [x, y, width, height].");
    cls.def(
        "setPosition",
        [](const BrowserHandle& self, const py::object& position) {
            const QRect rect = BrowserArrays::toPosition(PythonValues::toHostValue(position));
            onWindow(self, [&](StandaloneBrowser& w) { w.setPosition(rect); });
        },
        py::arg("position"),
        "Places the window at [x, y, width, height] (a 1 x 4 row; numbers are rounded). Anything else raises\n"
        "tandril.Error \"Point should be a 1 x 4 array\".");
    cls.def(
        "setSearchOptions",
        [](const BrowserHandle& self, const py::object& options) {
            const std::vector<bool> values = BrowserArrays::toSearchOptions(PythonValues::toHostValue(options));
            onWindow(self, [&](StandaloneBrowser& w) { w.setSearchOptions(values); });
        },
        py::arg("options"),
        "Sets [regular expression, match case, whole word] for the next search: bools, or numbers where all\n"
        "but 0 is true. Anything else raises tandril.Error.");
    cls.def(
        "getSearchOptions",
        [](const BrowserHandle& self) {
            const std::vector<bool> options =
                onWindow(self, [](StandaloneBrowser& w) { return w.getSearchOptions(); });
            return BrowserArrays::fromSearchOptions(options).logicals();
        },
        "[regular expression, match case, whole word] as bools.");
    cls.def(
        "getCurrentBlockPosition",
        [](const BrowserHandle& self) {
            const QRect position = onWindow(self, [](StandaloneBrowser& w) { return w.getSelectedBlockPosition(); });
            return BrowserArrays::fromPosition(position).doubles();
        },
        "The selected tile's [x, y, width, height] on its page; all 0 without a selection.");
}

void bindTabMethods(Class& cls)
{
    method(cls, "isEnabled", &StandaloneBrowser::isEnabled, "Whether the window takes input (not during a search).");
    method(cls, "showTandrilPrefs", &StandaloneBrowser::showTandrilPrefs, "Opens the host's preferences.");
    method(cls, "getCurrentTabIndex", &StandaloneBrowser::getCurrentTabIndex,
           "The page in front: 0 the library page, 1 the results page.");
    method(cls, "selectTabByIndex", &StandaloneBrowser::selectTabByIndex, py::arg("index"),
           "Brings the page of that index to the front.");
    cls.def(
        "getTabTypeByIndex",
        [](const BrowserHandle&, int index) { return BlocksPageTypeMember(enumMember("BlocksPageType", index != 0)); },
        py::arg("index"), "LIBRARY_PANEL for 0 and RESULTS_PANEL for any other index; the window is not asked.");
    method(cls, "getSortedLibraryNames", &StandaloneBrowser::getSortedLibraryNames,
           "The top level of the tree: the main library, then the others by name.");
    method(cls, "isTreeNodeExpandable", &StandaloneBrowser::isTreeNodeExpandable, path,
           "Whether the tree node of that display path has subsystems to show.");
}

// Beyond the class's table: what a script needs to see the window.
void bindExtras(Class& cls)
{
    cls.def(
        "saveScreenshot",
        [](const BrowserHandle& self, const std::string& file) {
            const bool saved = onWindow(self, [&](StandaloneBrowser& w) {
                return w.window()->grab().save(QString::fromStdString(file), "PNG");
            });
            if (!saved)
                throw ScriptingError(BrowserArrays::BadArgument, "Unable to write the screenshot to '" + file + "'");
        },
        py::arg("file"), "Renders the window, shown or not, to a PNG file. A file that can't be written raises "
                         "tandril.Error.");
    cls.def("__repr__", [](const BrowserHandle& self) {
        if (!self.isAlive())
            return std::string("<tandril.StandaloneBrowser (destroyed)>");
        StandaloneBrowser& window = self.window();
        return "<tandril.StandaloneBrowser '" + window.getTitle() + "' (" + (window.isOpen() ? "open" : "hidden") +
               ")>";
    });
}

} // namespace

void bindBrowser(py::module_& tandril)
{
    Class cls(tandril, "StandaloneBrowser",
              "The library browser's window, for scripts.\n\n"
              "StandaloneBrowser() gives the process's one window, making it on first use (it appears on show());\n"
              "StandaloneBrowser.create(repository) makes another on a repository of the script's own. Every call\n"
              "handles the window's pending events before it returns. Tree nodes and tiles are named by display\n"
              "path (\"Kinetics/Continuous/Integrator\"); an unknown path does nothing and reads empty.");
    const py::module_ enums = py::module_::import("tandril._browser_enums");
    for (const char* name : {"LayoutType", "IconSize", "BlocksPageType"})
        cls.attr(name) = enums.attr(name);
    cls.def(py::init(&BrowserHandle::instance), "The process's window, made on first use.");
    // As the scripted class has it, arguments to the constructor are ignored.
    cls.def(py::init([](const py::args&, const py::kwargs&) { return BrowserHandle::instance(); }),
            "The same: arguments are ignored.");
    bindWindowMethods(cls);
    bindCreate(cls);
    bindViewMethods(cls);
    bindArrayMethods(cls);
    bindTabMethods(cls);
    bindExtras(cls);
    tandril.def("_tiles_created", &GuiBlock::instancesCreated,
                "How many tiles the process has made; checks tell a rebuilt page by it.");
}

} // namespace LibraryBrowser::Python
