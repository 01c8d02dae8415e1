"""The repository from scripts, as far as the binding goes: handles and iterators as Python values (what they mean is
HandleTest's), option rows, the ranked search, mode words, the report; bad input at the boundary: a clear Python
exception, the documented empty result, or a refused start."""

import copy
import gc
import os
import re

import pytest

import tandril
from conftest import paths, run_python, walk
from tandril import Repository, StandaloneBrowser

BLOCK, SUBSYSTEM, PRODUCT = "kinetics/Continuous/Integrator", "kinetics/Mechanical/Rotational", "kinetics"
LIBRARY_REF, PALETTE, MISSING = "kinetics/Test Signals", "signal_workbench", "kinetics/No Such Block"
KINDS = ["Block", "SubSystem", "Library", "LibraryRef", "Palette"]
ROTATIONAL = ["Inertia", "Rotary Spring", "Rotary Damper", "Gear Trains"]
PID = "kinetics/Continuous/PID Controller"


@pytest.mark.parametrize("path, kind, true_tests", [
    (BLOCK, "Block", {"Block"}), (SUBSYSTEM, "SubSystem", {"Block", "SubSystem"}),
    (PRODUCT, "Library", {"Block", "SubSystem", "Library"}),
    (LIBRARY_REF, "LibraryRef", {"Block", "SubSystem", "LibraryRef"}),
    (PALETTE, "Palette", {"Block", "SubSystem", "Library", "Palette"}),
])
def test_kind_tests_conversions_and_texts_follow_the_node_chain(repository, path, kind, true_tests):
    obj = repository.getTandrilObject(path)
    assert obj.isValid() and obj.Type == kind
    for test in KINDS:
        converted = getattr(obj, "to" + test)()
        # A failed conversion is a null handle of the target class, equal to
        assert type(converted) is getattr(Repository, test)  # every other null handle and never valid.
        assert [getattr(obj, "is" + test)(), converted.isValid(), converted == obj] == [test in true_tests] * 3, test
        for name in ("Name", "Path", "DisplayName", "Description", "Type"):
            assert getattr(converted, name) == getattr(Repository.Handle, name).__get__(converted), (test, name)


def test_attributes_of_a_subsystem_a_reference_a_null_and_a_missing_handle(repository):
    obj = repository.getTandrilObject(SUBSYSTEM)
    assert (obj.Name, obj.DisplayName, obj.Path, obj.ProductName, obj.Description, obj.IsEmpty, obj.IsFlat,
            obj.IsProduct) == ("Rotational", "Rotational", SUBSYSTEM, "kinetics", "Parts that turn about an axis.",
                               False, False, False)
    assert repository.getTandrilObject(PRODUCT).IsProduct
    assert repository.getTandrilObject(LIBRARY_REF).toLibraryRef().LibraryRefPath == "wavecraft/Sources"
    block = repository.getTandrilObject(BLOCK)
    null = block.toSubSystem()
    assert (block.LibraryRefPath, null.Name, null.Path, null.Type, null.IsFlat) == ("", "", "", "InvalidBlock", True)
    assert block.toLibrary().eq(null) and hash(block.toLibrary()) == hash(null) and hash(block) == hash(block.toBlock())
    assert copy.copy(block) == block and copy.deepcopy(block).Path == BLOCK
    missing = repository.getTandrilObject(MISSING)
    assert missing.Name == "InvalidBlock" and missing == repository.getTandrilObject(MISSING) != block
    assert missing.Icon is None and null.Icon is None
    assert bytes(block.Icon) == block.Icon.svg == repository.getIcon(block).svg and b"<svg" in block.Icon.svg
    assert repository.getTandrilObject("switchyard/Logic/Zähler").Name == "Zähler"


def test_a_python_loop_and_the_scripted_walk_agree_and_size_leaves_the_position(repository, shipped_store):
    parent = repository.getTandrilObject(SUBSYSTEM)
    assert [o.Name for o in repository.getChildrenIterator(parent)] == ROTATIONAL
    assert [o.Name for o in walk(repository.getChildrenIterator(parent))] == ROTATIONAL
    below = [o.Name for o in walk(repository.getDepthFirstIterator(parent))]
    assert below == ROTATIONAL + ["Spur Gear", "Planetary Gear", "Worm Gear"]
    # A loop goes on from where the walk stands and moves it; copies walk on by themselves.
    it = repository.getChildrenIterator(parent)
    it.next()
    twin = copy.copy(it)
    it.next()
    assert it.size() == 4.0 and isinstance(it.size(), float)
    assert (twin.current().Name, copy.deepcopy(it).current().Name) == ("Rotary Spring", "Rotary Damper")
    assert [o.Name for o in it] == ["Rotary Damper", "Gear Trains"]
    assert not it.isValidIterator() and list(it) == []

    assert repository.getProduct("kinetics/Continuous").Path == "kinetics"
    it = Repository.Reader.open(str(shipped_store)).getDepthFirstIterator()  # An iterator keeps its reader.
    twin = copy.copy(Repository.Reader.open(str(shipped_store)).getProductsIterator())
    gc.collect()
    assert "kinetics/Mechanical/Rotational/Gear Trains/Worm Gear" in paths(it) and twin.size() > 0


@pytest.mark.parametrize("pattern, row, expected", [
    ("gain", [], 4), ("GAIN", ["MatchCase", "off"], 4), ("GAIN", ["MatchCase", "on"], 0),
    ("Gain", ["MatchCase", "on"], 4), ("G.in", [], 0), ("G.in", ("RegExp", "on"), 4),
    # The last pair of a name wins.
    ("G.in", ["RegExp", "on", "RegExp", "off"], 0), ("G.in", ["RegExp", "off", "RegExp", "on"], 4),
    ("Gai", [], 4), ("Gai", ["WholeWord", "on"], 0), ("gain", ["WholeWord", "on"], 4),
    ("Gai", ["WholeWord", "on", "RegExp", "on", "WholeWord", "off"], 4),
])
def test_rows_set_the_flags_of_a_search_over_the_repository(repository, pattern, row, expected):
    assert repository.findBlocks(pattern, row).size() == expected


def test_hits_carry_their_block_runs_and_boosts(repository):
    ranker = Repository.BlockRanker(repository)
    first = ranker.rank("controller pid")[0]
    assert (first.block.Path, first.spans) == (PID, [(0, 3), (4, 10)])
    hits = ranker.rank("wave", limit=0)
    assert len(hits) == ranker.count("wave") > 3
    assert paths(h.block for h in ranker.rank("wave", limit=2)) == paths(h.block for h in hits[:2])
    last = hits[-1].block.Path
    listed = ranker.rank("", favourites={last}, recents=[PID, "no/such/block"])
    assert [(h.block.Path, h.favourite, h.recent) for h in listed] == [(last, True, False), (PID, False, True)]


def test_mode_words_of_the_generating_verbs(tmp_path, root_dir):
    writer = Repository.Writer.open(str(tmp_path / "store"), [str(root_dir / "toolbox" / "arithmetica")])
    writer.generateRepository()
    reader = Repository.Reader.open(str(tmp_path / "store"))
    report = writer.getRepositoryReport()
    for verb, word, up_to_date in [("generateProduct", "Minimal", True), ("generateProduct", "IgnoreTimestamp", True),
                                   ("generateProduct", "regenerate", True), ("generateProduct", "", True),
                                   ("generateProduct", "Regenerate", False), ("generateRepository", "regenerate", True),
                                   ("generateRepository", "Regenerate", False)]:  # Any other word is mode 0.
        before = len(report.getLog())
        getattr(writer, verb)(*((reader.getProduct("arithmetica"), word) if verb == "generateProduct" else (word,)))
        lines = report.getLog()[before:]
        assert any("Processing product Arithmetica" in line for line in lines), (verb, word, lines)
        assert any("Product is up-to-date!" in line for line in lines) == up_to_date, (verb, word, lines)
        assert not report.hasError() and reader.isProductUpToDate(reader.getProduct("arithmetica")), lines


def test_the_report_keeps_what_it_is_told_and_a_missing_file_has_no_checksum(capfd, tmp_path):
    report = Repository.RepositoryReport.create()
    report.log("first line")
    report.logWarning("careful")
    report.logWarning("Test:Warning", "with an id")
    report.logError("Test:Error", "it broke")
    report.logError("no id")
    assert report.getWarnings() == [("InternalWarning", "careful"), ("Test:Warning", "with an id")]
    assert report.getErrors() == [("Test:Error", "it broke"), ("InternalError", "no id")]
    assert "Action: first line\n" in "".join(report.getLog())
    for echo, line in ((True, "echoed"), (False, "quiet")):
        report.logToConsoleInteractively(echo)
        report.log(line)
        assert (line in capfd.readouterr().out) == echo
    assert Repository.Util.computeCheckSum(str(tmp_path / "missing"), report) == "" and len(report.getErrors()) == 3


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
