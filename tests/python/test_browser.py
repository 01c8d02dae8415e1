"""The window from Python: what the binding converts, refuses and keeps (the rest: widget suites, typed_sample.py);
scripts that once brought the process down now get a clear error, or what a user expects (MALLOC_PERTURB_/ASan)."""

import contextlib
import functools
import math
import time

import pytest

import tandril
from conftest import calls_with, run_python, stored_layout
from tandril import BlocksPageType, IconSize, LayoutType, Repository, StandaloneBrowser

WORDS = "logical or numeric"


@pytest.fixture
def browser(session):
    return StandaloneBrowser()


def test_the_enums_take_the_scripted_words_and_their_numbers(browser):
    assert LayoutType("GRID") is LayoutType(1) is LayoutType.GRID == "GRID"
    browser.setIconSize(0)
    browser.setLayout(0)
    assert browser.getTabTypeByIndex(0) is BlocksPageType.LIBRARY_PANEL
    assert [browser.getTabTypeByIndex(i) for i in (1, 7, -1)] == ["RESULTS_PANEL"] * 3
    for call in [lambda: browser.setLayout("MODEL"), lambda: browser.setLayout(2), lambda: browser.setIconSize(True)
                 ] + [lambda bad=bad: LayoutType(bad) for bad in [True, None, "grid", 2, 1.0]]:
        with pytest.raises(ValueError):
            call()
    assert (browser.getLayoutType(), browser.getIconSize()) == (LayoutType.LIST, IconSize.COMPACT)


def test_one_window_serves_the_process_and_close_tells_the_state_before(browser, prefs_dir):
    other = StandaloneBrowser("ignored", 3, title="ignored")
    other.setTitle("Blocks of the process")
    assert browser.getTitle() == "Blocks of the process"
    browser.show()
    assert other.isOpen() and browser.close() is True and not other.isOpen()
    browser.setLayout("LIST")  # closing a hidden window closes it again, and saves the preferences again
    (prefs_dir / "LibraryBrowser.ini").unlink()
    assert browser.close() is False and stored_layout(prefs_dir) == "List"


def test_positions_and_search_options_take_their_forms_and_refuse_anything_else(browser):
    browser.close()
    for given, read in [([10.6, 20.4, 640.5, 480], [11, 20, 641, 480]), ([[30, 40, 600, 500]], [30, 40, 600, 500]),
                        ((-10.6, 0, 600, 500), [-10.0, 0.0, 600.0, 500.0])]:
        browser.setPosition(given)
        assert browser.getPosition() == read, given
    for position in [[[10], [20], [600], [500]], [10, 20, 600], [10, 20, 600, 500, 1], [[1, 2], [3, 4]], [True] * 4,
                     "1234", None, [], 5, ["10", "20", "600", "500"], [0, 0, 600, math.nan], [0, 0, 600, math.inf],
                     [0, 0, 600, 1e300], [0, 0, 600, -3e9]]:
        with pytest.raises(tandril.BadArgument) as info:
            browser.setPosition(position)
        assert info.value.identifier == "Tandril:StandaloneBrowser:BadArgument" and browser.getPosition() == read
    for options, read in [([0, 1, math.nan], [False, True, True]), ([True, False, True], [True, False, True]),
                          ([-2, 0, 0.5, 0], [True, False, True]), ([[0, 0, 1]], [False, False, True]),
                          ((False, True, False, True), [False, True, False]), ("on", WORDS),
                          (["on", "off", "on"], WORDS), ([True, 0, 1], WORDS), ({"RegExp": True}, WORDS),
                          (None, WORDS), (1, "three values"), ([True, False], "three values")]:
        browser.setSearchOptions([True, True, True])
        with pytest.raises(tandril.Error, match=read) if isinstance(read, str) else contextlib.nullcontext():
            browser.setSearchOptions(options)
        assert browser.getSearchOptions() == ([True] * 3 if isinstance(read, str) else read), options


def test_hits_are_shown_and_selected_after_a_relayout_logging_echoes_and_screenshots_are_pngs(browser, capfd, tmp_path):
    browser.show()
    browser.setSearchOptions([False, False, False])
    browser.searchForBlock("integrator")
    browser.selectBlockInLibraryView("Kinetics/Continuous/Integrator")
    assert (browser.getCurrentTabIndex(), browser.getCurrentTreeNode(), browser.getSelectedBlockName()) == (
        0, "Kinetics/Continuous", "Kinetics/Continuous/Integrator")
    browser.setLayout("GRID")  # Lays the results page out again behind the library page: the hit is looked up anew.
    browser.selectSearchResult("Kinetics/Continuous/Integrator")
    assert (browser.getCurrentTabIndex(), browser.getSelectedBlockName()) == (1, "Kinetics/Continuous/Integrator")
    for switch, shown in ((browser.enableLogging, True), (browser.disableLogging, False)):
        switch()
        browser.refreshLibraryBrowser()
        assert ("Action: " in capfd.readouterr().out) == shown
    browser.saveScreenshot(str(tmp_path / "browser.png"))
    assert (tmp_path / "browser.png").read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
    with pytest.raises(tandril.Error):
        browser.saveScreenshot(str(tmp_path / "no such directory" / "browser.png"))


def test_create_makes_a_window_apart_whose_end_ends_the_handles(browser):
    window = StandaloneBrowser.create(Repository.Repository.open())
    window.setTitle("A window of the script's")
    assert browser.getTitle() != window.getTitle()
    window.destroyInstance()  # The process's window, whichever handle is asked.
    with pytest.raises(tandril.Destroyed):
        browser.isOpen()
    assert window.getTitle() == "A window of the script's" and "destroyed" in repr(browser)
    assert StandaloneBrowser().getSortedLibraryNames()[0] == "Tandril"


def nested(depth):
    return functools.reduce(lambda value, _: [value], range(depth), [])


def test_a_host_call_made_while_the_window_is_built_cannot_reach_or_destroy_it(session):
    stale = StandaloneBrowser()  # A stale handle still takes destroyInstance, which ignores the handle.
    stale.destroyInstance()
    refusals = []

    def library_data(nargout, *inputs):
        tandril.register_host_function("lb_getLibraryData", None)
        for attempt in (stale.destroyInstance, StandaloneBrowser):
            try:
                attempt()
            except tandril.Error as error:
                refusals.append(error.identifier)
        return tandril.call_host("tdprivate", nargout, "lb_getLibraryData", *inputs)

    browser = calls_with("lb_getLibraryData", library_data, StandaloneBrowser)
    assert refusals == ["Tandril:StandaloneBrowser:Busy"] * 2
    browser.selectTreeNodeByName("Kinetics")
    assert (browser.getCurrentTreeNode(), browser.getSortedLibraryNames()[0]) == ("Kinetics", "Tandril")


def test_a_child_of_a_collapsed_node_is_selected_as_a_user_would(session):
    browser = StandaloneBrowser()
    browser.show()
    for target in ("Kinetics/Discrete", "Kinetics/Continuous"):  # Again after a refresh, which makes every node anew.
        browser.expandTreeNodeByName("Kinetics")
        children = browser.getChildren("Kinetics")
        browser.collapseTreeNodeByName("Kinetics")
        assert not browser.isTreeNodeExpanded("Kinetics")
        browser.selectTreeNodeByNameGui(target)
        # The node opened on the way keeps its children: the path still names one.
        assert browser.isTreeNodeExpanded("Kinetics") and browser.getChildren("Kinetics") == children
        deadline = time.monotonic() + 5
        while not browser.isSelectedTreeNodeCurrent() and time.monotonic() < deadline:
            time.sleep(0.05)
        assert browser.getCurrentTreeNode() == target and browser.getBlocks()[0].startswith(target + "/")
        browser.refreshLibraryBrowser()


def test_values_nested_too_deep_and_host_functions_calling_themselves_end_with_clear_errors(session):
    (itself := []).append(itself)
    depths = []

    def recurse(nargout, depth):
        depths.append(depth)
        return tandril.call_host("recurse", nargout, depth + 1)

    functions = {"deep_answer": lambda nargout: [nested(100000)], "echo": lambda nargout, *inputs: list(inputs),
                 "recurse": recurse}
    for name, function in functions.items():
        tandril.register_host_function(name, function)
    try:
        for call in (lambda: tandril.call_host("deep_answer", 1), lambda: tandril.call_host("echo", 1, itself),
                     lambda: tandril.call_host("echo", 1, nested(100000))):
            with pytest.raises(tandril.ValueTooDeep, match="nested more than 100 deep"):
                call()
        # As deep as allowed crosses both ways unchanged.
        assert tandril.call_host("echo", 1, ["x", nested(98)]) == [["x", nested(98)]]
        with pytest.raises(tandril.CallsTooDeep) as failure:
            tandril.call_host("recurse", 1, 1)
    finally:
        for name in functions:
            tandril.register_host_function(name, None)
    assert str(failure.value).startswith("recurse: host functions served from Python nest more than 32 deep")
    assert depths == [float(d) for d in range(1, 33)]
    assert tandril.call_host("tdprivate", 1, "lb_getLibraryData", tandril.Repository.RepositoryReport.create(),
                             "kinetics")[0]


def test_at_the_interpreters_exit_open_windows_keep_their_choices_and_a_later_hook_gets_an_error(root_dir, tmp_path):
    done = run_python("""
        import atexit

        def late():
            import tandril
            for make in (tandril.StandaloneBrowser, tandril.Repository.Repository.open):
                try:
                    make()
                    print("made")
                except tandril.Error as error:
                    print(error.identifier, error)

        atexit.register(late)  # before the package's own hook, so it runs after it
        import tandril
        tandril.start(root=%r, prefdir=%r)
        browser = tandril.StandaloneBrowser()
        browser.show()
        browser.setLayout('LIST')
        own = tandril.StandaloneBrowser.create(tandril.Repository.Repository.open())
        own.show()
        print(browser.isOpen(), own.isOpen())
    """ % (str(root_dir), str(tmp_path)))
    lines = done.stdout.splitlines()
    assert done.returncode == 0 and len(lines) == 3 and lines[0] == "True True", done.stdout + done.stderr
    assert all(line.startswith("Tandril:Session:Ended The tandril session has ended at the interpreter's exit")
               for line in lines[1:]), lines
    assert stored_layout(tmp_path) == "List"
