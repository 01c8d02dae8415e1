"""A user's journeys through the real `tdlb browse`, under a virtual X
server with a window manager and real input (see realdisplay.py).

    journeys.py --tdlb build/app/tdlb --root build/examples/root [--screenshots DIR] [unittest names...]

Exits 0 when the journeys pass, 77 when every one that ran was skipped, 1
on a failure, and 1 as well when a tool of the harness is missing: the
install list (tools/install-packages.sh) has them all.
"""

import argparse
import configparser
import glob
import json
import os
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import realdisplay  # noqa: E402
from realdisplay import Browser, Display, wait_for  # noqa: E402

OPTIONS = argparse.Namespace(tdlb=None, root=None, screenshots=None)


class Journey(unittest.TestCase):
    """Each journey gets its own display, a copy of the built example root
    and a preferences directory of its own."""

    def setUp(self):
        self.workdir = tempfile.mkdtemp(prefix="tdlb-realdisplay-")
        self.display = Display(self.workdir)
        self.addCleanup(self.display.stop)
        self.root = os.path.join(self.workdir, "root")
        shutil.copytree(OPTIONS.root, self.root, symlinks=True)
        self.prefdir = os.path.join(self.workdir, "prefs")
        self.browsers = []
        self.addCleanup(self._end_browsers)

    def _end_browsers(self):
        for browser in self.browsers:
            browser.kill()
        if self._outcome_ok():
            shutil.rmtree(self.workdir, ignore_errors=True)
        else:
            print(f"\nkept for a look: {self.workdir}", file=sys.stderr)

    def _outcome_ok(self):
        outcome = getattr(self, "_outcome", None)
        result = getattr(outcome, "result", None)
        if result is None:
            return True
        return not any(test is self for test, _ in list(result.failures) + list(result.errors))

    def open_browser(self, *arguments):
        browser = Browser(self.display, OPTIONS.tdlb, self.root, self.prefdir,
                          os.path.join(self.workdir, f"state{len(self.browsers)}.log"))
        self.browsers.append(browser)
        return browser.start(*arguments)

    def preferences(self):
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read(os.path.join(self.prefdir, "LibraryBrowser.ini"))
        return parser["LibraryBrowser"] if parser.has_section("LibraryBrowser") else {}

    def search_by_typing(self, browser, text):
        """Clicks into the search box, types, presses Return."""
        browser.display.click(*browser.center_of("searchBox"))
        # The prompt is selected on focus, so that typing replaces it.
        browser.wait_state(lambda s: s["focus"] == "search box" and s["searchSelection"] == s["searchText"],
                           "the search box focused with its text selected")
        browser.display.type(text)
        browser.wait_state(lambda s: s["searchText"] == text, f"the search box to read {text!r}")
        browser.display.key("Return")
        return browser.wait_state(lambda s: s["tab"] == 1 and s["enabled"] and s["status"].startswith("Matches for"),
                                  f"the results of {text!r}", timeout=60)

    def model_windows_or_skip(self, browser):
        """Opens a new model with Ctrl+N and gives its window; skips when
        the program shows none, which is how tdlb browse behaved before its
        host showed model windows."""
        before = set(browser.other_windows())
        browser.display.key("ctrl+n")
        try:
            return wait_for(lambda: [w for w in browser.other_windows() if w not in before],
                            "a model window after Ctrl+N", timeout=15)
        except AssertionError:
            self.skipTest("tdlb browse shows no model window: Ctrl+N opened no window")

    # 1. Type a name into the search box, press Return: the results show it.
    def test_return_in_the_search_box_shows_the_block(self):
        browser = self.open_browser("--icon-size", "medium")
        state = self.search_by_typing(browser, "Delay")
        self.assertEqual(state["tabLabels"][1], "Found: 'Delay'")
        self.assertEqual(len(state["tiles"]), 6, state["tiles"])
        self.assertIn("Kinetics/Discrete/Unit Delay", state["tiles"])
        self.assertTrue(all("Delay" in tile for tile in state["tiles"]), state["tiles"])
        # Focus went on to the hits, where the arrow keys go on.
        self.assertEqual(state["focus"], "results page")
        first = state["selected"]
        browser.display.key("Right")
        state = browser.wait_state(lambda s: s["selected"] != first, "the first arrow key to move the selection")
        self.assertEqual(state["selected"], state["tiles"][1])
        if OPTIONS.screenshots:
            browser.display.xdotool("mousemove", "--sync", "1200", "1000")
            path = os.path.join(OPTIONS.screenshots, "browser-real-display-search.png")
            browser.display.screenshot(path, browser.display.frame_rect(browser.window))

        # Tab goes back to the box with its text selected. A text that finds
        # nothing: the box has the focus again, its text selected, so that
        # typing replaces it; the history never completes it.
        browser.display.key("Tab")
        browser.wait_state(lambda s: s["focus"] == "search box" and s["searchSelection"] == "Delay",
                           "the search box focused by Tab with its text selected")
        browser.display.type("zzqq")
        browser.display.key("Return")
        state = browser.wait_state(lambda s: s["status"] == "No matches for 'zzqq'", "the search for zzqq to fail")
        browser.wait_state(lambda s: s["focus"] == "search box" and s["searchSelection"] == "zzqq",
                           "the failed text selected in the search box")
        browser.display.type("Dela")
        browser.display.key("Return")
        state = browser.wait_state(lambda s: s["tabLabels"][1] == "Found: 'Dela'", "the search for 'Dela'")
        self.assertEqual(state["searchText"], "Dela")

    # 4. Return on a subsystem tile enters it.
    def test_return_on_a_subsystem_tile_enters_it(self):
        browser = self.open_browser()
        state = browser.wait_state(lambda s: s["focus"] == "tree", "the tree to have the focus at start")
        node = state["treeNode"]
        # The first key after start acts: down into the first child, and back.
        browser.display.key("Down")
        browser.wait_state(lambda s: s["treeNode"].startswith(node + "/"), "the first key to move in the tree")
        browser.display.key("Up")
        browser.wait_state(lambda s: s["treeNode"] == node, f"the tree back at {node}")
        # * opens every branch below a node not opened yet, those made only
        # as it opens too.
        for key in ("Down", "Down", "Down", "Down"):
            browser.display.key(key)
        closed = browser.wait_state(lambda s: s["treeNode"] == node + "/Mechanical",
                                    "the tree at a branch not opened yet")["treeNode"]
        browser.display.key("asterisk")
        browser.wait_state(lambda s: s["treeNode"] == closed and not s["closedBelow"],
                           f"every branch below {closed} open")
        browser.display.key("Home")
        browser.wait_state(lambda s: s["treeNode"] != closed, "the tree back at the top")
        # Tab goes to the page; the first key there acts.
        browser.display.key("Tab")
        state = browser.wait_state(lambda s: s["focus"] == "library page" and s["focusMark"],
                                   "the library page focused with its focus mark")
        self.assertGreater(len(state["tiles"]), 1)
        browser.display.key("Right")
        state = browser.wait_state(lambda s: s["selected"] == s["tiles"][1], "the first key on the page to act")
        entered = state["selected"]
        browser.display.key("Return")
        state = browser.wait_state(lambda s: s["treeNode"] == entered, f"the page to show {entered}")
        self.assertEqual(state["tabLabels"][0], f"Library: {entered}")
        self.assertEqual(state["status"], f"Showing: {entered}")
        self.assertTrue(all(tile.startswith(entered + "/") for tile in state["tiles"]), state["tiles"])
        self.assertNotEqual(node, entered)

    # 5. Closing the window ends the program; a restart restores the layout,
    # the icon size, the tree's width and the search history.
    def test_closing_the_window_ends_the_program_and_a_restart_restores_it(self):
        browser = self.open_browser()
        self.search_by_typing(browser, "Gain")
        browser.activate()
        browser.display.key("ctrl+l", "ctrl+3")
        browser.wait_state(lambda s: s["layout"] == "List" and s["iconSize"] == "Medium", "list layout, medium icons")
        # The separator right of the tree, dragged 80 pixels to the right.
        x, y, w, h = browser.state()["rects"]["tree"]
        width = browser.state()["treeWidth"]
        browser.display.drag((x + w + 2, y + h // 2), (x + w + 82, y + h // 2))
        browser.wait_state(lambda s: s["treeWidth"] >= width + 60, "a wider tree pane")
        width = browser.wait_settled("the end of the drag")["treeWidth"]
        frame = browser.display.frame_rect(browser.window)

        browser.close_with_window_manager()
        self.assertEqual(browser.wait_exit(timeout=15), 0, browser.output_text())
        saved = self.preferences()
        self.assertEqual(saved.get("LBLayout"), "List")
        self.assertEqual(saved.get("LBIconSize"), "Medium")
        self.assertIn("Gain", saved.get("LBSearchHistory", ""))

        again = self.open_browser()
        state = again.wait_state(lambda s: s["layout"] == "List" and s["iconSize"] == "Medium",
                                 "the layout and icon size of the last run")
        self.assertEqual(state["history"][0], "Gain")
        again.wait_state(lambda s: abs(s["treeWidth"] - width) <= 2, f"the tree pane at {width} pixels again")
        self.assertEqual(again.display.frame_rect(again.window)[2:], frame[2:])

    # 5, with a model open: the browser closes, the program goes on until
    # the last window of it is closed.
    def test_the_program_ends_with_its_last_window(self):
        browser = self.open_browser()
        model = self.model_windows_or_skip(browser)[0]
        title = browser.display.window_name(model)
        browser.close_with_window_manager()
        state = browser.wait_state(lambda s: not s["visible"], "the browser window to close")
        self.assertEqual(state["otherWindows"], [title])
        self.assertIsNone(browser.process.poll(), "the program ended with a model window open")
        browser.display.xdotool("windowactivate", "--sync", str(model))
        browser.display.key("alt+F4")
        self.assertEqual(browser.wait_exit(timeout=15), 0, browser.output_text())
        self.assertTrue(os.path.exists(os.path.join(self.prefdir, "LibraryBrowser.ini")))

    # 2. Drag a result tile onto a new model window; the saved model holds it
    # at the drop point. Two drops: the model's coordinates have their own
    # origin, but one pixel is one unit, so the two blocks lie as far apart
    # as the two points of release.
    def test_a_tile_dragged_onto_a_model_window_lands_in_the_model(self):
        browser = self.open_browser()
        self.search_by_typing(browser, "Transport Delay")
        browser.activate()
        model = self.model_windows_or_skip(browser)[0]
        mx, my, mw, mh = browser.display.frame_rect(model)
        drops = [(mx + mw // 3, my + mh // 2), (mx + mw // 3 + 120, my + mh // 2 + 60)]
        for drop in drops:
            browser.activate()
            browser.display.drag(browser.center_of("selected"), drop)
            wait_for(lambda: browser.display.window_name(model).endswith("*"), "the model to show a change")
        blocks = self.saved_blocks(self.save_model(browser, model, "dragged"))
        self.assertEqual(sorted(blocks), ["Transport Delay", "Transport Delay1"])
        first, second = blocks["Transport Delay"], blocks["Transport Delay1"]
        self.assertEqual((second[0] - first[0], second[1] - first[1]), (120, 60), blocks)
        self.assertTrue(0 <= first[0] < mw and 0 <= first[1] < mh, blocks)

    # 3. Keyboard only: Tab to the search box, type, Return, an arrow key,
    # the menu key, "Add to a new model": the block is in the new model.
    def test_keyboard_only_adds_a_result_to_a_new_model(self):
        browser = self.open_browser()
        before = set(browser.other_windows())
        browser.display.key("Tab", "Tab")
        browser.wait_state(lambda s: s["focus"] == "search box", "the search box focused by Tab")
        browser.display.type("Unit Delay")
        browser.display.key("Return")
        state = browser.wait_state(lambda s: s["focus"] == "results page", "the results focused", timeout=60)
        browser.display.key("Right")
        browser.wait_state(lambda s: s["selected"] != state["selected"], "the arrow key to move the selection")
        browser.display.key("Menu")
        # "Add to a new model" leads the menu: Down makes it current, Return takes it.
        browser.display.key("Down", "Return")
        try:
            model = wait_for(lambda: [w for w in browser.other_windows() if w not in before],
                             "a new model window", timeout=15)[0]
        except AssertionError:
            self.skipTest("tdlb browse shows no model window: \"Add to a new model\" opened none")
        blocks = self.saved_blocks(self.save_model(browser, model, "keyboard"))
        self.assertEqual(list(blocks), ["Unit Delay"])

    # 6. Type "pid" on a new model's drawing: the quick insert opens at the
    # mouse with a PID block first; Ctrl+D marks it a favourite, Enter puts it
    # into the model at the mouse. After a restart the empty quick insert
    # lists it, and the preferences file holds it as favourite and recent.
    def test_quick_insert_puts_a_typed_block_at_the_mouse_and_remembers_it(self):
        pid = "Kinetics/Continuous/PID Controller"
        browser = self.open_browser()
        model = self.model_windows_or_skip(browser)[0]
        mx, my, mw, mh = browser.display.frame_rect(model)
        # Left in the drawing, so that the popup fits on the screen beside it.
        point = (mx + 60, my + mh // 3)
        browser.display.click(*point)
        browser.display.type("pid")
        state = browser.wait_state(lambda s: s["quickInsert"].get("query") == "pid" and s["quickInsert"]["rows"],
                                   "the quick insert with the matches of 'pid'")
        self.assertEqual(state["quickInsert"]["rows"][0], pid, state["quickInsert"])
        self.assertEqual(state["quickInsert"]["rect"][:2], list(point))
        browser.display.key("ctrl+d")
        browser.wait_settled("the favourite marked")
        if OPTIONS.screenshots:
            x, y, w, h = browser.state()["quickInsert"]["rect"]
            browser.display.screenshot(os.path.join(OPTIONS.screenshots, "quick-insert.png"),
                                       (x - 60, y - 40, w + 120, h + 80))
        browser.display.key("Return")
        browser.wait_state(lambda s: not s["quickInsert"], "the quick insert to close")
        wait_for(lambda: browser.display.window_name(model).endswith("*"), "the model to show a change")
        blocks = self.saved_blocks(self.save_model(browser, model, "quick"))
        self.assertEqual(list(blocks), ["PID Controller"])
        left, top = blocks["PID Controller"][:2]
        # The drawing starts below the title and menu bars, at the frame's left.
        self.assertLessEqual(abs(left - (point[0] - mx)), 8, blocks)
        self.assertTrue(0 < (point[1] - my) - top < 90, blocks)
        # A second block, recent only, at another point of the drawing.
        browser.display.click(mx + 60, my + 2 * mh // 3)
        browser.display.type("gain")
        state = browser.wait_state(lambda s: s["quickInsert"].get("query") == "gain" and s["quickInsert"]["rows"],
                                   "the quick insert with the matches of 'gain'")
        gain = state["quickInsert"]["rows"][0]
        browser.display.key("Return")
        browser.wait_state(lambda s: not s["quickInsert"], "the quick insert to close")
        wait_for(lambda: "Gain" in self.preferences().get("LBRecentBlocks", ""), "the recent block kept")
        saved = self.preferences()
        self.assertIn("PID Controller", saved.get("LBFavoriteBlocks", ""))
        self.assertNotIn("Gain", saved.get("LBFavoriteBlocks", ""))
        self.assertIn("PID Controller", saved.get("LBRecentBlocks", ""))

        browser.kill()
        again = self.open_browser()
        again.activate()
        again.display.key("ctrl+shift+i")
        state = again.wait_state(lambda s: s["quickInsert"].get("rows") is not None,
                                 "the quick insert from the Edit menu's shortcut")
        self.assertEqual(state["quickInsert"]["query"], "")
        self.assertEqual(state["quickInsert"]["rows"], [pid, gain])
        self.assertEqual(state["quickInsert"]["footer"], "Favorites, then recently used blocks")
        if OPTIONS.screenshots:
            x, y, w, h = state["quickInsert"]["rect"]
            again.display.screenshot(os.path.join(OPTIONS.screenshots, "quick-insert-favourites.png"),
                                     (x - 40, y - 40, w + 80, h + 80))
        again.display.key("Escape")
        again.wait_state(lambda s: not s["quickInsert"], "Escape to close the quick insert")

    @staticmethod
    def saved_blocks(text):
        """The top-level blocks of a saved model file: name to position."""
        return {block["name"]: block.get("position") for block in json.loads(text).get("blocks", [])}

    def save_model(self, browser, model, name):
        """Saves the model of a window with Ctrl+S into a file named in the
        save dialog, and gives the file's text (the dialog may add its own
        extension to the name)."""
        base = os.path.join(self.workdir, name)
        browser.display.xdotool("windowactivate", "--sync", str(model))
        before = set(browser.other_windows())
        browser.display.key("ctrl+s")
        wait_for(lambda: set(browser.other_windows()) - before, "the save dialog", timeout=15)
        browser.display.type(base)
        browser.display.key("Return")
        saved = wait_for(lambda: [f for f in glob.glob(base + "*") if os.path.getsize(f) > 0],
                         f"the model saved as {base}")
        with open(saved[0], encoding="utf-8", errors="replace") as text:
            return text.read()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tdlb", required=True)
    parser.add_argument("--root", required=True, help="the built example root, with its shipped store")
    parser.add_argument("--screenshots", help="a directory for the screenshots the journeys take")
    options, rest = parser.parse_known_args()
    OPTIONS.__dict__.update(vars(options))
    missing = realdisplay.missing_tools()
    if missing:
        print("The real-display journeys need " + ", ".join(missing) +
              ": bash tools/install-packages.sh installs them.", file=sys.stderr)
        return 1
    if not os.path.isdir(os.path.join(options.root, "toolbox")):
        print(f"No built example root at {options.root}: build the target shipped_store first.", file=sys.stderr)
        return 1
    program = unittest.main(module=__name__, argv=[sys.argv[0], "-v"] + rest, exit=False)
    result = program.result
    if not result.wasSuccessful():
        return 1
    if result.testsRun and len(result.skipped) == result.testsRun:
        return 77
    return 0


if __name__ == "__main__":
    sys.exit(main())
