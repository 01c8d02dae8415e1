"""A seeded random driver of the browser window through tandril.StandaloneBrowser.

Each step is one scripted call chosen at random (tree, tiles, search, look,
position, refresh, show and close, destroy and create...), with arguments
drawn from what the window shows and from hostile texts; after each step the
window must answer and its state hang together. A seed replays exactly.

Short runs are the suite python.test_monkey; long ones run by hand (FUZZING.md):

    PYTHONPATH=build/python /usr/bin/python3 tests/python/monkey.py ROOT --seeds 1-20 --steps 5000
"""

import argparse
import random
import shutil
import sys
import tempfile
import time

import tandril
from tandril import Repository, StandaloneBrowser

HOSTILE_TEXTS = ["", "[", "(", "*", "\\", "a" * 300, "Kinetics/", "/", "//", "gain", "Integrator", "^S", "delay$",
                 "é", "\0", "Tandril/Frequently Used", "Kinetics/Continuous//x"]


class Inconsistent(AssertionError):
    pass


class Monkey:
    def __init__(self, seed, trace=False, skip=()):
        self.trace = trace
        self.skip = set(skip)
        self.random = random.Random(seed)
        self.browser = StandaloneBrowser()
        self.others = []
        self.paths = set()
        self.log = []

    # What the window shows, for arguments.

    def known_paths(self):
        self.paths.update(self.browser.getSortedLibraryNames())
        for path in list(self.paths):
            if self.browser.isTreeNodeExpanded(path):
                self.paths.update(self.browser.getChildren(path))
        return sorted(self.paths)

    def some_path(self):
        paths = self.known_paths()
        if paths and self.random.random() < 0.9:
            return self.random.choice(paths)
        return self.random.choice(HOSTILE_TEXTS)

    def some_tile(self):
        tiles = self.browser.getBlocks() + self.browser.getResultsPageBlockNames()
        if tiles and self.random.random() < 0.9:
            return self.random.choice(tiles)
        return self.some_path()

    def some_section(self):
        sections = self.browser.getResultsPageSectionNames()
        return self.random.choice(sections) if sections and self.random.random() < 0.9 else self.some_path()

    # The steps, with their weights.

    def steps(self):
        b, r = self.browser, self.random
        return [
            (8, "selectTreeNodeByName", lambda: b.selectTreeNodeByName(self.some_path())),
            (5, "selectTreeNodeByNameGui", lambda: b.selectTreeNodeByNameGui(self.some_path())),
            (6, "expandTreeNodeByName", lambda: b.expandTreeNodeByName(self.some_path())),
            (4, "collapseTreeNodeByName", lambda: b.collapseTreeNodeByName(self.some_path())),
            (3, "goToParent", b.goToParent),
            (6, "selectBlockByName", lambda: b.selectBlockByName(self.some_tile())),
            (8, "move", lambda: r.choice([b.selectBlockLeft, b.selectBlockRight, b.selectBlockUp, b.selectBlockDown])()),
            (4, "searchForBlock", lambda: b.searchForBlock(r.choice(HOSTILE_TEXTS + [self.some_tile()[-6:]]))),
            (2, "setSearchOptions", lambda: b.setSearchOptions([r.random() < 0.3 for _ in range(3)])),
            (3, "selectSearchResult", lambda: b.selectSearchResult(self.some_tile())),
            (3, "selectBlockInLibraryView", lambda: b.selectBlockInLibraryView(self.some_tile())),
            (2, "hideResultsSectionByName", lambda: b.hideResultsSectionByName(self.some_section())),
            (2, "showResultsSectionByName", lambda: b.showResultsSectionByName(self.some_section())),
            (3, "selectTabByIndex", lambda: b.selectTabByIndex(r.choice([0, 1, 0, 1, 2, -1]))),
            (2, "setLayout", lambda: b.setLayout(r.choice(["LIST", "GRID"]))),
            (2, "setIconSize", lambda: b.setIconSize(r.randrange(4))),
            (2, "font", lambda: r.choice([b.increaseFontSize, b.decreaseFontSize])()),
            (2, "showBlockDescription", lambda: b.showBlockDescription(r.random() < 0.5)),
            (2, "showSearchResults", lambda: b.showSearchResults(r.random() < 0.5)),
            (1, "setPosition", lambda: b.setPosition([r.randrange(-50, 400), r.randrange(-50, 300),
                                                       r.randrange(200, 1400), r.randrange(200, 1000)])),
            (2, "doubleClickBlock", lambda: b.doubleClickBlock(self.some_tile())),
            (1, "addSelectedBlockToCurrentOpenSystem", b.addSelectedBlockToCurrentOpenSystem),
            (1, "openNewModel", b.openNewModel),
            (1, "wait for the timer", lambda: time.sleep(0.12)),
            (1, "show", b.show),
            (1, "close", b.close),
            (1, "hide", b.hide),
            (0.5, "refreshLibraryBrowser", b.refreshLibraryBrowser),
            (0.3, "destroy and make anew", self.remake),
            (0.3, "another window", self.another_window),
        ]

    def remake(self):
        self.browser.destroyInstance()
        try:
            self.browser.getTitle()
            raise Inconsistent("a destroyed window still answers")
        except tandril.Destroyed:
            pass
        self.browser = StandaloneBrowser()
        self.paths.clear()

    def another_window(self):
        if self.others and self.random.random() < 0.5:
            self.others.pop(self.random.randrange(len(self.others)))
            return
        other = StandaloneBrowser.create(Repository.Repository.open())
        other.selectTreeNodeByName(self.random.choice(other.getSortedLibraryNames()))
        self.others.append(other)

    # After each step.

    def snapshot(self):
        """What the window shows, read until two reads agree: each call handles
        pending events first, and the tree's selection timer may fire between
        two calls."""
        b = self.browser
        read = None
        for _ in range(10):
            again = (b.getCurrentTreeNode(), b.getCurrentTabIndex(), b.getBlocks(), b.getResultsPageBlockNames(),
                     b.getSelectedBlockName())
            if again == read:
                return read
            read = again
            time.sleep(0.02)
        raise Inconsistent("the window's state does not settle")

    def check(self):
        b = self.browser
        if not b.isEnabled():
            raise Inconsistent("the window takes no input after the step")
        libraries = b.getSortedLibraryNames()
        if not libraries:
            raise Inconsistent("the tree has no libraries")
        current, tab, library_tiles, result_tiles, selected = self.snapshot()
        if current and current.split("/")[0] not in libraries:
            raise Inconsistent("the current node %r is in no library" % current)
        page = library_tiles if tab == 0 else result_tiles
        if selected and tab in (0, 1) and selected not in page:
            raise Inconsistent("the selected tile %r is not on page %d" % (selected, tab))
        if current and tab == 0 and any(not tile.startswith(current + "/") for tile in library_tiles):
            raise Inconsistent("the library page shows tiles of another node than %r" % current)
        for path in self.paths:
            if b.isTreeNodeExpanded(path):
                for child in b.getChildren(path):
                    if not child.startswith(path + "/"):
                        raise Inconsistent("%r is listed as a child of %r" % (child, path))
        position = b.getPosition()
        if len(position) != 4:
            raise Inconsistent("the position is %r" % (position,))
        for other in self.others:
            other.getCurrentTreeNode()

    def steps_to_take(self):
        return [step for step in self.steps() if step[1] not in self.skip]

    def run(self, steps):
        table = self.steps_to_take()
        for step in range(steps):
            weights = [w for w, _, _ in table]
            if step and step % 200 == 0:
                table = self.steps_to_take()  # the window may be a new one
            weight, name, action = self.random.choices(table, weights)[0]
            self.log.append(name)
            if self.trace:
                print(step, name, flush=True)
            try:
                action()
            except tandril.Error as error:
                # Refusals of hostile arguments are answers too; none other is expected.
                if not isinstance(error, tandril.BadArgument):
                    raise Inconsistent("%s raised %r" % (name, error))
            if name == "destroy and make anew":
                table = self.steps_to_take()
            self.check()
        self.others.clear()
        return len(self.log)


def run_seed(seed, steps, trace=False, skip=()):
    monkey = Monkey(seed, trace, skip)
    try:
        return monkey.run(steps)
    except Exception as error:
        raise AssertionError("seed %d, step %d (%s): %s; last steps %s" % (
            seed, len(monkey.log), monkey.log[-1] if monkey.log else "-", error, monkey.log[-8:])) from error


def seeds_of(text):
    first, _, last = text.partition("-")
    return range(int(first), int(last or first) + 1)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("root", help="a built example root (build/examples/root); a copy is used")
    parser.add_argument("--seeds", default="1-3")
    parser.add_argument("--steps", type=int, default=2000)
    parser.add_argument("--trace", action="store_true", help="print each step before it runs")
    parser.add_argument("--skip", action="append", default=[], help="a step left out, to get past a known finding")
    arguments = parser.parse_args()
    work = tempfile.mkdtemp(prefix="tdlb-monkey-")
    try:
        shutil.copytree(arguments.root, work + "/root")
        tandril.start(root=work + "/root", prefdir=work + "/prefs")
        total = 0
        started = time.monotonic()
        for seed in seeds_of(arguments.seeds):
            total += run_seed(seed, arguments.steps, arguments.trace, arguments.skip)
            print("seed %d: %d steps, consistent" % (seed, arguments.steps), flush=True)
        print("%d steps in %.0f s" % (total, time.monotonic() - started))
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
