"""Bad input at the boundary: a clear Python exception, the documented empty result, or a refused start."""

import os
import re

import pytest

import tandril
from conftest import run_python
from tandril import Repository, StandaloneBrowser

BLOCK = "kinetics/Continuous/Integrator"
PAIRS = ("Tandril:Repository:PairValueMismatch", "Expected a cell array of pairs (Option, Value)")
STRING = ("Tandril:Repository:StringTypeExpected", "Expected a string argument.")
# The allowed words are listed in no fixed order.
OPTIONS = r"Option {} is invalid\. Possible options are (\w+),(\w+),(\w+)\.$"
VALUES = r"Value {} is invalid\. Possible values are (\w+),(\w+)\.$"


@pytest.mark.parametrize("call, error, text", [(call, TypeError, "") for call in (
    lambda r, o: r.getTandrilObject(5), lambda r, o: r.getChildrenIterator("kinetics"),
    lambda r, o: r.getDepthFirstIterator(None), lambda r, o: r.generateProduct(o, 2),
    # A logical argument takes True or False only, as the window's do.
    lambda r, o: r.isProductUpToDate(o, 1), lambda r, o: r.getRepositoryReport().logToConsoleInteractively(1),
    lambda r, o: r.findBlocks("gain", o, {"RegExp": "on"}), lambda r, o: Repository.Util.computeCheckSum("file", None),
    lambda r, o: Repository.Handle(), lambda r, o: o.eq(None), lambda r, o: Repository.Writer.open("dir", "not a list"),
    lambda r, o: Repository.TandrilObject("kinetics"), lambda r, o: Repository.BlockRanker("store"),
    lambda r, o: StandaloneBrowser().setTitle(None), lambda r, o: StandaloneBrowser().selectTabByIndex(1.5),
    lambda r, o: StandaloneBrowser().showBlockDescription(1),
    lambda r, o: StandaloneBrowser.create(Repository.Reader.open("x")))] + [
    (lambda r, o: r.findBlocks("gain", "RegExp"), TypeError, "must be a list, tuple or other sequence, not str"),
    (lambda r, o: Repository.BlockRanker(r).rank("pid", limit=-1), ValueError, "limit must be 0"),
    (lambda r, o: Repository.BlockRanker(r).rank("pid", favourites="kinetics"), TypeError, "not one string"),
    (lambda r, o: Repository.BlockRanker(r).rank("pid", recents=[1]), TypeError, "as strings, not int"),
])
def test_wrong_types_and_values_are_refused(repository, call, error, text):
    with pytest.raises(error, match=text):
        call(repository, repository.getTandrilObject(BLOCK))


@pytest.mark.parametrize("row, fault, message", [
    # The count is checked before any name, a non-string before the row is looked at at all.
    (["RegExp"], PAIRS, None), (["Bogus", "on", "RegExp"], PAIRS, None), (["RegExp", 1], STRING, None),
    ([True, "on"], STRING, None), (["RegExp", None], STRING, None), (["RegExp", ["on"]], STRING, None),
    ([1], STRING, None), (["Bogus", "on"], PAIRS, OPTIONS.format("Bogus")),
    (["regexp", "on"], PAIRS, OPTIONS.format("regexp")),
    (["RegExp", "on", "Bogus", "off"], PAIRS, OPTIONS.format("Bogus")),
    (["RegExp", "ON"], PAIRS, VALUES.format("ON")), (["MatchCase", ""], PAIRS, VALUES.format("")),
    (["WholeWord", "yes", "Bogus", "on"], PAIRS, VALUES.format("yes")),  # The first fault is the one told.
])
def test_faulty_option_rows_are_refused_with_their_identifier_and_message(repository, row, fault, message):
    kinetics = repository.getTandrilObject("kinetics")
    for call in (lambda: repository.findBlocks("gain", row), lambda: repository.findBlocks("gain", kinetics, row)):
        with pytest.raises(tandril.Error) as info:
            call()
        assert info.value.identifier == fault[0]
        match = re.match(message or re.escape(fault[1]) + "$", str(info.value))
        assert match and set(match.groups()) in (set(), {"RegExp", "WholeWord", "MatchCase"}, {"on", "off"}), \
            str(info.value)


def test_empty_and_unknown_names_and_patterns_give_empty_results(repository):
    for name in ["", "/", "nosuchproduct/Gain", "\n", "ü" * 300]:
        obj = repository.getTandrilObject(name)
        assert not obj.isValid(), name
        assert repository.getChildrenIterator(obj).isEmpty() and repository.getDepthFirstIterator(obj).size() == 0
        assert repository.getIcon(obj) is None
        assert not repository.isProductUpToDate(name) and not repository.isProductUpToDate(obj, True)
        assert not repository.getProduct(name).isValid()
    missing = repository.getTandrilObject("kinetics/Continuous/Nothing")
    assert not missing.isValid() and repository.getChildrenIterator(missing).isEmpty()
    assert repository.findBlocks("(", ["RegExp", "on"]).isEmpty() and repository.findBlocks("[", []).size() == 0
    assert list(repository.findBlocks("gain", repository.getTandrilObject(""))) == []
    assert repository.findBlocks("").size() == repository.getDepthFirstIterator().size()


def test_readers_and_writers_on_no_store_or_one_they_cannot_make(tmp_path):
    for directory in ["", str(tmp_path / "missing"), str(tmp_path)]:
        reader = Repository.Reader.open(directory)
        assert not reader.exists() and reader.getProductsIterator().isEmpty()
        assert not reader.getTandrilObject("kinetics").isValid() and reader.findBlocks("gain").isEmpty()
    blocker = tmp_path / "file"
    blocker.write_text("not a directory")
    writer = Repository.Writer.open(str(blocker / "store"))
    writer.generateRepository()
    writer.destroyRepository()
    assert writer.getRepositoryReport().hasError() or writer.getRepositoryReport().hasWarning()
    assert blocker.read_text() == "not a directory"
    for host_path in (["ok", 3], [None], [["nested"]], [b"bytes"]):
        with pytest.raises(tandril.StringTypeExpected, match="^Expected a string argument.$"):
            Repository.Writer.open(str(tmp_path / "new"), host_path)
        assert not (tmp_path / "new").exists()


def test_unusable_directories_are_refused_at_the_start(tmp_path, root_dir):
    a_file = tmp_path / "a file"
    a_file.write_text("not a directory")
    locked = tmp_path / "locked"
    locked.mkdir(mode=0o500)
    cases = [
        (dict(root=str(tmp_path / "missing")), "the root directory '%s' does not exist" % (tmp_path / "missing")),
        (dict(root="   "), "root is empty; name a directory"),
        (dict(root=str(root_dir), prefdir=""), "prefdir is empty; name a directory"),
        (dict(root=str(root_dir), path=[str(root_dir), ""]), "a directory of path is empty; name a directory"),
        (dict(root=str(root_dir), prefdir=str(a_file)), "the preferences directory '%s' is a file" % a_file),
        (dict(root=str(root_dir), prefdir=str(a_file / "below")), "does not exist and can't be made"),
    ]
    if os.geteuid() != 0:  # root writes anywhere
        cases.append((dict(root=str(root_dir), prefdir=str(locked)), "'%s' can't be written" % locked))
    # Nothing is started by a refusal, and nothing written where the script runs; a refused list as the first
    # call, which starts the package, still has its message.
    result = run_python("""
        import os, tandril
        for arguments in %r:
            try:
                tandril.start(**arguments)
            except ValueError as error:
                print('refused:', error, tandril.is_started(), sorted(os.listdir('.')))
        try:
            tandril.Repository.Writer.open('store', ['ok', 3])
        except tandril.Error as error:
            print(error.identifier, error)
    """ % ([arguments for arguments, _ in cases],), cwd=str(tmp_path / "cwd"), NUMORA_ROOT=str(root_dir),
        NUMORA_PREFDIR=str(tmp_path / "prefs"))
    lines = result.stdout.splitlines()
    assert lines[len(cases):] == ["Tandril:Repository:StringTypeExpected Expected a string argument."], result.stderr
    for (arguments, message), line in zip(cases, lines):
        assert line.startswith("refused: ") and message in line and line.endswith(" False []"), (arguments, line)
