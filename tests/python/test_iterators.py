"""Iterators: the scripted walk, the Python loop, size, copies, and the reader they hold."""

import copy
import gc

from conftest import paths, walk
from tandril import Repository

SUBSYSTEM = "kinetics/Mechanical/Rotational"
ROTATIONAL = ["Inertia", "Rotary Spring", "Rotary Damper", "Gear Trains"]


def test_a_python_loop_and_the_scripted_walk_agree(repository):
    parent = repository.getTandrilObject(SUBSYSTEM)
    assert [o.Name for o in repository.getChildrenIterator(parent)] == ROTATIONAL
    assert [o.Name for o in walk(repository.getChildrenIterator(parent))] == ROTATIONAL
    below = walk(repository.getDepthFirstIterator(parent))
    assert [o.Name for o in below] == ROTATIONAL[:3] + ["Gear Trains", "Spur Gear", "Planetary Gear", "Worm Gear"]
    assert all(type(o) is Repository.TandrilObject for o in below)


def test_size_in_the_middle_of_a_walk_leaves_the_position(repository):
    it = repository.getChildrenIterator(repository.getTandrilObject(SUBSYSTEM))
    it.next()
    it.next()
    assert it.size() == 4.0 and isinstance(it.size(), float)
    assert it.current().Name == "Rotary Damper"
    assert it.size() == 4.0
    assert [o.Name for o in it] == ["Rotary Damper", "Gear Trains"]


def test_a_loop_moves_the_iterator_and_restart_walks_again(repository):
    it = repository.getChildrenIterator(repository.getTandrilObject(SUBSYSTEM))
    assert not it.isEmpty()
    assert len(list(it)) == 4
    assert not it.isValidIterator() and not it.isEmpty()
    assert list(it) == []
    assert not it.current().isValid()
    it.next()
    it.restart()
    assert it.current().Name == "Inertia" and not it.isEmpty()


def test_a_copy_walks_on_by_itself(repository):
    it = repository.getChildrenIterator(repository.getTandrilObject(SUBSYSTEM))
    it.next()
    twin = copy.copy(it)
    assert twin.current().Name == "Rotary Spring"
    twin.next()
    assert it.current().Name == "Rotary Spring"
    assert copy.deepcopy(twin).current().Name == "Rotary Damper"


def test_an_iterator_over_nothing_is_empty(repository):
    block = repository.getTandrilObject("kinetics/Continuous/Integrator")
    for it in (repository.getChildrenIterator(block), repository.getDepthFirstIterator(block),
               repository.findBlocks("no block has this name")):
        assert it.isEmpty() and not it.isValidIterator()
        assert it.size() == 0.0
        assert list(it) == []


def test_the_products_and_the_top_level(repository):
    products = [o.Path for o in repository.getProductsIterator()]
    top = [o.Path for o in repository.getTopLevelIterator()]
    assert {"kinetics", "switchyard", "tandril", "signal_workbench"} <= set(top)
    assert set(top) <= set(products)
    assert repository.getProduct("kinetics/Continuous").Path == "kinetics"


def test_an_iterator_keeps_its_reader(shipped_store):
    it = Repository.Reader.open(str(shipped_store)).getDepthFirstIterator()
    gc.collect()
    names = paths(it)
    assert len(names) > 100
    assert "kinetics/Mechanical/Rotational/Gear Trains/Worm Gear" in names
    twin = copy.copy(Repository.Reader.open(str(shipped_store)).getProductsIterator())
    gc.collect()
    assert twin.size() > 0
