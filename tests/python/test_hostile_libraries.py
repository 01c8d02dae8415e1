"""Library files that would make a careless walk run away, read through the package:
palettes that list each other, and libraries that each reference the next twice."""

import json
import shutil

import pytest

from conftest import built_root, walk

FAN_OUT_LEVELS = 16


def write_json(path, document):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(json.dumps(document))


@pytest.fixture(scope="session")
def root_dir(tmp_path_factory):
    """The example root with a palette cycle and a fan-out of references of its own."""
    root = tmp_path_factory.mktemp("host") / "root"
    shutil.copytree(built_root(), root)
    cycle = root / "toolbox" / "cycle"
    write_json(cycle / "cyclemember.tdlib.json",
               {"format": "tandril-library", "version": 1, "name": "cyclemember",
                "blocks": [{"name": "Orbit", "type": "Block"}]})
    write_json(cycle / "tdblocks.json", {"format": "tandril-tdblocks", "version": 1, "entries": [
        {"name": "Cycle Member", "library": "cyclemember", "type": "Product"},
        {"name": "Cycle 1", "library": "cycle1", "type": "Palette", "children": ["Cycle 2", "Cycle Member"]},
        {"name": "Cycle 2", "library": "cycle2", "type": "Palette", "children": ["Cycle 1"]}]})
    fan = root / "toolbox" / "fan"
    for level in range(FAN_OUT_LEVELS + 1):
        blocks = [{"name": f"Level{level}", "type": "Block"}]
        if level < FAN_OUT_LEVELS:
            blocks += [{"name": side, "type": "LibraryRef", "target": {"library": f"fan{level + 1}"}}
                       for side in ("Left", "Right")]
        write_json(fan / f"fan{level}.tdlib.json",
                   {"format": "tandril-library", "version": 1, "name": f"fan{level}", "blocks": blocks})
    write_json(fan / "tdblocks.json", {"format": "tandril-tdblocks", "version": 1,
                                       "entries": [{"name": "Fan Out", "library": "fan0", "type": "Product"}]})
    return root


def test_palettes_listing_each_other_are_judged_and_read(repository):
    repository.updateProducts()
    repository.generateRepository()
    products = {product.DisplayName: product for product in walk(repository.getProductsIterator())}
    for name in ("Cycle 1", "Cycle 2"):
        assert repository.isProductUpToDate(products[name]) in (True, False)
    assert [hit.DisplayName for hit in walk(repository.findBlocks("Orbit"))]


def test_a_fan_out_of_references_is_walked_once_per_reference(repository):
    fan = repository.getTandrilObject("fan0")
    names = [item.Name for item in walk(repository.getDepthFirstIterator(fan))]
    assert f"Level{FAN_OUT_LEVELS}" in names
    # Two objects and a level's block for each reference entered once, against
    # 2^16 walks of the last level were every reference entered wherever it is met.
    assert len(names) <= 6 * (FAN_OUT_LEVELS + 1)
