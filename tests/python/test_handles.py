"""Handles and iterators as Python values (what they mean is HandleTest's): attributes, kinds, conversions, walks."""

import copy
import gc

import pytest

from conftest import paths, walk
from tandril import Repository

BLOCK, SUBSYSTEM, PRODUCT = "kinetics/Continuous/Integrator", "kinetics/Mechanical/Rotational", "kinetics"
LIBRARY_REF, PALETTE, MISSING = "kinetics/Test Signals", "signal_workbench", "kinetics/No Such Block"
KINDS = ["Block", "SubSystem", "Library", "LibraryRef", "Palette"]
ROTATIONAL = ["Inertia", "Rotary Spring", "Rotary Damper", "Gear Trains"]


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
