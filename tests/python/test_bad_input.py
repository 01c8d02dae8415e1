"""Bad input at the boundary: a clear Python exception or the documented empty result."""

import os
import shutil
import subprocess
import sys

import pytest

from tandril import Repository

BLOCK = "kinetics/Continuous/Integrator"


@pytest.mark.parametrize(
    "call",
    [
        lambda r, o: r.getTandrilObject(5),
        lambda r, o: r.getChildrenIterator("kinetics"),
        lambda r, o: r.getDepthFirstIterator(None),
        lambda r, o: r.getIcon(None),
        lambda r, o: r.isProductUpToDate(None),
        # A logical argument takes True or False only, as the window's do.
        lambda r, o: r.isProductUpToDate(o, 1),
        lambda r, o: r.findBlocks(None),
        lambda r, o: r.findBlocks("gain", o, {"RegExp": "on"}),
        lambda r, o: r.generateProduct(o, None),
        lambda r, o: r.generateProduct(o, 2),
        lambda r, o: r.destroyProduct("kinetics"),
        lambda r, o: r.getRepositoryReport().log(None),
        lambda r, o: Repository.Util.computeCheckSum("file", None),
        lambda r, o: Repository.Reader.open(None),
        lambda r, o: Repository.Writer.open("dir", "not a list"),
        lambda r, o: Repository.TandrilObject("kinetics"),
        lambda r, o: Repository.Handle(),
        lambda r, o: Repository.Block(None),
        lambda r, o: o.eq(None),
    ],
)
def test_wrong_types_raise_type_error(repository, call):
    with pytest.raises(TypeError):
        call(repository, repository.getTandrilObject(BLOCK))


def test_empty_and_unknown_names_and_patterns_give_empty_results(repository):
    for name in ["", "/", "nosuchproduct/Gain", "\n", "ü" * 300]:
        obj = repository.getTandrilObject(name)
        assert not obj.isValid(), name
        assert repository.getChildrenIterator(obj).isEmpty()
        assert repository.getDepthFirstIterator(obj).size() == 0
        assert repository.getIcon(obj) is None
        assert not repository.isProductUpToDate(name) and not repository.isProductUpToDate(obj, True)
        assert not repository.getProduct(name).isValid()
    missing = repository.getTandrilObject("kinetics/Continuous/Nothing")
    assert not missing.isValid() and repository.getChildrenIterator(missing).isEmpty()
    assert repository.findBlocks("(", ["RegExp", "on"]).isEmpty()
    assert repository.findBlocks("[", []).size() == 0
    assert list(repository.findBlocks("gain", repository.getTandrilObject(""))) == []
    assert repository.findBlocks("").size() == repository.getDepthFirstIterator().size()


def test_a_reader_on_no_store_or_on_one_removed_under_it(tmp_path, shipped_store):
    for directory in ["", str(tmp_path / "missing"), str(tmp_path)]:
        reader = Repository.Reader.open(directory)
        assert not reader.exists() and reader.getProductsIterator().isEmpty()
        assert not reader.getTandrilObject("kinetics").isValid() and reader.findBlocks("gain").isEmpty()
    store = tmp_path / "store"
    shutil.copytree(shipped_store, store)
    reader = Repository.Reader.open(str(store))
    assert reader.getTandrilObject("kinetics").isValid()
    walk = reader.getDepthFirstIterator()
    shutil.rmtree(store)
    # What was never loaded is gone: the walk and the lookups find nothing of it.
    assert "switchyard/Routing/Mux" not in [o.Path for o in walk]
    assert reader.getChildrenIterator(reader.getTandrilObject("switchyard")).isEmpty()
    assert not reader.getTandrilObject("switchyard/Routing/Mux").isValid()


def test_a_writer_on_a_directory_it_cannot_make(tmp_path):
    blocker = tmp_path / "file"
    blocker.write_text("not a directory")
    writer = Repository.Writer.open(str(blocker / "store"))
    writer.generateRepository()
    writer.destroyRepository()
    report = writer.getRepositoryReport()
    assert report.hasError() or report.hasWarning()
    assert blocker.read_text() == "not a directory"


def run_python(code, cwd=None, **environment):
    if cwd:
        os.makedirs(cwd, exist_ok=True)
    return subprocess.run([sys.executable, "-c", code], env=dict(os.environ, **environment), capture_output=True,
                          text=True, timeout=120, cwd=cwd)


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
    for arguments, message in cases:
        result = run_python(
            "import os, tandril\n"
            "try:\n"
            "    tandril.start(**%r)\n"
            "except ValueError as error:\n"
            "    print('refused:', error, tandril.is_started(), sorted(os.listdir('.')))\n" % (arguments,),
            cwd=str(tmp_path / "cwd"))
        assert result.returncode == 0, result.stderr
        # Nothing was started, and nothing written where the script runs.
        assert result.stdout.startswith("refused: "), (arguments, result.stdout)
        assert message in result.stdout and result.stdout.endswith(" False []\n"), (arguments, result.stdout)


def test_a_refused_list_as_the_first_call_still_has_its_message(tmp_path, root_dir):
    result = run_python(
        "import tandril\n"
        "from tandril import Repository\n"
        "try:\n"
        "    Repository.Writer.open('store', ['ok', 3])\n"
        "except tandril.Error as error:\n"
        "    print(error.identifier, error)\n",
        NUMORA_ROOT=str(root_dir), NUMORA_PREFDIR=str(tmp_path / "prefs"))
    assert result.returncode == 0, result.stderr
    assert result.stdout == "Tandril:Repository:StringTypeExpected Expected a string argument.\n"
