"""Iterators: the scripted walk, the Python loop, size, copies, and the reader they hold."""

import copy
import gc

from conftest import paths, walk
from tandril import Repository

SUBSYSTEM = "kinetics/Mechanical/Rotational"
ROTATIONAL = ["Inertia", "Rotary Spring", "Rotary Damper", "Gear Trains"]


def test_a_python_loop_and_the_scripted_walk_agree_and_size_leaves_the_position(repository):
    parent = repository.getTandrilObject(SUBSYSTEM)
    assert [o.Name for o in repository.getChildrenIterator(parent)] == ROTATIONAL
    assert [o.Name for o in walk(repository.getChildrenIterator(parent))] == ROTATIONAL
    below = walk(repository.getDepthFirstIterator(parent))
    assert [o.Name for o in below] == ROTATIONAL + ["Spur Gear", "Planetary Gear", "Worm Gear"]
    assert all(type(o) is Repository.TandrilObject for o in below)

    it = repository.getChildrenIterator(parent)
    it.next()
    twin = copy.copy(it)
    it.next()
    assert it.size() == 4.0 and isinstance(it.size(), float)
    assert it.current().Name == "Rotary Damper" and twin.current().Name == "Rotary Spring"
    assert copy.deepcopy(it).current().Name == "Rotary Damper"
    assert [o.Name for o in it] == ["Rotary Damper", "Gear Trains"]
    assert not it.isValidIterator() and not it.isEmpty() and list(it) == []
    assert not it.current().isValid()
    it.restart()
    assert it.current().Name == "Inertia"


def test_an_iterator_over_nothing_is_empty(repository):
    block = repository.getTandrilObject("kinetics/Continuous/Integrator")
    for it in (repository.getChildrenIterator(block), repository.getDepthFirstIterator(block),
               repository.findBlocks("no block has this name")):
        assert it.isEmpty() and not it.isValidIterator() and it.size() == 0.0 and list(it) == []


def test_the_products_the_top_level_and_an_iterator_that_keeps_its_reader(repository, shipped_store):
    top = [o.Path for o in repository.getTopLevelIterator()]
    assert {"kinetics", "switchyard", "tandril", "signal_workbench"} <= set(top)
    assert set(top) <= set(paths(repository.getProductsIterator()))
    assert repository.getProduct("kinetics/Continuous").Path == "kinetics"
    it = Repository.Reader.open(str(shipped_store)).getDepthFirstIterator()
    twin = copy.copy(Repository.Reader.open(str(shipped_store)).getProductsIterator())
    gc.collect()
    assert "kinetics/Mechanical/Rotational/Gear Trains/Worm Gear" in paths(it)
    assert twin.size() > 0
