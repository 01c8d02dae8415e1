"""A Python program as the host: callables serve the host's operations, values cross both ways."""

import os

import pytest

import tandril
from tandril import Repository

SVG = b'<svg xmlns="http://www.w3.org/2000/svg" width="40" height="30"><rect width="40" height="30"/></svg>'
BLOCKS = {1.0: ("Alpha", "The first of two."), 2.0: ("Beta", "The second of two.")}


@pytest.fixture(scope="session")
def root_dir(tmp_path_factory):
    """A root of one library file and no tdblocks data: only Python announces it."""
    root = tmp_path_factory.mktemp("python-host") / "root"
    (root / "duo").mkdir(parents=True)
    (root / "duo" / "duo.lib").write_text("two blocks, served from Python\n")
    return root


class TwoBlockHost:
    """The five repository operations for one product "Duo" of two blocks."""

    def __init__(self, root):
        self.root = root
        self.calls = []
        self.reports = []

    def register(self):
        for name, function in [("lb_getTdBlocksData", self.products), ("lb_getLibraryData", self.library),
                               ("lb_getChildrenHandles", self.children), ("lb_getBlockData", self.block),
                               ("lb_createSubSystemIcons", self.icons)]:
            tandril.register_host_function(name, function)

    def note(self, name, report):
        self.calls.append(name)
        self.reports.append(report)

    def products(self, nargout, report, path):
        self.note("lb_getTdBlocksData", report)
        assert nargout == 9
        return [["Duo"], ["duo"], ["duo"], [0.0], ["duo/duo.lib"], ["duo/duo.lib"], ["Product"], [[]],
                [["duo/duo.lib"]]]

    def library(self, nargout, report, path):
        self.note("lb_getLibraryData", report)
        info = os.stat(self.root / "duo" / "duo.lib")
        return (["duo/duo.lib"], float(info.st_size), float(int(info.st_mtime)))

    def children(self, nargout, report, parent):
        self.note("lb_getChildrenHandles", report)
        if parent != "duo":
            raise LookupError("no children below %r" % (parent,))
        return [sorted(BLOCKS)]

    def block(self, nargout, report, handle):
        self.note("lb_getBlockData", report)
        name, description = BLOCKS[handle]
        report.log("served %s from Python" % name)
        return [name, description, [0.0, 0.0, 40.0, 30.0], "Block", "", ""]

    def icons(self, nargout, report, parent, children, files):
        self.note("lb_createSubSystemIcons", report)
        assert parent == "duo" and children == ["duo/Alpha", "duo/Beta"]
        for file in files:
            os.makedirs(os.path.dirname(file), exist_ok=True)
            with open(file, "wb") as out:
                out.write(SVG)


@pytest.fixture(scope="module")
def python_host(session, root_dir):
    host = TwoBlockHost(root_dir)
    host.register()
    yield host
    for name in list(tandril.registered_host_functions()):
        tandril.register_host_function(name, None)


def test_a_two_block_library_served_from_python_is_browsed(python_host):
    repository = Repository.Repository.open()
    products = list(repository.getProductsIterator())
    assert [(p.Path, p.DisplayName) for p in products] == [("duo", "Duo")]
    children = list(repository.getChildrenIterator(products[0]))
    assert [(c.Name, c.Type, c.Description) for c in children] == [
        ("Alpha", "Block", "The first of two."), ("Beta", "Block", "The second of two.")]
    assert children[0].Icon.svg == SVG
    assert [b.Path for b in repository.findBlocks("bet")] == ["duo/Beta"]
    report = repository.getRepositoryReport()
    assert not report.hasError(), report.getErrors()
    assert any("served Beta from Python" in line for line in report.getLog())
    assert set(python_host.calls) == {"lb_getTdBlocksData", "lb_getLibraryData", "lb_getChildrenHandles",
                                      "lb_getBlockData", "lb_createSubSystemIcons"}
    assert all(isinstance(r, Repository.RepositoryReport) for r in python_host.reports)
    assert repository.isProductUpToDate("duo")


def test_registrations_are_listed_and_handed_back(python_host):
    assert tandril.registered_host_functions() == sorted(
        ["lb_getTdBlocksData", "lb_getLibraryData", "lb_getChildrenHandles", "lb_getBlockData",
         "lb_createSubSystemIcons"])
    tandril.register_host_function("echo", lambda nargout, *inputs: inputs)
    assert "echo" in tandril.registered_host_functions()
    tandril.register_host_function("echo", None)
    assert "echo" not in tandril.registered_host_functions()
    with pytest.raises(tandril.Error) as info:
        tandril.call_host("echo", 1, "x")
    assert info.value.identifier == "Tandril:Host:UndefinedFunction"


@pytest.mark.parametrize(
    "value, back",
    [
        ("text", "text"),
        ("", ""),
        (True, True),
        (3, 3.0),
        (2.5, 2.5),
        ([1, 2.5], [1.0, 2.5]),
        ([True, False], [True, False]),
        ([[1, 2], [3, 4], [5, 6]], [[1.0, 2.0], [3.0, 4.0], [5.0, 6.0]]),
        ([[1], [2]], [[1.0], [2.0]]),
        (["a", 1, [True]], ["a", 1.0, True]),
        ([["a"], []], [["a"], []]),
        ([], []),
        ([1, True], [1.0, True]),
        (None, None),
        ({"a": 1}, None),
    ],
)
def test_values_cross_both_ways(session, value, back):
    tandril.register_host_function("echo", lambda nargout, *inputs: list(inputs))
    try:
        assert tandril.call_host("echo", 1, value) == [back]
    finally:
        tandril.register_host_function("echo", None)


def test_a_callable_that_fails_is_a_failed_call(session):
    class Refusal(Exception):
        identifier = "Test:Host:Refused"

    def refuse(nargout, *inputs):
        raise Refusal("not today")

    tandril.register_host_function("refuse", refuse)
    tandril.register_host_function("wrong", lambda nargout: "one output, not in a list")
    try:
        with pytest.raises(tandril.Error) as info:
            tandril.call_host("refuse", 0)
        assert info.value.identifier == "Test:Host:Refused"
        assert "not today" in str(info.value)
        with pytest.raises(tandril.Error) as info:
            tandril.call_host("wrong", 1)
        assert info.value.identifier == "Tandril:Host:PythonResult"
        with pytest.raises(tandril.Error) as info:
            tandril.call_host("refuse", 0, "too", "many")
        assert "not today" in str(info.value)
    finally:
        tandril.register_host_function("refuse", None)
        tandril.register_host_function("wrong", None)


def test_a_failing_operation_reaches_the_report_not_the_script(python_host, tmp_path):
    tandril.register_host_function("lb_getBlockData", lambda nargout, report, handle: 1 / 0)
    try:
        writer = Repository.Writer.open(str(tmp_path / "store"))
        writer.generateRepository()
    finally:
        tandril.register_host_function("lb_getBlockData", python_host.block)
    # The writer clears the error flag after each product; the log keeps the error.
    log = writer.getRepositoryReport().getLog()
    assert any("??? **Error**" in line for line in log), log
    reader = Repository.Reader.open(str(tmp_path / "store"))
    assert [o.Name for o in reader.getChildrenIterator(reader.getTandrilObject("duo"))] == []


def test_the_operations_not_registered_go_to_the_embedded_host(session, tmp_path):
    doomed = tmp_path / "doomed"
    (doomed / "inner").mkdir(parents=True)
    assert tandril.call_host("tdprivate", 3, "rmdir", str(doomed), "s") == [True, "", ""]
    assert not doomed.exists()
