"""The browser window on a library that a Python program serves as the host."""

import pytest

import tandril
from tandril import StandaloneBrowser
from twoblockhost import TwoBlockHost, make_root


@pytest.fixture(scope="session")
def root_dir(tmp_path_factory):
    return make_root(tmp_path_factory.mktemp("python-host"))


class WindowCommands:
    """The host's side of the window's commands on blocks: the library counts
    as loaded, and dialogs that the window opens are noted."""

    def __init__(self):
        self.dialogs = []

    def register(self):
        tandril.register_host_function("private_td_is_system_loaded", lambda nargout, name: [True])
        tandril.register_host_function("private_td_open_block_dialog", self.open_dialog)

    def open_dialog(self, nargout, path, kind):
        self.dialogs.append((path, kind))


@pytest.fixture(scope="module")
def python_host(session, root_dir):
    host = TwoBlockHost(root_dir)
    host.register()
    commands = WindowCommands()
    commands.register()
    yield host, commands
    TwoBlockHost.unregister_all()


def test_the_window_browses_a_library_served_from_python(python_host):
    host, commands = python_host
    browser = StandaloneBrowser()
    browser.show()
    assert browser.getSortedLibraryNames() == ["Duo"]
    browser.selectTreeNodeByName("Duo")
    assert browser.getCurrentTreeNode() == "Duo"
    assert browser.getBlocks() == ["Duo/Alpha", "Duo/Beta"]
    assert not browser.isTreeNodeExpandable("Duo")
    assert "lb_getBlockData" in host.calls

    browser.selectBlockByName("Duo/Beta")
    assert browser.getSelectedBlockName() == "Duo/Beta"
    browser.doubleClickBlock("Duo/Beta")
    browser.showSelectedBlockParams()
    assert commands.dialogs == [("duo/Beta", "default"), ("duo/Beta", "params")]

    browser.searchForBlock("bet")
    assert browser.getResultsPageSectionNames() == ["Duo"]
    assert browser.getResultsSectionBlockNames("Duo") == ["Duo/Beta"]
    assert browser.getSearchResults() == ["Duo/Beta"]


def test_a_failing_callable_leaves_the_window_working(python_host):
    host, commands = python_host

    def refuse(nargout, path, kind):
        raise RuntimeError("no dialogs today")

    tandril.register_host_function("private_td_open_block_dialog", refuse)
    try:
        browser = StandaloneBrowser()
        browser.selectTreeNodeByName("Duo")
        browser.doubleClickBlock("Duo/Alpha")
        assert browser.isEnabled()
        assert browser.getBlocks() == ["Duo/Alpha", "Duo/Beta"]
    finally:
        tandril.register_host_function("private_td_open_block_dialog", commands.open_dialog)


def test_a_callable_cannot_destroy_the_window_that_waits_for_it(python_host):
    host, commands = python_host
    refusals = []

    def destroy(nargout, path, kind):
        try:
            StandaloneBrowser().destroyInstance()
        except tandril.Error as error:
            refusals.append(error.identifier)
            raise

    tandril.register_host_function("private_td_open_block_dialog", destroy)
    try:
        browser = StandaloneBrowser()
        browser.selectTreeNodeByName("Duo")
        browser.doubleClickBlock("Duo/Alpha")
        assert refusals == ["Tandril:StandaloneBrowser:Busy"]
        assert browser.getBlocks() == ["Duo/Alpha", "Duo/Beta"]
    finally:
        tandril.register_host_function("private_td_open_block_dialog", commands.open_dialog)
    browser.destroyInstance()
    assert "destroyed" in repr(browser)
