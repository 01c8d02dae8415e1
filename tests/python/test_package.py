"""The package as a script meets it: its classes, their texts and bases, the start."""

import pytest

import tandril
from tandril import Repository

DESCRIPTIONS = {
    "Repository": "Library Browser Repository",
    "Reader": "Library Browser Repository Reader",
    "Writer": "Library Browser Repository Writer",
    "RepositoryReport": "Library Browser Repository Report",
    "Util": "Repository utility functions",
    "TandrilObjectIterator": "Repository iterator.\n\nRepository block data type.",
    "Handle": "Repository handle type.",
    "Block": "Repository block data type.",
    "SubSystem": "Repository subsystem data type.",
    "Library": "Repository library data type.",
    "LibraryRef": "Repository library reference data type.",
    "Palette": "Repository palette data type.",
    "TandrilObject": "Repository abstract data type.",
}


@pytest.mark.parametrize("name, description", DESCRIPTIONS.items())
def test_every_class_carries_its_description(name, description):
    assert getattr(Repository, name).__doc__ == description


@pytest.mark.parametrize(
    "name, bases",
    [
        ("Repository", ("Writer", "Reader")),
        ("Block", ("Handle",)),
        ("SubSystem", ("Handle",)),
        ("Library", ("Handle",)),
        ("LibraryRef", ("Handle",)),
        ("Palette", ("Handle",)),
        ("TandrilObject", ("Handle",)),
    ],
)
def test_bases_are_the_packages(name, bases):
    cls = getattr(Repository, name)
    assert tuple(b.__name__ for b in cls.__bases__) == bases


def test_the_submodule_imports_by_name():
    import tandril.Repository as imported
    from tandril.Repository import Block

    assert imported is Repository
    assert Block is Repository.Block
    assert Repository.Block.__module__ == "tandril.Repository"


def test_a_second_start_is_refused_with_a_reason(root_dir):
    assert tandril.is_started()
    with pytest.raises(RuntimeError, match="already started"):
        tandril.start(root=str(root_dir))


def test_the_session_uses_the_given_directories(root_dir, prefs_dir):
    assert tandril.root() == str(root_dir)
    assert tandril.preferences_directory() == str(prefs_dir)


def test_handles_cannot_be_made_from_nothing():
    with pytest.raises(TypeError):
        Repository.Handle()
    with pytest.raises(TypeError):
        Repository.Block()


def test_the_error_class_carries_an_identifier():
    assert issubclass(tandril.Error, Exception)
    assert tandril.Error.identifier == ""
