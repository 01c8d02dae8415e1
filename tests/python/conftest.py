"""Fixtures of the package's suites. A process starts the package once, so each test file runs in a process of its
own (ctest does that) on a fresh copy of the example root with its shipped store and an empty preferences directory."""

import configparser
import os
import shutil
import subprocess
import sys
import textwrap

import pytest

import tandril
from tandril import Repository


@pytest.fixture(scope="session")
def root_dir(tmp_path_factory):
    built = os.environ.get("TDLB_BUILT_ROOT")
    if not built or not os.path.isdir(built):
        pytest.exit("TDLB_BUILT_ROOT must name the build's copy of the example root (build/examples/root)", 2)
    root = tmp_path_factory.mktemp("host") / "root"
    shutil.copytree(built, root)
    return root


@pytest.fixture(scope="session")
def shipped_store(root_dir):
    return root_dir / "toolbox" / "tandril" / "tandril" / "private" / "td_library_browser_repos"


@pytest.fixture(scope="session")
def prefs_dir(tmp_path_factory):
    return tmp_path_factory.mktemp("prefs")


@pytest.fixture(scope="session", autouse=True)
def session(root_dir, prefs_dir):
    tandril.start(root=str(root_dir), prefdir=str(prefs_dir))


@pytest.fixture(scope="session")
def repository(session):
    return Repository.Repository.open()


def calls_with(name, function, call):
    """call() with function registered as the host function name, then without it."""
    tandril.register_host_function(name, function)
    try:
        return call()
    finally:
        tandril.register_host_function(name, None)


def run_python(script, cwd=None, **environment):
    """A script in a Python process of its own, off screen; its CompletedProcess."""
    if cwd:
        os.makedirs(cwd, exist_ok=True)
    return subprocess.run([sys.executable, "-c", textwrap.dedent(script)], capture_output=True, text=True,
                          timeout=120, cwd=cwd, env=dict(os.environ, QT_QPA_PLATFORM="offscreen", **environment))


def stored_layout(prefs_dir):
    parser = configparser.ConfigParser()
    parser.read(prefs_dir / "LibraryBrowser.ini")
    return parser["LibraryBrowser"]["LBLayout"]


def walk(iterator):
    """The objects of an iterator, by its own current/next, from where it stands."""
    objects = []
    while iterator.isValidIterator():
        objects.append(iterator.current())
        iterator.next()
    return objects


def paths(objects):
    return [o.Path for o in objects]
