"""The package as Python tools see it: stubs that agree with the runtime and
pass mypy --strict on a script that uses the whole API, public names,
signatures, reprs, error classes, sequences, logical arguments, threads."""

import ast
import inspect
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import threading

import pytest

import tandril
from tandril import Repository, StandaloneBrowser

HERE = pathlib.Path(__file__).parent
PACKAGE = pathlib.Path(tandril.__file__).parent
SAMPLE = HERE / "typed_sample.py"


def functions(body):
    found = {}
    for node in body:
        if isinstance(node, ast.FunctionDef):
            found.setdefault(node.name, []).append(node)
    return found


def stub_classes(module_file):
    """Class name to {method: its overloads}, and the module's functions, of a stub."""
    tree = ast.parse(module_file.read_text())
    classes = {node.name: functions(node.body) for node in tree.body
               if isinstance(node, ast.ClassDef) and not node.name.startswith("_")}
    return classes, functions(tree.body)


def runtime_overloads(function):
    """How many forms a bound function has, by pybind11's numbered docstring."""
    doc = inspect.getdoc(function) or ""
    return max(1, len(re.findall(r"^\d+\. ", doc, re.M)))


def stub_parameters(node):
    arguments = node.args
    names = [a.arg for a in arguments.posonlyargs + arguments.args + arguments.kwonlyargs]
    return [n for n in names if n not in ("self", "cls")]


def runtime_parameters(function):
    return [p.name for p in inspect.signature(function).parameters.values()
            if p.name != "self" and p.kind not in (p.VAR_POSITIONAL, p.VAR_KEYWORD)]


PUBLIC_DUNDERS = {"__init__", "__iter__", "__next__", "__bytes__", "__copy__", "__deepcopy__"}


def public_members(cls):
    return {name for name, value in vars(cls).items()
            if (callable(value) or isinstance(value, (staticmethod, property)))
            and type(value).__name__ != "wrapper_descriptor" and not isinstance(value, type)
            if not name.startswith("_") or name in PUBLIC_DUNDERS}


@pytest.mark.parametrize("module, stub", [(tandril, "__init__.pyi"), (Repository, "Repository.pyi")])
def test_the_stubs_match_the_runtime(module, stub):
    classes, functions = stub_classes(PACKAGE / stub)
    runtime_classes = {name for name, value in vars(module).items()
                       if isinstance(value, type) and not name.startswith("_")}
    assert runtime_classes == set(classes)
    for name, methods in classes.items():
        cls = getattr(module, name)
        if issubclass(cls, BaseException) or issubclass(cls, str):
            continue
        documented = {m for m in methods if not m.startswith("_") or m in PUBLIC_DUNDERS}
        assert public_members(cls) == documented, name
        for method, nodes in methods.items():
            value = vars(cls).get(method)
            if value is None or isinstance(value, property) or method.startswith("__") and method != "__init__":
                continue
            function = getattr(cls, method)
            assert runtime_overloads(function) == len(nodes), (name, method)
            if len(nodes) == 1 and method != "__init__":
                assert runtime_parameters(function) == stub_parameters(nodes[0]), (name, method)
    for name, nodes in functions.items():
        function = getattr(module, name)
        if len(nodes) == 1:
            assert runtime_parameters(function) == stub_parameters(nodes[0]), name
    if module is tandril:
        assert set(tandril.__all__) <= set(classes) | set(functions) | {"Repository"}


def test_the_typed_sample_passes_mypy_strict_and_runs(root_dir, tmp_path):
    mypy = shutil.which("mypy")
    assert mypy, "mypy is missing: tools/install-packages.sh installs it"
    checked = subprocess.run(
        [mypy, "--strict", "--no-incremental", "--cache-dir", str(tmp_path / "cache"),
         "--python-executable", sys.executable, str(SAMPLE)],
        capture_output=True, text=True, timeout=600, env=dict(os.environ, MYPYPATH=str(PACKAGE.parent)))
    assert checked.returncode == 0, checked.stdout + checked.stderr

    # A session of its own: the sample starts the package itself.
    prefs = tmp_path / "prefs"
    prefs.mkdir()
    model = tmp_path / "model.json"
    ran = subprocess.run([sys.executable, str(SAMPLE), str(root_dir), str(prefs), str(model)],
                         capture_output=True, text=True, timeout=600)
    assert ran.returncode == 0 and ran.stdout.endswith("done\n"), ran.stdout + ran.stderr
    assert [block["name"] for block in json.loads(model.read_text())["blocks"]] == ["Integrator", "Integrator1"]


def test_names_bases_signatures_and_reprs_are_the_packages(repository, root_dir):
    import tandril.Repository as imported
    from tandril.Repository import Block

    assert imported is Repository and Block is Repository.Block
    assert [cls.__name__ for cls in Repository.Repository.__bases__] == ["Writer", "Reader"]
    assert all(Repository.Handle in getattr(Repository, kind).__bases__
               for kind in ("Block", "SubSystem", "Library", "LibraryRef", "Palette", "TandrilObject"))
    for cls in [Repository.Reader, Repository.Block, Repository.TandrilObjectIterator]:
        assert cls.__module__ == "tandril.Repository"
    for cls in [tandril.Error, tandril.Busy, StandaloneBrowser, tandril.LayoutType]:
        assert cls.__module__ == "tandril"
    # Every bound function has a signature, and no docstring names the extension.
    scopes = [tandril, Repository] + [v for m in (tandril, Repository) for v in vars(m).values()
                                      if isinstance(v, type) and v.__module__.startswith("tandril")]
    for scope in scopes:
        for name, value in vars(scope).items():
            function = getattr(scope, name)
            if callable(function) and not isinstance(value, type) and type(function).__name__ != "function":
                inspect.signature(function)
                assert "_tandril" not in (function.__doc__ or ""), name
    assert str(inspect.signature(repository.getTandrilObject)) == "(path)"
    with pytest.raises(RuntimeError, match="already started"):
        tandril.start(root=str(root_dir))
    # A walk says where it stands.
    walk = repository.getChildrenIterator(repository.getTandrilObject("kinetics/Continuous"))
    assert repr(walk) == "<tandril.Repository.TandrilObjectIterator at 'kinetics/Continuous/Integrator'>"
    for _ in walk:
        pass
    assert repr(walk) == "<tandril.Repository.TandrilObjectIterator (past the end)>"


def test_each_identifier_has_an_error_class_of_its_own(repository):
    classes = [tandril.StringTypeExpected, tandril.PairValueMismatch, tandril.BadArgument, tandril.Destroyed,
               tandril.Busy, tandril.WrongThread, tandril.SessionEnded, tandril.ValueTooDeep, tandril.CallsTooDeep,
               tandril.HostCallFailed]
    identifiers = [cls.identifier for cls in classes]
    assert len(set(identifiers)) == len(classes) and all(i.startswith("Tandril:") for i in identifiers)
    assert all(issubclass(cls, tandril.Error) and cls is not tandril.Error for cls in classes)
    for cls, call in [(tandril.StringTypeExpected, lambda: repository.findBlocks("gain", ["RegExp", 1])),
                      (tandril.PairValueMismatch, lambda: repository.findBlocks("gain", ["Fuzzy", "on"])),
                      (tandril.BadArgument, lambda: StandaloneBrowser().setPosition([1, 2, 3]))]:
        with pytest.raises(cls) as raised:
            call()
        assert raised.value.identifier == cls.identifier
    # A host's own identifier is kept on the one class of failed host calls.
    with pytest.raises(tandril.HostCallFailed) as host:
        tandril.call_host("no_such_function_anywhere", 0)
    assert host.value.identifier == "Tandril:Host:UndefinedFunction"


def test_calls_from_another_thread_are_refused_before_touching_anything(repository):
    browser = StandaloneBrowser()
    title = browser.getTitle()
    report = Repository.RepositoryReport.create()
    calls = [lambda: browser.setTitle("from a thread"), StandaloneBrowser, browser.destroyInstance,
             Repository.Repository.open, repository.generateRepository,
             lambda: tandril.call_host("tdprivate", 1, "lb_getLibraryData", report, "kinetics"),
             # Reading handles is no window work.
             lambda: repository.getTandrilObject("kinetics").DisplayName]
    outcomes = []

    def run(call):
        try:
            outcomes.append(call())
        except tandril.Error as error:
            outcomes.append(type(error))

    for call in calls:
        thread = threading.Thread(target=run, args=(call,))
        thread.start()
        thread.join()
    assert outcomes == [tandril.WrongThread] * 6 + ["Kinetics"]
    assert browser.getTitle() == title


def test_any_sequence_serves_as_a_list_and_logical_arguments_take_bools_only(repository, tmp_path):
    kinetics = repository.getTandrilObject("kinetics")
    as_list = [o.Path for o in repository.findBlocks("Gea", kinetics, ["WholeWord", "on"])]
    assert as_list == [o.Path for o in repository.findBlocks("Gea", kinetics, ("WholeWord", "on"))] != []
    with pytest.raises(TypeError, match="options must be a list, tuple or other sequence, not str"):
        repository.findBlocks("gain", "RegExp")
    writer = Repository.Writer.open(str(tmp_path / "store"), (tandril.root() + "/toolbox/kinetics",))
    assert not writer.getRepositoryReport().hasError()
    tandril.register_host_function("echo", lambda nargout, *inputs: tuple(inputs))
    try:
        assert tandril.call_host("echo", 1, range(3)) == [[0.0, 1.0, 2.0]]
    finally:
        tandril.register_host_function("echo", None)

    browser = StandaloneBrowser()
    for flag in (1, 0, None, "yes"):
        for call in (browser.showSearchResults, browser.showBlockDescription,
                     repository.getRepositoryReport().logToConsoleInteractively,
                     lambda value: repository.isProductUpToDate(kinetics, value)):
            with pytest.raises(TypeError):
                call(flag)
    assert repository.isProductUpToDate(kinetics, True)
