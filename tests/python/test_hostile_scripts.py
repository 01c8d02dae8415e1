"""Scripts that once brought the process down now get a clear error, or what a user expects (MALLOC_PERTURB_/ASan)."""

import functools
import time

import pytest

import tandril
from conftest import calls_with, run_python, stored_layout
from tandril import StandaloneBrowser

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
