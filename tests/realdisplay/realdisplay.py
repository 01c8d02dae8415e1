"""Drives the real `tdlb browse` the way a person does: under a virtual X
server (Xvfb) with a window manager (openbox), with real X input events
from xdotool. What the window shows is read from its state log
(`tdlb browse --state-log FILE`), from screenshots and from the files it
writes; nothing reaches into the process.

Every wait has a time-out and polls; none is a fixed sleep alone. The
time-outs are generous for a loaded two-core machine and grow with
TDLB_REALDISPLAY_TIME_SCALE (a factor, default 1).
"""

import json
import os
import shutil
import signal
import subprocess
import time

TOOLS = ("Xvfb", "openbox", "xdotool", "xprop", "xwininfo", "import")
TIME_SCALE = float(os.environ.get("TDLB_REALDISPLAY_TIME_SCALE", "1"))
BROWSER_TITLE = "Tandril Library Browser"


class HarnessError(Exception):
    """The harness itself could not do its work (a tool is missing, a server
    did not start): a failure of the run, never a skip."""


def missing_tools():
    return [tool for tool in TOOLS if shutil.which(tool) is None]


def wait_for(predicate, what, timeout=20.0, interval=0.05):
    """Polls until predicate() gives a true value and returns it; fails
    with what was awaited and the last value seen."""
    deadline = time.monotonic() + timeout * TIME_SCALE
    value = None
    while True:
        value = predicate()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"timed out after {timeout * TIME_SCALE:.0f} s waiting for {what}; last seen: {value!r}")
        time.sleep(interval)


class Display:
    """An X server of its own on a display number it picks itself, with a
    window manager, so that windows get frames, focus and the close key."""

    def __init__(self, workdir, size="1280x1024x24"):
        self.workdir = workdir
        self.processes = []
        self.logs = []
        read_end, write_end = os.pipe()
        xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", size, "-dpi", "96", "-nolisten", "tcp"],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=self._log("xvfb.log"))
        os.close(write_end)
        self.processes.append(xvfb)
        number = b""
        with os.fdopen(read_end, "rb") as pipe:
            number = pipe.readline().strip()
        if not number:
            self.stop()
            raise HarnessError("Xvfb did not start (see xvfb.log in " + workdir + ")")
        try:
            self._start_window_manager(number.decode())
        except BaseException:
            # Nothing of a display that failed to come up outlives it.
            self.stop()
            raise

    def _start_window_manager(self, number):
        self.name = ":" + number
        # A sanitized tdlb reports leaks at its end: those of libraries that
        # are not ours are suppressed by name.
        suppressions = os.path.join(os.path.dirname(os.path.abspath(__file__)), "lsan.supp")
        self.env = dict(os.environ, DISPLAY=self.name, QT_QPA_PLATFORM="xcb",
                        LSAN_OPTIONS=f"suppressions={suppressions}")
        self.env.pop("WAYLAND_DISPLAY", None)
        openbox = subprocess.Popen(["openbox", "--sm-disable"], env=self.env, stdout=subprocess.DEVNULL,
                                   stderr=self._log("openbox.log"))
        self.processes.append(openbox)
        # The manager is up when it has announced itself on the root window;
        # one that ended says why in its log, rather than after the time-out.
        def announced():
            if openbox.poll() is not None:
                with open(os.path.join(self.workdir, "openbox.log")) as log:
                    raise HarnessError(f"openbox ended ({openbox.returncode}): {log.read().strip()}")
            return "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK", check=False)
        wait_for(announced, "the window manager", timeout=30)

    def _log(self, name):
        log = open(os.path.join(self.workdir, name), "w")
        self.logs.append(log)
        return log

    def run(self, *command, check=True):
        result = subprocess.run(command, env=self.env, capture_output=True, text=True, timeout=60 * TIME_SCALE)
        if check and result.returncode != 0:
            raise HarnessError(f"{' '.join(command)} failed ({result.returncode}): {result.stderr.strip()}")
        return result.stdout

    def xdotool(self, *arguments, check=True):
        return self.run("xdotool", *arguments, check=check)

    def key(self, *keys):
        """Real key presses, as from the keyboard (XTEST), to whatever has the focus."""
        self.xdotool("key", "--delay", "60", *keys)

    def type(self, text):
        self.xdotool("type", "--delay", "40", text)

    def click(self, x, y, button=1):
        self.xdotool("mousemove", "--sync", str(x), str(y))
        self.xdotool("click", str(button))

    def drag(self, start, end, steps=12):
        """Presses at start, moves to end in steps, as a hand does, releases."""
        self.xdotool("mousemove", "--sync", str(start[0]), str(start[1]))
        self.xdotool("mousedown", "1")
        for i in range(1, steps + 1):
            x = start[0] + (end[0] - start[0]) * i // steps
            y = start[1] + (end[1] - start[1]) * i // steps
            self.xdotool("mousemove", "--sync", str(x), str(y))
            time.sleep(0.02)
        self.xdotool("mouseup", "1")

    def visible_windows(self, pid):
        """The program's windows that the window manager manages: its
        top-level windows and dialogs, not its menus or tool tips."""
        managed = self.run("xprop", "-root", "_NET_CLIENT_LIST", check=False)
        if "#" not in managed:
            return []
        windows = []
        for window in (int(w, 16) for w in managed.split("#", 1)[1].split(",") if w.strip()):
            owner = self.run("xprop", "-id", str(window), "_NET_WM_PID", check=False)
            state = self.run("xprop", "-id", str(window), "WM_STATE", check=False)
            if owner.strip().endswith(f"= {pid}") and "Normal" in state:
                windows.append(window)
        return windows

    def window_name(self, window):
        return self.xdotool("getwindowname", str(window), check=False).strip()

    def frame_rect(self, window):
        """The window with its decorations, on the screen: x, y, width, height."""
        # xwininfo's absolute corner is the client's; xdotool's counts the
        # frame's offset in under a reparenting manager.
        info = {}
        for line in self.run("xwininfo", "-id", str(window)).splitlines():
            if ":" in line:
                key, value = line.split(":", 1)
                info[key.strip()] = value.strip()
        x, y = int(info["Absolute upper-left X"]), int(info["Absolute upper-left Y"])
        w, h = int(info["Width"]), int(info["Height"])
        extents = self.run("xprop", "-id", str(window), "_NET_FRAME_EXTENTS", check=False)
        if "=" in extents:
            left, right, top, bottom = (int(v) for v in extents.split("=", 1)[1].split(","))
            return x - left, y - top, w + left + right, h + top + bottom
        return x, y, w, h

    def screenshot(self, path, rect=None):
        """The screen as it is shown, cut to rect when given (x, y, w, h)."""
        command = ["import", "-window", "root"]
        if rect:
            x, y, w, h = rect
            command += ["-crop", f"{w}x{h}+{x}+{y}", "+repage"]
        self.run(*command, path)
        return path

    def stop(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(timeout=10)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        self.processes = []
        for log in self.logs:
            log.close()
        self.logs = []


class Browser:
    """One run of `tdlb browse` on a root and a preferences directory, with
    its state log; started by `start`, ended by the user or by `kill`."""

    def __init__(self, display, tdlb, root, prefdir, log):
        self.display = display
        self.tdlb = tdlb
        self.root = root
        self.prefdir = prefdir
        self.log = log
        self.process = None
        self.window = None

    def start(self, *arguments):
        if os.path.exists(self.log):
            os.remove(self.log)
        command = [self.tdlb, "--root", self.root, "--prefdir", self.prefdir, "browse", "--state-log", self.log]
        self.output = open(self.log + ".out", "w")
        self.process = subprocess.Popen(command + list(arguments), env=self.display.env, stdout=self.output,
                                        stderr=subprocess.STDOUT)
        self.window = wait_for(self._browser_window, "the browser window", timeout=60)
        self.wait_state(lambda s: s["visible"] and s["enabled"] and s["treeNode"], "a filled tree and page",
                        timeout=60)
        self.activate()
        return self

    def _browser_window(self):
        if self.process.poll() is not None:
            raise AssertionError(f"tdlb browse ended at start with {self.process.returncode}: " + self.output_text())
        for window in self.display.visible_windows(self.process.pid):
            if self.display.window_name(window) == BROWSER_TITLE:
                return window
        return None

    def output_text(self):
        self.output.flush()
        with open(self.log + ".out") as output:
            return output.read()

    def activate(self):
        self.display.xdotool("windowactivate", "--sync", str(self.window))
        wait_for(lambda: self.display.xdotool("getactivewindow", check=False).strip() == str(self.window),
                 "the browser window to be active")

    def state(self):
        """What the window shows now, from the last line of its log."""
        try:
            with open(self.log) as log:
                lines = log.read().splitlines()
        except FileNotFoundError:
            return None
        for line in reversed(lines):
            try:
                return json.loads(line)
            except json.JSONDecodeError:
                continue  # a line being written
        return None

    def wait_state(self, predicate, what, timeout=20):
        def check():
            if self.process.poll() is not None:
                raise AssertionError(f"tdlb browse ended ({self.process.returncode}) while waiting for {what}")
            state = self.state()
            return state if state and predicate(state) else None

        try:
            return wait_for(check, what, timeout)
        except AssertionError as error:
            raise AssertionError(f"{error}\nlast state: {json.dumps(self.state(), indent=1)}") from None

    def wait_settled(self, what, quiet=0.5, timeout=20):
        """Waits until the window's state has not changed for `quiet`
        seconds (a drag's last moves have arrived), and gives it."""
        last = [None, time.monotonic()]

        def check():
            state = self.state()
            now = time.monotonic()
            if state != last[0]:
                last[0], last[1] = state, now
                return None
            return state if now - last[1] >= quiet * TIME_SCALE else None

        return wait_for(check, what, timeout)

    def center_of(self, name):
        x, y, w, h = self.state()["rects"][name]
        return x + w // 2, y + h // 2

    def other_windows(self):
        """Visible top-level windows of the program besides the browser."""
        return [w for w in self.display.visible_windows(self.process.pid) if w != self.window]

    def close_with_window_manager(self):
        """The window manager's close (Alt+F4 in openbox), as from the keyboard."""
        self.activate()
        self.display.key("alt+F4")

    def wait_exit(self, timeout=15):
        try:
            return self.process.wait(timeout=timeout * TIME_SCALE)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"tdlb browse still runs {timeout * TIME_SCALE:.0f} s after its window was closed; "
                                 f"last state: {self.state()}") from None

    def kill(self):
        if self.process and self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(timeout=10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        if self.process:
            self.output.close()
