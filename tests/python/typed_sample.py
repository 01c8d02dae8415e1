"""A script that uses the whole package as its stubs type it: mypy --strict
checks it, and test_native runs it, so the stubs and the runtime agree.

python3 typed_sample.py ROOT PREFDIR MODELFILE
"""

import copy
import sys
import threading

import tandril
from tandril import BlocksPageType, IconSize, LayoutType, Repository, StandaloneBrowser


def walk_repository() -> None:
    repository = Repository.Repository.open()
    report: Repository.RepositoryReport = repository.getRepositoryReport()
    products: list[str] = [product.Name for product in repository.getProductsIterator()]
    top = repository.getTopLevelIterator()
    assert top.isValidIterator() and not top.isEmpty() and top.size() >= 1.0
    first: Repository.TandrilObject = top.current()
    top.next()
    top.restart()
    walker = copy.copy(top)
    assert walker.current() == first

    kinetics = repository.getTandrilObject("kinetics")
    continuous = repository.getTandrilObject("kinetics/Continuous")
    below = [child.Path for child in repository.getChildrenIterator(continuous)]
    assert "kinetics/Continuous/Integrator" in below
    integrator = repository.getTandrilObject("kinetics/Continuous/Integrator")
    icon = repository.getIcon(integrator)
    svg: bytes = icon.svg if icon is not None and not icon.isEmpty() else b""
    assert svg.startswith(b"<") and integrator.Icon is not None
    texts: list[str] = [integrator.Type, integrator.Path, integrator.Name, integrator.DisplayName,
                        integrator.ProductName, integrator.Description, integrator.LibraryRefName,
                        integrator.LibraryRefPath]
    flags: list[bool] = [integrator.IsEmpty, integrator.IsFlat, integrator.IsProduct, integrator.isValid()]
    assert texts[0] == "Block" and all(flags[:2])

    subsystem: Repository.SubSystem = continuous.toSubSystem()
    block: Repository.Block = Repository.Block(subsystem)
    library: Repository.Library = kinetics.toLibrary()
    widened = Repository.TandrilObject(library)
    assert widened == kinetics and widened.eq(kinetics) and not block.ne(continuous) and hash(block) == hash(subsystem)
    assert subsystem.isLibrary() is False and block.isSubSystem() and kinetics.isLibrary()
    assert not kinetics.toPalette().isValid() and not kinetics.toLibraryRef().isValid()
    assert not block.isLibraryRef() and not widened.isBlock() is False or True
    ordered = sorted([kinetics, continuous, integrator])
    assert len(ordered) == 3 and (kinetics.lt(continuous) or kinetics.gt(continuous) or kinetics.le(kinetics))
    assert kinetics.ge(kinetics)

    hits = repository.findBlocks("integrator")
    below_hits = repository.findBlocks("gea", kinetics)
    regular = repository.findBlocks("delay$", ("RegExp", "on", "MatchCase", "off"))
    whole = repository.findBlocks("Gea", kinetics, ["WholeWord", "on"])
    assert hits.size() > 0 and below_hits.size() > 0 and regular.size() > 0 and whole.size() > 0
    assert repository.getDepthFirstIterator().size() > repository.getDepthFirstIterator(kinetics).size()
    assert repository.getProduct("kinetics").isValid()
    assert repository.isProductUpToDate(kinetics) and repository.isProductUpToDate(kinetics, True)
    assert repository.isProductUpToDate("kinetics") and repository.exists()
    try:
        repository.findBlocks("gain", ["RegExp"])
    except tandril.PairValueMismatch as error:
        assert error.identifier == "Tandril:Repository:PairValueMismatch"

    report.log("walked %d products" % len(products))
    report.logWarning("Sample:Note", "a warning of the sample")
    report.logError("an error of the sample")
    report.logError("Sample:Error", "another")
    report.logWarning("one more")
    report.logToConsoleInteractively(False)
    assert report.hasError() and report.hasWarning()
    report.clearError()
    report.clearWarning()
    errors: list[tuple[str, str]] = report.getErrors()
    warnings: list[tuple[str, str]] = report.getWarnings()
    log: list[str] = report.getLog()
    assert isinstance(errors, list) and isinstance(warnings, list) and log
    checksum: str = Repository.Util.computeCheckSum(tandril.root() + "/toolbox/kinetics/kinetics.tdlib.json",
                                                    Repository.RepositoryReport.create())
    assert checksum


def write_a_store(directory: str) -> None:
    reader = Repository.Reader.open(directory)
    assert not reader.exists()
    writer = Repository.Writer.open(directory, (tandril.root() + "/toolbox/kinetics",))
    writer.updateProducts()
    writer.generateRepository()
    writer.generateRepository("IgnoreTimestamp")
    product = Repository.Reader.open(directory).getProduct("kinetics")
    writer.generateProduct(product)
    writer.generateProduct(product, "Regenerate")
    writer.destroyProduct(product)
    writer.destroyRepository()
    plain = Repository.Writer.open(directory)
    assert not plain.getRepositoryReport().hasError()


def steer_the_window(model_file: str) -> None:
    browser = StandaloneBrowser()
    browser.enableLogging()
    browser.disableLogging()
    browser.setTitle("Typed sample")
    browser.show()
    assert browser.isOpen() and browser.getTitle() == "Typed sample" and browser.isEnabled()
    assert browser.getSortedLibraryNames()[0] == "Tandril"
    browser.expandTreeNodeByName("Kinetics")
    assert browser.isTreeNodeExpandable("Kinetics") and browser.isTreeNodeExpanded("Kinetics")
    children: list[str] = browser.getChildren("Kinetics")
    assert "Kinetics/Continuous" in children
    browser.selectTreeNodeByName("Kinetics/Continuous")
    browser.selectTreeNodeByNameGui("Kinetics/Discrete")
    browser.selectTreeNodeByName("Kinetics/Continuous")
    assert browser.isSelectedTreeNodeCurrent() and browser.getCurrentTreeNode() == "Kinetics/Continuous"
    browser.goToParent()
    assert browser.getCurrentTreeNode() == "Kinetics"
    browser.collapseTreeNodeByName("Kinetics")
    browser.selectBlockInLibraryView("Kinetics/Continuous/Integrator")
    browser.selectTreeNodeByName("Kinetics/Continuous")
    browser.selectBlockByName("Kinetics/Continuous/Integrator")
    assert browser.getSelectedBlockName() == "Kinetics/Continuous/Integrator"
    assert "Kinetics/Continuous/Integrator" in browser.getBlocks()
    browser.selectBlockRight()
    browser.selectBlockLeft()
    browser.selectBlockDown()
    browser.selectBlockUp()
    position: list[float] = browser.getCurrentBlockPosition()
    assert len(position) == 4

    # A new model, and the selected block added to it twice.
    browser.openNewModel()
    browser.selectBlockByName("Kinetics/Continuous/Integrator")
    browser.addSelectedBlockToCurrentOpenSystem()
    browser.addSelectedBlockToCurrentOpenSystem()
    model = tandril.call_host("private_td_get_current_open_mdl", 1)[0]
    assert isinstance(model, str)
    tandril.call_host("save_system", 0, model, model_file)

    browser.setSearchOptions([False, False, False])
    browser.setSearchOptions((0, 1, 0))
    options: list[bool] = browser.getSearchOptions()
    assert options == [False, True, False]
    browser.setSearchOptions([False, False, False])
    browser.searchForBlock("integrator")
    sections: list[str] = browser.getResultsPageSectionNames()
    assert browser.getTabTypeByIndex(browser.getCurrentTabIndex()) is BlocksPageType.RESULTS_PANEL
    assert browser.getResultsPageBlockNames() and browser.getSearchResults()
    assert browser.getResultsSectionBlockNames(sections[0])
    browser.hideResultsSectionByName(sections[0])
    assert not browser.isResultsSectionVisibleGui(sections[0])
    browser.showResultsSectionByName(sections[0])
    browser.selectSearchResult("Kinetics/Continuous/Integrator")
    browser.selectTabByIndex(0)
    browser.showSearchResults(True)
    browser.showBlockDescription(False)
    assert browser.isSearchResultsVisible() and not browser.isBlockDescriptionVisible()

    browser.setLayout(LayoutType.LIST)
    browser.setLayout("GRID")
    browser.setIconSize(IconSize.SMALL)
    browser.setIconSize(2)
    assert browser.getLayoutType() is LayoutType.GRID and browser.getIconSize() is IconSize.MEDIUM
    browser.increaseFontSize()
    browser.decreaseFontSize()
    font: float = browser.getFontSize()
    points: int = browser.getGUIFont()
    columns: int = browser.getLibraryNumIconCols() + browser.getResultsNumIconCols()
    assert font > 0 and points > 0 and columns > 0
    browser.setPosition([40, 30, 800, 600])
    where: list[float] = browser.getPosition()
    assert where[2:] == [800.0, 600.0]
    browser.refreshLibraryBrowser()
    browser.hide()
    assert browser.close() is False

    # The other calls need a host at a screen; they are typed all the same.
    if False:
        browser.doubleClickBlock("Kinetics/Continuous/Integrator")
        browser.showSelectedBlockParams()
        browser.openNewLibrary()
        browser.showTandrilPrefs()
        browser.saveScreenshot("browser.png")

    other = StandaloneBrowser.create(Repository.Repository.open())
    assert other.getSortedLibraryNames()
    browser.destroyInstance()
    try:
        browser.getTitle()
    except tandril.Destroyed as error:
        assert error.identifier == "Tandril:StandaloneBrowser:Destroyed"


def serve_from_python() -> None:
    @tandril.host_function("sample_twice")
    def twice(nargout: int, value: float) -> list[float]:
        return [value * 2]

    assert tandril.call_host("sample_twice", 1, 21) == [42.0]
    assert "sample_twice" in tandril.registered_host_functions()
    tandril.register_host_function("sample_twice", None)
    try:
        tandril.call_host("sample_twice", 1, 1)
    except tandril.HostCallFailed as error:
        assert error.identifier

    refusals: list[str] = []

    def elsewhere() -> None:
        try:
            StandaloneBrowser()
        except tandril.WrongThread as error:
            refusals.append(error.identifier)

    thread = threading.Thread(target=elsewhere)
    thread.start()
    thread.join()
    assert refusals == ["Tandril:Session:WrongThread"]


def main(root: str, prefdir: str, model_file: str) -> None:
    tandril.start(root=root, prefdir=prefdir, path=[])
    assert tandril.is_started() and tandril.root() == root
    assert tandril.preferences_directory() == prefdir and tandril.path() == []
    walk_repository()
    write_a_store(prefdir + "/store")
    steer_the_window(model_file)
    serve_from_python()
    errors: tuple[type[tandril.Error], ...] = (tandril.StringTypeExpected, tandril.BadArgument, tandril.Busy,
                                                tandril.SessionEnded, tandril.ValueTooDeep, tandril.CallsTooDeep)
    assert all(issubclass(error, tandril.Error) for error in errors)
    print("done")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], sys.argv[3])
