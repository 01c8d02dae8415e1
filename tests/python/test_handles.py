"""Handles as Python values: attributes, kinds, conversions, comparison and hashing.
What the handles mean is HandleTest's; these check what the binding makes of them."""

import copy

import pytest

from tandril import Repository

BLOCK = "kinetics/Continuous/Integrator"
SUBSYSTEM = "kinetics/Mechanical/Rotational"
PRODUCT = "kinetics"
LIBRARY_REF = "kinetics/Test Signals"
PALETTE = "signal_workbench"
MISSING = "kinetics/No Such Block"

KINDS = ["Block", "SubSystem", "Library", "LibraryRef", "Palette"]


@pytest.mark.parametrize(
    "path, kind, true_tests",
    [
        (BLOCK, "Block", {"Block"}),
        (SUBSYSTEM, "SubSystem", {"Block", "SubSystem"}),
        (PRODUCT, "Library", {"Block", "SubSystem", "Library"}),
        (LIBRARY_REF, "LibraryRef", {"Block", "SubSystem", "LibraryRef"}),
        (PALETTE, "Palette", {"Block", "SubSystem", "Library", "Palette"}),
    ],
)
def test_kind_tests_conversions_and_texts_follow_the_node_chain(repository, path, kind, true_tests):
    obj = repository.getTandrilObject(path)
    assert obj.isValid() and obj.Type == kind
    for test in KINDS:
        assert getattr(obj, "is" + test)() == (test in true_tests), test
        converted = getattr(obj, "to" + test)()
        assert type(converted) is getattr(Repository, test)
        # A failed conversion is a null handle of the target class, equal to
        # every other null handle and never valid.
        assert converted.isValid() == (test in true_tests), test
        assert (converted == obj) == (test in true_tests), test
        for name in ("Name", "Path", "DisplayName", "Description", "Type"):
            assert getattr(converted, name) == getattr(Repository.Handle, name).__get__(converted), (test, name)


def test_attributes_of_a_subsystem_a_reference_a_null_and_a_missing_handle(repository):
    obj = repository.getTandrilObject(SUBSYSTEM)
    assert (obj.Name, obj.DisplayName, obj.Path, obj.ProductName, obj.Description) == (
        "Rotational", "Rotational", SUBSYSTEM, "kinetics", "Parts that turn about an axis.")
    assert (obj.IsEmpty, obj.IsFlat, obj.IsProduct) == (False, False, False)
    assert repository.getTandrilObject(PRODUCT).IsProduct
    assert repository.getTandrilObject(LIBRARY_REF).toLibraryRef().LibraryRefPath == "wavecraft/Sources"
    block = repository.getTandrilObject(BLOCK)
    assert block.LibraryRefPath == ""
    null = block.toSubSystem()
    for handle in (block, null):
        assert handle.IsEmpty and handle.IsFlat and not handle.IsProduct
    assert (null.Name, null.Path, null.Type) == ("", "", "InvalidBlock")
    assert block.toLibrary().eq(null) and hash(block.toLibrary()) == hash(null)
    missing = repository.getTandrilObject(MISSING)
    assert missing.Name == "InvalidBlock" and missing == repository.getTandrilObject(MISSING) != block
    assert missing.Icon is None and null.Icon is None
    assert bytes(block.Icon) == block.Icon.svg == repository.getIcon(block).svg
    assert b"<svg" in block.Icon.svg
    assert repository.getTandrilObject("switchyard/Logic/Zähler").Name == "Zähler"
    for name in ("Name", "Path", "DisplayName", "Type"):
        assert getattr(Repository.TandrilObject, name).__doc__ == getattr(Repository.Handle, name).__doc__
        with pytest.raises(AttributeError):
            setattr(block, name, "x")


def test_comparison_and_hashing_across_the_classes(repository):
    handles = [repository.getTandrilObject(p) for p in (BLOCK, SUBSYSTEM, PRODUCT, LIBRARY_REF, PALETTE)]
    for a in handles:
        for b in handles:
            assert (a.eq(b), a.ne(b), a.lt(b), a.gt(b), a.le(b), a.ge(b)) == (
                a == b, a != b, a < b, a > b, a <= b, a >= b)
            assert [a.lt(b), a.eq(b), a.gt(b)].count(True) == 1
    assert sorted(handles) == sorted(reversed(handles))
    obj = handles[1]
    block = obj.toBlock()
    assert block.eq(obj) and obj.eq(block) and Repository.Handle.eq(block, obj)
    assert len({block, obj, obj.toSubSystem()}) == 1
    assert copy.copy(obj) == obj and copy.deepcopy(obj).Path == SUBSYSTEM
    assert obj != SUBSYSTEM and not (obj == None)  # noqa: E711
    with pytest.raises(TypeError):
        obj < 3
    with pytest.raises(TypeError):
        obj.eq("kinetics")


@pytest.mark.parametrize(
    "target, source, path",
    [
        ("TandrilObject", "Palette", PALETTE),
        ("Block", "Library", PRODUCT),
        ("SubSystem", "LibraryRef", LIBRARY_REF),
        ("Block", "Palette", None),
        ("SubSystem", "Palette", None),
        ("SubSystem", "Block", None),
    ],
)
def test_constructors_widen_and_never_cross_the_kinds(repository, target, source, path):
    narrow = getattr(repository.getTandrilObject(path or PALETTE), "to" + source)()
    if path is None:
        with pytest.raises(TypeError):
            getattr(Repository, target)(narrow)
        return
    wide = getattr(Repository, target)(narrow)
    assert type(wide) is getattr(Repository, target)
    assert wide == narrow and wide.Path == path
    assert [o.Name for o in repository.getChildrenIterator(narrow)] == [
        o.Name for o in repository.getChildrenIterator(wide)]
