"""A Python program as the host: callables serve the host's operations, values cross both ways."""

import pytest

import tandril
from tandril import Repository
from twoblockhost import OPERATIONS, SVG, TwoBlockHost, make_root


@pytest.fixture(scope="session")
def root_dir(tmp_path_factory):
    return make_root(tmp_path_factory.mktemp("python-host"))


@pytest.fixture(scope="module")
def python_host(session, root_dir):
    host = TwoBlockHost(root_dir)
    host.register()
    yield host
    TwoBlockHost.unregister_all()


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
    assert set(python_host.calls) == set(OPERATIONS)
    assert all(isinstance(r, Repository.RepositoryReport) for r in python_host.reports)
    assert repository.isProductUpToDate("duo")


def test_registrations_are_listed_and_handed_back(python_host):
    assert tandril.registered_host_functions() == sorted(OPERATIONS)
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
        tandril.register_host_function("lb_getBlockData", python_host.lb_getBlockData)
    # The writer clears the error flag after each product; the log keeps the
    # error, and the callable's own words come before it.
    report = writer.getRepositoryReport()
    log = report.getLog()
    assert any("??? **Error**" in line for line in log), log
    assert ("Tandril:Host:PythonError", "lb_getBlockData: ZeroDivisionError: division by zero") in \
        report.getWarnings()
    reader = Repository.Reader.open(str(tmp_path / "store"))
    assert [o.Name for o in reader.getChildrenIterator(reader.getTandrilObject("duo"))] == []


def test_the_operations_not_registered_go_to_the_embedded_host(session, tmp_path):
    doomed = tmp_path / "doomed"
    (doomed / "inner").mkdir(parents=True)
    assert tandril.call_host("tdprivate", 3, "rmdir", str(doomed), "s") == [True, "", ""]
    assert not doomed.exists()
