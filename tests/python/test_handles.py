"""Handles as values: attributes, kinds, conversions, comparison and hashing."""

import copy
import gc

import pytest

from tandril import Repository

BLOCK = "kinetics/Continuous/Integrator"
SUBSYSTEM = "kinetics/Mechanical/Rotational"
PRODUCT = "kinetics"
LIBRARY_REF = "kinetics/Test Signals"
PALETTE = "signal_workbench"

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
def test_kind_tests_follow_the_node_chain(repository, path, kind, true_tests):
    obj = repository.getTandrilObject(path)
    assert obj.isValid()
    assert obj.Type == kind
    for test in KINDS:
        assert getattr(obj, "is" + test)() == (test in true_tests), test
        converted = getattr(obj, "to" + test)()
        assert type(converted) is getattr(Repository, test)
        # A failed conversion is a null handle of the target class, equal to
        # every other null handle and never valid.
        assert converted.isValid() == (test in true_tests), test
        assert (converted == obj) == (test in true_tests), test


def test_a_subsystem_reads_its_attributes(repository):
    obj = repository.getTandrilObject(SUBSYSTEM)
    assert (obj.Name, obj.DisplayName, obj.Path, obj.ProductName) == (
        "Rotational", "Rotational", SUBSYSTEM, "kinetics")
    assert obj.Description == "Parts that turn about an axis."
    assert (obj.IsEmpty, obj.IsFlat, obj.IsProduct) == (False, False, False)
    assert repository.getTandrilObject(PRODUCT).IsProduct


def test_a_library_reference_names_its_target(repository):
    ref = repository.getTandrilObject(LIBRARY_REF).toLibraryRef()
    assert ref.LibraryRefPath == "wavecraft/Sources"
    assert ref.LibraryRefName != ""
    assert repository.getTandrilObject(BLOCK).LibraryRefPath == ""


def test_the_defaults_of_a_plain_block_and_a_null_handle(repository):
    block = repository.getTandrilObject(BLOCK)
    null = block.toSubSystem()
    for handle in (block, null):
        assert handle.IsEmpty and handle.IsFlat and not handle.IsProduct
    assert null.Name == "" and null.Path == "" and null.Type == "InvalidBlock"
    assert null.Icon is None
    # Null handles of all classes are one value.
    assert block.toLibrary().eq(null) and hash(block.toLibrary()) == hash(null)


def test_an_icon_gives_its_svg_bytes(repository):
    obj = repository.getTandrilObject(BLOCK)
    icon = obj.Icon
    assert isinstance(icon, Repository.Icon)
    assert not icon.isEmpty()
    assert icon.svg.lstrip().startswith(b"<")
    assert b"<svg" in icon.svg
    assert bytes(icon) == icon.svg
    assert repository.getIcon(obj).svg == icon.svg


def test_a_missing_object_is_an_invalid_handle_that_keeps_its_path(repository):
    missing = repository.getTandrilObject("kinetics/No Such Block")
    assert not missing.isValid()
    assert missing.Name == "InvalidBlock"
    assert missing == repository.getTandrilObject("kinetics/No Such Block")
    assert missing != repository.getTandrilObject(BLOCK)
    assert missing.Icon is None


def test_eq_of_a_block_and_a_tandril_object_on_one_object(repository):
    obj = repository.getTandrilObject(SUBSYSTEM)
    block = obj.toBlock()
    assert type(block) is Repository.Block
    assert block.eq(obj) and obj.eq(block)
    assert Repository.Handle.eq(block, obj)
    assert block == obj and not (block != obj)
    assert hash(block) == hash(obj)
    assert len({block, obj, obj.toSubSystem()}) == 1


def test_the_operators_agree_with_the_methods(repository):
    handles = [repository.getTandrilObject(p) for p in (BLOCK, SUBSYSTEM, PRODUCT, LIBRARY_REF, PALETTE)]
    for a in handles:
        for b in handles:
            assert a.eq(b) == (a == b)
            assert a.ne(b) == (a != b)
            assert a.lt(b) == (a < b)
            assert a.gt(b) == (a > b)
            assert a.le(b) == (a <= b)
            assert a.ge(b) == (a >= b)
            assert [a.lt(b), a.eq(b), a.gt(b)].count(True) == 1
    assert sorted(handles) == sorted(reversed(handles))


def test_comparing_with_other_values_is_plain_inequality(repository):
    obj = repository.getTandrilObject(BLOCK)
    assert obj != "kinetics/Continuous/Integrator"
    assert not (obj == None)  # noqa: E711
    with pytest.raises(TypeError):
        obj < 3
    with pytest.raises(TypeError):
        obj.eq("kinetics")


@pytest.mark.parametrize(
    "target, source, path",
    [
        ("TandrilObject", "Block", BLOCK),
        ("TandrilObject", "SubSystem", SUBSYSTEM),
        ("TandrilObject", "Library", PRODUCT),
        ("TandrilObject", "LibraryRef", LIBRARY_REF),
        ("TandrilObject", "Palette", PALETTE),
        ("Block", "SubSystem", SUBSYSTEM),
        ("Block", "Library", PRODUCT),
        ("Block", "LibraryRef", LIBRARY_REF),
        ("SubSystem", "Library", PRODUCT),
        ("SubSystem", "LibraryRef", LIBRARY_REF),
    ],
)
def test_widening_constructors_keep_the_object(repository, target, source, path):
    narrow = getattr(repository.getTandrilObject(path), "to" + source)()
    wide = getattr(Repository, target)(narrow)
    assert type(wide) is getattr(Repository, target)
    assert wide == narrow and wide.Path == path


@pytest.mark.parametrize("target, source", [("Block", "Palette"), ("SubSystem", "Palette"), ("SubSystem", "Block")])
def test_there_is_no_widening_across_the_kinds(repository, target, source):
    narrow = getattr(repository.getTandrilObject(PALETTE), "to" + source)()
    with pytest.raises(TypeError):
        getattr(Repository, target)(narrow)


def test_a_narrower_handle_is_taken_where_an_object_is_asked_for(repository):
    library = repository.getTandrilObject(SUBSYSTEM).toSubSystem()
    assert [o.Name for o in repository.getChildrenIterator(library)] == [
        o.Name for o in repository.getChildrenIterator(repository.getTandrilObject(SUBSYSTEM))]


def test_a_copy_is_the_same_value(repository):
    obj = repository.getTandrilObject(BLOCK)
    assert copy.copy(obj) == obj and copy.deepcopy(obj).Path == BLOCK


def test_a_handle_outlives_its_reader(shipped_store):
    reader = Repository.Reader.open(str(shipped_store))
    obj = reader.getTandrilObject(PRODUCT)
    same = reader.getTandrilObject(PRODUCT)
    assert obj.isValid()
    del reader
    gc.collect()
    assert not obj.isValid()
    assert obj.Name == "" and obj.Type == "InvalidBlock" and obj.Icon is None
    assert not obj.isLibrary()
    assert obj == same


@pytest.mark.parametrize("path", [BLOCK, SUBSYSTEM, PRODUCT, LIBRARY_REF, PALETTE, "kinetics/No Such Block"])
def test_the_texts_read_alike_on_every_class(repository, path):
    obj = repository.getTandrilObject(path)
    views = [obj] + [getattr(obj, "to" + kind)() for kind in KINDS]
    for view in views:
        for name in ("Name", "Path", "DisplayName", "Description", "Type"):
            assert getattr(view, name) == getattr(Repository.Handle, name).__get__(view), (type(view), name)


def test_the_texts_are_read_only_and_documented(repository):
    obj = repository.getTandrilObject(BLOCK)
    for name in ("Name", "Path", "DisplayName", "Type"):
        assert getattr(Repository.TandrilObject, name).__doc__ == getattr(Repository.Handle, name).__doc__
        assert getattr(Repository.TandrilObject, name).__doc__
        with pytest.raises(AttributeError):
            setattr(obj, name, "x")


def test_a_name_outside_ascii_comes_through(repository):
    assert repository.getTandrilObject("switchyard/Logic/Zähler").Name == "Zähler"
