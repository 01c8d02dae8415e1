"""A Python program as the host: callables serve a root without tdblocks data one product "Duo" of two blocks."""

import os
import pathlib

import pytest

import tandril
from conftest import calls_with
from tandril import Repository

SVG = b'<svg xmlns="http://www.w3.org/2000/svg" width="40" height="30"><rect width="40" height="30"/></svg>'
BLOCKS = {1.0: ("Alpha", "The first of two."), 2.0: ("Beta", "The second of two.")}
OPERATIONS = ["lb_getTdBlocksData", "lb_getLibraryData", "lb_getChildrenHandles", "lb_getBlockData",
              "lb_createSubSystemIcons"]


@pytest.fixture(scope="session")
def root_dir(tmp_path_factory):
    root = tmp_path_factory.mktemp("python-host") / "root"
    (root / "duo").mkdir(parents=True)
    (root / "duo" / "duo.lib").write_text("two blocks, served from Python\n")
    return root


class TwoBlockHost:
    """The host operations for "Duo"; the calls made are noted."""

    def __init__(self, root):
        self.root, self.calls = root, []

    def lb_getTdBlocksData(self, nargout, report, path):
        self.calls.append(("lb_getTdBlocksData", type(report), nargout))
        return [["Duo"], ["duo"], ["duo"], [0.0], ["duo/duo.lib"], ["duo/duo.lib"], ["Product"], [[]],
                [["duo/duo.lib"]]]

    def lb_getLibraryData(self, nargout, report, path):
        self.calls.append(("lb_getLibraryData", type(report)))
        info = os.stat(self.root / "duo" / "duo.lib")
        return (["duo/duo.lib"], float(info.st_size), float(int(info.st_mtime)))

    def lb_getChildrenHandles(self, nargout, report, parent):
        self.calls.append(("lb_getChildrenHandles", type(report)))
        if parent != "duo":
            raise LookupError("no children below %r" % (parent,))
        return [sorted(BLOCKS)]

    def lb_getBlockData(self, nargout, report, handle):
        self.calls.append(("lb_getBlockData", type(report)))
        report.log("served %s from Python" % BLOCKS[handle][0])
        return [*BLOCKS[handle], [0.0, 0.0, 40.0, 30.0], "Block", "", ""]

    def lb_createSubSystemIcons(self, nargout, report, parent, children, files):
        self.calls.append(("lb_createSubSystemIcons", type(report), parent, children))
        for file in map(pathlib.Path, files):
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(SVG)


@pytest.fixture(scope="module")
def python_host(session, root_dir):
    host = TwoBlockHost(root_dir)
    for name in OPERATIONS:
        tandril.register_host_function(name, getattr(host, name))
    yield host
    for name in tandril.registered_host_functions():
        tandril.register_host_function(name, None)


def test_a_two_block_library_served_from_python_is_browsed(python_host):
    repository = Repository.Repository.open()
    products = list(repository.getProductsIterator())
    assert [(p.Path, p.DisplayName) for p in products] == [("duo", "Duo")]
    children = list(repository.getChildrenIterator(products[0]))
    assert [(c.Name, c.Type, c.Description) for c in children] == [
        ("Alpha", "Block", "The first of two."), ("Beta", "Block", "The second of two.")]
    assert children[0].Icon.svg == SVG and [b.Path for b in repository.findBlocks("bet")] == ["duo/Beta"]
    report = repository.getRepositoryReport()
    assert not report.hasError(), report.getErrors()
    assert any("served Beta from Python" in line for line in report.getLog())
    report_class = Repository.RepositoryReport
    assert set(map(str, python_host.calls)) == set(map(str, [
        ("lb_getTdBlocksData", report_class, 9), ("lb_getLibraryData", report_class),
        ("lb_getChildrenHandles", report_class), ("lb_getBlockData", report_class),
        ("lb_createSubSystemIcons", report_class, "duo", ["duo/Alpha", "duo/Beta"])]))
    assert repository.isProductUpToDate("duo") and tandril.registered_host_functions() == sorted(OPERATIONS)


class Refusal(Exception):
    identifier = "Test:Host:Refused"


def refuse(nargout, *inputs):
    raise Refusal("not today")


def test_values_cross_both_ways_and_a_callable_that_fails_or_is_gone_is_a_failed_call(session):
    for value, back in [("text", "text"), ("", ""), (True, True), (3, 3.0), (2.5, 2.5), ([1, 2.5], [1.0, 2.5]),
                        ([True, False], [True, False]), ([[1, 2], [3, 4]], [[1.0, 2.0], [3.0, 4.0]]),
                        ([[1], [2]], [[1.0], [2.0]]), (["a", 1, [True]], ["a", 1.0, True]),
                        ([["a"], []], [["a"], []]),
                        ([], []), ([1, True], [1.0, True]), (None, None), ({"a": 1}, None)]:
        assert calls_with("echo", lambda nargout, *inputs: list(inputs),
                          lambda: tandril.call_host("echo", 1, value)) == [back], value
    assert calls_with("echo", lambda nargout, *inputs: tuple(inputs),  # Any sequence serves as a list.
                      lambda: tandril.call_host("echo", 1, range(3))) == [[0.0, 1.0, 2.0]]
    for function, inputs, identifier, says in [
            (refuse, (), "Test:Host:Refused", "not today"),
            (refuse, ("too", "many"), "Test:Host:Refused", "not today"),
            (lambda nargout: "one output, not in a list", (), "Tandril:Host:PythonResult", ""),
            (None, ("x",), "Tandril:Host:UndefinedFunction", "")]:
        with pytest.raises(tandril.Error, match=says) as info:
            calls_with("failing", function, lambda: tandril.call_host("failing", 1, *inputs))
        assert info.value.identifier == identifier and "failing" not in tandril.registered_host_functions()


def test_a_failing_operation_reaches_the_report_not_the_script(python_host, tmp_path):
    tandril.register_host_function("lb_getBlockData", lambda nargout, report, handle: 1 / 0)
    try:
        writer = Repository.Writer.open(str(tmp_path / "store"))
        writer.generateRepository()
    finally:
        tandril.register_host_function("lb_getBlockData", python_host.lb_getBlockData)
    # The writer clears the error flag after each product; the log keeps the
    report = writer.getRepositoryReport()  # error, and the callable's own words come before it.
    assert any("??? **Error**" in line for line in report.getLog())
    assert ("Tandril:Host:PythonError", "lb_getBlockData: ZeroDivisionError: division by zero") in \
        report.getWarnings()
    reader = Repository.Reader.open(str(tmp_path / "store"))
    assert reader.getChildrenIterator(reader.getTandrilObject("duo")).isEmpty()

