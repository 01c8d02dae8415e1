"""The package as Python tools see it: stubs that agree with the runtime and mypy --strict, signatures, threads."""

import ast
import concurrent.futures
import inspect
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

import tandril
from tandril import Repository, StandaloneBrowser

PACKAGE = pathlib.Path(tandril.__file__).parent
SAMPLE = pathlib.Path(__file__).parent / "typed_sample.py"


PUBLIC_DUNDERS = {"__init__", "__iter__", "__next__", "__bytes__", "__copy__", "__deepcopy__"}


def stub_functions(body):
    """Name to the parameter names of each of its overloads, of the functions of a stub's body."""
    found = {}
    for node in (n for n in body if isinstance(n, ast.FunctionDef)):
        names = [a.arg for a in node.args.posonlyargs + node.args.args + node.args.kwonlyargs]
        found.setdefault(node.name, []).append([n for n in names if n not in ("self", "cls")])
    return found


def runtime_form(function, forms):
    """How the bound function compares with its stub's forms: pybind11 numbers the forms in the docstring."""
    overloads = max(1, len(re.findall(r"^\d+\. ", inspect.getdoc(function) or "", re.M)))
    parameters = [p.name for p in inspect.signature(function).parameters.values()
                  if p.name != "self" and p.kind not in (p.VAR_POSITIONAL, p.VAR_KEYWORD)]
    return overloads, parameters if len(forms) == 1 else forms[0]


@pytest.mark.parametrize("module, stub", [(tandril, "__init__.pyi"), (Repository, "Repository.pyi")])
def test_the_stubs_match_the_runtime(module, stub):
    tree = ast.parse((PACKAGE / stub).read_text())
    classes = {node.name: stub_functions(node.body) for node in tree.body
               if isinstance(node, ast.ClassDef) and not node.name.startswith("_")}
    assert {name for name, value in vars(module).items() if isinstance(value, type) and name[0] != "_"} == set(classes)
    for name, methods in classes.items():
        cls = getattr(module, name)
        if issubclass(cls, (BaseException, str)):
            continue
        public = {m for m, value in vars(cls).items()
                  if (callable(value) or isinstance(value, (staticmethod, property))) and not isinstance(value, type)
                  and type(value).__name__ != "wrapper_descriptor" and (not m.startswith("_") or m in PUBLIC_DUNDERS)}
        assert public == {m for m in methods if not m.startswith("_") or m in PUBLIC_DUNDERS}, name
        for method, forms in methods.items():
            value = vars(cls).get(method)
            if value is not None and not isinstance(value, property) and not method.startswith("__"):
                assert runtime_form(getattr(cls, method), forms) == (len(forms), forms[0]), (name, method)
            elif method == "__init__" and value is not None:
                assert runtime_form(getattr(cls, method), forms)[0] == len(forms), name
    for name, forms in stub_functions(tree.body).items():
        assert runtime_form(getattr(module, name), forms) == (len(forms), forms[0]), name
    if module is tandril:
        assert set(tandril.__all__) <= set(classes) | set(stub_functions(tree.body)) | {"Repository"}


def test_the_typed_sample_passes_mypy_strict_and_runs(root_dir, tmp_path):
    mypy = shutil.which("mypy")
    assert mypy, "mypy is missing: tools/install-packages.sh installs it"
    checked = subprocess.run(
        [mypy, "--strict", "--no-incremental", "--cache-dir", str(tmp_path / "cache"),
         "--python-executable", sys.executable, str(SAMPLE)],
        capture_output=True, text=True, timeout=600, env=dict(os.environ, MYPYPATH=str(PACKAGE.parent)))
    assert checked.returncode == 0, checked.stdout + checked.stderr
    (tmp_path / "prefs").mkdir()  # A session of its own: the sample starts the package itself.
    model = tmp_path / "model.json"
    ran = subprocess.run([sys.executable, str(SAMPLE), str(root_dir), str(tmp_path / "prefs"), str(model)],
                         capture_output=True, text=True, timeout=600)
    assert ran.returncode == 0 and ran.stdout.endswith("done\n"), ran.stdout + ran.stderr
    assert [block["name"] for block in json.loads(model.read_text())["blocks"]] == ["Integrator", "Integrator1"]


def test_names_bases_signatures_and_reprs_are_the_packages(repository, root_dir):
    assert (Repository.Block.__module__, StandaloneBrowser.__module__) == ("tandril.Repository", "tandril")
    # Every bound function has a signature, and no docstring names the extension.
    for scope in [tandril, Repository] + [v for m in (tandril, Repository) for v in vars(m).values()
                                          if isinstance(v, type) and v.__module__.startswith("tandril")]:
        for name, value in vars(scope).items():
            function = getattr(scope, name)
            if callable(function) and not isinstance(value, type) and type(function).__name__ != "function":
                inspect.signature(function)
                assert "_tandril" not in (function.__doc__ or ""), name
    with pytest.raises(RuntimeError, match="already started"):
        tandril.start(root=str(root_dir))
    # A walk says where it stands.
    walk = repository.getChildrenIterator(repository.getTandrilObject("kinetics/Continuous"))
    assert repr(walk) == "<tandril.Repository.TandrilObjectIterator at 'kinetics/Continuous/Integrator'>"
    list(walk)
    assert repr(walk) == "<tandril.Repository.TandrilObjectIterator (past the end)>"


def test_calls_from_another_thread_are_refused_before_touching_anything(repository):
    browser = StandaloneBrowser()
    title = browser.getTitle()
    report = Repository.RepositoryReport.create()

    def run(call):
        try:
            return call()
        except tandril.Error as error:
            return type(error)

    with concurrent.futures.ThreadPoolExecutor(1) as thread:
        outcomes = [thread.submit(run, call).result() for call in [
            lambda: browser.setTitle("from a thread"), StandaloneBrowser, browser.destroyInstance,
            Repository.Repository.open, repository.generateRepository,
            lambda: tandril.call_host("tdprivate", 1, "lb_getLibraryData", report, "kinetics"),
            lambda: repository.getTandrilObject("kinetics").DisplayName]]  # reading handles is no window work
    assert outcomes == [tandril.WrongThread] * 6 + ["Kinetics"] and browser.getTitle() == title
