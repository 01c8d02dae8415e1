"""The browser window steered from Python through tandril.StandaloneBrowser, on the example root."""

import configparser
import math
import os
import subprocess
import sys
import time

import pytest

import tandril
from tandril import BlocksPageType, IconSize, LayoutType, Repository, StandaloneBrowser

TIMER_SECONDS = 0.111


@pytest.fixture
def browser(session):
    return StandaloneBrowser()


def stored_preferences(prefs_dir):
    parser = configparser.ConfigParser()
    parser.optionxform = str
    parser.read(prefs_dir / "LibraryBrowser.ini")
    return parser["LibraryBrowser"] if parser.has_section("LibraryBrowser") else {}


# The class and its enums.

def test_the_enums_are_the_scripted_words_with_their_numbers():
    assert [(m.value, int(m)) for m in LayoutType] == [("LIST", 0), ("GRID", 1)]
    assert [(m.value, int(m)) for m in IconSize] == [("COMPACT", 0), ("SMALL", 1), ("MEDIUM", 2), ("LARGE", 3)]
    assert [(m.value, int(m)) for m in BlocksPageType] == [("LIBRARY_PANEL", 0), ("RESULTS_PANEL", 1)]
    assert LayoutType("GRID") is LayoutType(1) is LayoutType.GRID == "GRID"
    assert StandaloneBrowser.IconSize is IconSize
    for bad in [True, None, "grid", 2, 1.0]:
        with pytest.raises(ValueError):
            LayoutType(bad)


def test_the_methods_are_those_of_the_scripted_class():
    table = ["enableLogging", "disableLogging", "show", "hide", "setTitle", "close", "isOpen", "doubleClickBlock",
             "expandTreeNodeByName", "getBlocks", "getResultsPageBlockNames", "getResultsPageSectionNames",
             "getResultsSectionBlockNames", "isResultsSectionVisibleGui", "hideResultsSectionByName",
             "showResultsSectionByName", "getChildren", "getSelectedBlockName", "getCurrentTreeNode",
             "getSearchResults", "getTitle", "isBlockDescriptionVisible", "isSelectedTreeNodeCurrent",
             "isSearchResultsVisible", "openNewLibrary", "openNewModel", "searchForBlock", "selectSearchResult",
             "selectTreeNodeByName", "selectTreeNodeByNameGui", "selectBlockByName", "destroyInstance",
             "selectBlockInLibraryView", "setIconSize", "create", "setLayout", "showBlockDescription",
             "showSearchResults", "addSelectedBlockToCurrentOpenSystem", "selectBlockLeft", "selectBlockRight",
             "selectBlockUp", "selectBlockDown", "getLibraryNumIconCols", "getResultsNumIconCols", "getLayoutType",
             "getIconSize", "getFontSize", "increaseFontSize", "decreaseFontSize", "showSelectedBlockParams",
             "goToParent", "getGUIFont", "refreshLibraryBrowser", "collapseTreeNodeByName", "isTreeNodeExpanded",
             "getPosition", "setPosition", "setSearchOptions", "getSearchOptions", "getCurrentBlockPosition",
             "isEnabled", "showTandrilPrefs", "getCurrentTabIndex", "selectTabByIndex", "getTabTypeByIndex",
             "getSortedLibraryNames", "isTreeNodeExpandable"]
    defined = [name for name in StandaloneBrowser.__dict__ if not name.startswith("_")]
    assert [name for name in defined if name in table] == table


# The window's state: open and closed, position, title, font, layout.

def test_one_window_serves_the_process_and_close_tells_the_state_before(browser, prefs_dir):
    other = StandaloneBrowser()
    other.setTitle("Blocks of the process")
    assert browser.getTitle() == "Blocks of the process"
    # Arguments to the constructor are ignored, as the scripted class has it.
    assert StandaloneBrowser("ignored", 3, title="ignored").getTitle() == "Blocks of the process"
    browser.show()
    assert browser.isOpen() and other.isOpen()
    assert browser.close() is True
    assert not browser.isOpen()

    # Closing a hidden window closes it again, and the preferences are saved again.
    browser.setLayout("LIST")
    (prefs_dir / "LibraryBrowser.ini").unlink()
    assert browser.close() is False
    assert stored_preferences(prefs_dir)["LBLayout"] == "List"
    browser.hide()
    assert not browser.isOpen()


def test_set_position_takes_a_1_by_4_row_and_rounds(browser):
    browser.close()
    browser.setPosition([10.6, 20.4, 640.5, 480])
    assert browser.getPosition() == [11.0, 20.0, 641.0, 480.0]
    browser.setPosition([[30, 40, 600, 500]])
    assert browser.getPosition() == [30.0, 40.0, 600.0, 500.0]
    browser.setPosition((-10.6, 0, 600, 500))
    assert browser.getPosition()[0] == -10.0, "0.5 is added, then truncated toward zero"


@pytest.mark.parametrize(
    "position",
    [[[10], [20], [600], [500]], [10, 20, 600], [10, 20, 600, 500, 1], [[1, 2], [3, 4]], [True] * 4, "1234", None,
     [], 5, ["10", "20", "600", "500"]])
def test_set_position_refuses_anything_else_with_the_classs_text(browser, position):
    before = browser.getPosition()
    with pytest.raises(tandril.Error) as info:
        browser.setPosition(position)
    assert str(info.value) == "Point should be a 1 x 4 array"
    assert info.value.identifier == "Tandril:StandaloneBrowser:BadArgument"
    assert browser.getPosition() == before


@pytest.mark.parametrize("value", [math.nan, math.inf, 1e300, -3e9])
def test_set_position_refuses_values_that_are_no_int(browser, value):
    with pytest.raises(tandril.Error) as info:
        browser.setPosition([0, 0, 600, value])
    assert info.value.identifier == "Tandril:StandaloneBrowser:BadArgument"


def test_font_steps_and_the_windows_font(browser):
    start = browser.getFontSize()
    browser.increaseFontSize()
    assert browser.getFontSize() == start + 2
    assert browser.getGUIFont() == int(start + 2)
    browser.decreaseFontSize()
    assert browser.getFontSize() == start


def test_set_layout_twice_rebuilds_the_page_once(browser):
    browser.selectTreeNodeByName("Kinetics")
    browser.setLayout(LayoutType.LIST)
    assert browser.getLayoutType() is LayoutType.LIST
    before = tandril._tiles_created()
    browser.setLayout("GRID")
    once = tandril._tiles_created()
    assert once > before
    browser.setLayout("GRID")
    browser.setLayout(1)
    assert tandril._tiles_created() == once
    assert browser.getLayoutType() == "GRID"


def test_icon_sizes_by_member_word_and_number(browser):
    for size in [IconSize.LARGE, "MEDIUM", 0, "SMALL"]:
        browser.setIconSize(size)
        assert browser.getIconSize() is IconSize(size)


def test_the_description_and_the_results_list_are_switched(browser):
    browser.show()
    browser.showBlockDescription(False)
    assert not browser.isBlockDescriptionVisible()
    browser.showBlockDescription(True)
    assert browser.isBlockDescriptionVisible()
    browser.showSearchResults(True)
    assert browser.isSearchResultsVisible()
    browser.close()
    assert browser.isSearchResultsVisible(), "a hidden window keeps what it will show"
    browser.showSearchResults(False)
    assert not browser.isSearchResultsVisible()


# The tree and the library page.

def test_the_tree_is_walked_by_display_path(browser):
    names = browser.getSortedLibraryNames()
    assert names[0] == "Tandril" and names[1:] == sorted(names[1:])
    browser.selectTreeNodeByName("Kinetics")
    assert browser.getCurrentTreeNode() == "Kinetics"
    browser.expandTreeNodeByName("Kinetics")
    assert browser.isTreeNodeExpandable("Kinetics") and browser.isTreeNodeExpanded("Kinetics")
    children = browser.getChildren("Kinetics")
    assert "Kinetics/Continuous" in children
    assert browser.getBlocks()[:len(children)] == children

    browser.selectTreeNodeByName("Kinetics/Continuous")
    assert browser.getCurrentTreeNode() == "Kinetics/Continuous"
    assert "Kinetics/Continuous/Integrator" in browser.getBlocks()
    browser.goToParent()
    assert browser.getCurrentTreeNode() == "Kinetics"
    browser.collapseTreeNodeByName("Kinetics")
    assert not browser.isTreeNodeExpanded("Kinetics")
    assert browser.getChildren("Kinetics") == []


def test_a_selection_as_the_keyboard_makes_it_waits_for_the_timer(browser):
    browser.selectTreeNodeByName("Kinetics")
    browser.expandTreeNodeByName("Kinetics")
    browser.selectTreeNodeByNameGui("Kinetics/Discrete")
    assert not browser.isSelectedTreeNodeCurrent()
    assert browser.getCurrentTreeNode() == "Kinetics"
    time.sleep(2 * TIMER_SECONDS)
    assert browser.isSelectedTreeNodeCurrent()
    assert browser.getCurrentTreeNode() == "Kinetics/Discrete"


def test_tiles_are_selected_by_name_and_moved(browser):
    browser.setLayout("GRID")
    browser.selectTreeNodeByName("Kinetics/Discrete")
    blocks = browser.getBlocks()
    browser.selectBlockByName(blocks[0])
    assert browser.getSelectedBlockName() == blocks[0]
    x, y, width, height = browser.getCurrentBlockPosition()
    assert width > 0 and height > 0
    browser.selectBlockRight()
    if browser.getLibraryNumIconCols() > 1:
        assert browser.getSelectedBlockName() == blocks[1]
    browser.selectBlockDown()
    browser.selectBlockUp()
    browser.selectBlockLeft()
    assert browser.getSelectedBlockName() == blocks[0]
    browser.selectBlockByName("Kinetics/Discrete/No Such Block")
    assert browser.getSelectedBlockName() == blocks[0]


# The search and the results page.

def test_a_search_fills_the_results_page_section_by_library(browser):
    browser.setSearchOptions([False, False, False])
    browser.searchForBlock("integrator")
    assert browser.getCurrentTabIndex() == 1
    assert browser.isEnabled()
    sections = browser.getResultsPageSectionNames()
    assert sections[0] == "Tandril" and "Kinetics" in sections
    hits = browser.getResultsPageBlockNames()
    assert "Kinetics/Continuous/Integrator" in hits
    assert browser.getSearchResults() == hits
    assert sum(len(browser.getResultsSectionBlockNames(s)) for s in sections) == len(hits)
    assert browser.getResultsNumIconCols() >= 1

    assert browser.hideResultsSectionByName("Kinetics")
    assert not browser.isResultsSectionVisibleGui("Kinetics")
    assert browser.showResultsSectionByName("Kinetics")
    assert browser.isResultsSectionVisibleGui("Kinetics")
    assert not browser.hideResultsSectionByName("No Such Library")


def test_a_hit_is_selected_and_shown_in_its_library(browser):
    browser.searchForBlock("integrator")
    browser.selectSearchResult("Kinetics/Continuous/Integrator")
    assert browser.getSelectedBlockName() == "Kinetics/Continuous/Integrator"
    browser.selectBlockInLibraryView("Kinetics/Continuous/Integrator")
    assert browser.getCurrentTabIndex() == 0
    assert browser.getCurrentTreeNode() == "Kinetics/Continuous"
    assert browser.getSelectedBlockName() == "Kinetics/Continuous/Integrator"
    browser.selectTabByIndex(1)
    assert browser.getCurrentTabIndex() == 1
    browser.selectTabByIndex(7)
    assert browser.getCurrentTabIndex() == 1


@pytest.mark.parametrize(
    "options, read",
    [([0, 1, math.nan], [False, True, True]), ([True, False, True], [True, False, True]),
     ([-2, 0, 0.5, 0], [True, False, True]), ([[0, 0, 1]], [False, False, True]),
     ((False, True, False, True), [False, True, False])])
def test_search_options_from_logical_or_numeric_arrays(browser, options, read):
    browser.setSearchOptions(options)
    assert browser.getSearchOptions() == read


@pytest.mark.parametrize("options", ["on", "110", None, ["on", "off", "on"], [True, 0, 1], [], {"RegExp": True}])
def test_search_options_of_another_kind_are_refused(browser, options):
    browser.setSearchOptions([True, True, True])
    with pytest.raises(tandril.Error) as info:
        browser.setSearchOptions(options)
    assert str(info.value) == "Inputs to setSearchOptions should be either logical or numeric"
    assert browser.getSearchOptions() == [True, True, True]


@pytest.mark.parametrize("options", [True, 1, [1, 0], [True, False]])
def test_fewer_than_three_search_options_are_refused(browser, options):
    with pytest.raises(tandril.Error) as info:
        browser.setSearchOptions(options)
    assert "three values" in str(info.value)


def test_the_tab_type_is_told_without_the_window(browser):
    assert browser.getTabTypeByIndex(0) is BlocksPageType.LIBRARY_PANEL
    for index in [1, 7, -1]:
        assert browser.getTabTypeByIndex(index) == "RESULTS_PANEL"
    assert int(browser.getTabTypeByIndex(7)) == 1


def test_logging_echoes_the_repositorys_log(browser, capfd):
    browser.enableLogging()
    browser.refreshLibraryBrowser()
    echoed = capfd.readouterr().out
    browser.disableLogging()
    browser.refreshLibraryBrowser()
    assert "Action: " in echoed
    assert "Action: " not in capfd.readouterr().out
    assert browser.getSortedLibraryNames()[0] == "Tandril"


def test_a_screenshot_is_written(browser, tmp_path):
    browser.show()
    browser.saveScreenshot(str(tmp_path / "browser.png"))
    assert (tmp_path / "browser.png").read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
    with pytest.raises(tandril.Error):
        browser.saveScreenshot(str(tmp_path / "no such directory" / "browser.png"))


# Windows of a script's own, and the end of a window.

def test_create_makes_a_window_apart_from_the_process_window(browser):
    window = StandaloneBrowser.create(Repository.Repository.open())
    window.setTitle("A window of the script's")
    assert browser.getTitle() != window.getTitle()
    assert window.getSortedLibraryNames() == browser.getSortedLibraryNames()
    window.selectTreeNodeByName("Kinetics")
    assert window.getCurrentTreeNode() == "Kinetics"
    window.destroyInstance()
    assert window.getTitle() == "A window of the script's"
    with pytest.raises(tandril.Error) as info:
        browser.isOpen()
    assert info.value.identifier == "Tandril:StandaloneBrowser:Destroyed"
    assert "destroyed" in repr(browser)
    assert browser.getTabTypeByIndex(3) == "RESULTS_PANEL"
    assert StandaloneBrowser().getSortedLibraryNames()[0] == "Tandril"


# Bad input at the boundary.

@pytest.mark.parametrize(
    "call",
    [
        lambda b: b.setTitle(None),
        lambda b: b.selectTreeNodeByName(None),
        lambda b: b.selectTreeNodeByName(3),
        lambda b: b.getChildren(["Kinetics"]),
        lambda b: b.searchForBlock(None),
        lambda b: b.showBlockDescription(None),
        lambda b: b.showBlockDescription(1),
        lambda b: b.showSearchResults("yes"),
        lambda b: b.selectTabByIndex(None),
        lambda b: b.selectTabByIndex(1.5),
        lambda b: b.getTabTypeByIndex("7"),
        lambda b: b.saveScreenshot(None),
        lambda b: StandaloneBrowser.create(None),
        lambda b: StandaloneBrowser.create("repository"),
        lambda b: StandaloneBrowser.create(Repository.Reader.open("nowhere")),
    ],
)
def test_wrong_types_raise_type_error(browser, call):
    with pytest.raises(TypeError):
        call(browser)


@pytest.mark.parametrize("call", [lambda b: b.setLayout(None), lambda b: b.setLayout("MODEL"),
                                  lambda b: b.setLayout(2), lambda b: b.setIconSize("HUGE"),
                                  lambda b: b.setIconSize(True)])
def test_words_the_enums_lack_raise_value_error(browser, call):
    layout, size = browser.getLayoutType(), browser.getIconSize()
    with pytest.raises(ValueError):
        call(browser)
    assert (browser.getLayoutType(), browser.getIconSize()) == (layout, size)


def test_empty_and_unknown_paths_do_nothing_and_read_empty(browser):
    browser.selectTreeNodeByName("Kinetics")
    for path in ["", "/", "Nothing", "Kinetics/Nothing", "kinetics", "\n", "ü" * 300]:
        for step in [browser.selectTreeNodeByName, browser.selectTreeNodeByNameGui, browser.expandTreeNodeByName,
                     browser.collapseTreeNodeByName, browser.selectBlockByName, browser.doubleClickBlock,
                     browser.selectSearchResult, browser.selectBlockInLibraryView]:
            step(path)
        assert browser.getChildren(path) == []
        assert not browser.isTreeNodeExpanded(path) and not browser.isTreeNodeExpandable(path)
        assert browser.getResultsSectionBlockNames(path) == []
        assert not browser.isResultsSectionVisibleGui(path)
        assert not browser.showResultsSectionByName(path)
    assert browser.getCurrentTreeNode() == "Kinetics"
    assert browser.isSelectedTreeNodeCurrent()


def test_short_and_empty_searches_are_no_searches(browser):
    browser.searchForBlock("integrator")
    hits = browser.getResultsPageBlockNames()
    for text in ["", "a", " "]:
        browser.searchForBlock(text)
        assert browser.getResultsPageBlockNames() == hits
        assert browser.isEnabled()


def test_actions_without_a_selection_or_a_host_window_are_harmless(browser):
    browser.selectTreeNodeByName("Kinetics")
    browser.selectTabByIndex(1)
    browser.searchForBlock("xyzzy")
    assert browser.getSelectedBlockName() == ""
    assert browser.getCurrentBlockPosition() == [0.0, 0.0, 0.0, 0.0]
    for action in [browser.addSelectedBlockToCurrentOpenSystem, browser.showSelectedBlockParams,
                   browser.selectBlockLeft, browser.selectBlockDown, browser.showTandrilPrefs]:
        action()
    assert browser.isEnabled()


def test_windows_left_open_at_the_interpreters_exit(tmp_path, root_dir):
    prefs = tmp_path / "prefs"
    code = ("import tandril\n"
            "from tandril import Repository, StandaloneBrowser\n"
            "browser = StandaloneBrowser()\n"
            "browser.show()\n"
            "browser.setLayout('LIST')\n"
            "own = StandaloneBrowser.create(Repository.Repository.open())\n"
            "own.show()\n"
            "print(browser.isOpen(), own.isOpen())\n")
    env = dict(os.environ, NUMORA_ROOT=str(root_dir), NUMORA_PREFDIR=str(prefs))
    result = subprocess.run([sys.executable, "-c", code], env=env, capture_output=True, text=True, timeout=120)
    assert result.returncode == 0, result.stderr
    assert result.stdout == "True True\n"
    assert stored_preferences(prefs)["LBLayout"] == "List"
