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

    # A loop goes on from where the walk stands and moves it; copies walk on by themselves.
    it = repository.getChildrenIterator(parent)
    it.next()
    twin = copy.copy(it)
    it.next()
    assert it.size() == 4.0 and isinstance(it.size(), float)
    assert (twin.current().Name, copy.deepcopy(it).current().Name) == ("Rotary Spring", "Rotary Damper")
    assert [o.Name for o in it] == ["Rotary Damper", "Gear Trains"]
    assert not it.isValidIterator() and list(it) == []


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
