#!/usr/bin/python3
"""Torture test of one repository store shared by many processes.

Each round edits the library files of a copy of the example root (marker
blocks added, renamed and removed), then starts several processes at once on
one preferences directory: `tdlb update`, `tdlb generate` (minimal and
regenerating), `tdlb search` and Python scripts of the `tandril` package (one
of them holding its repository open across the round), kills some of the
writers with SIGKILL at random moments and, where asked, damages the store or
makes library files hostile. Then it checks:

- every search (the first one after the kills too) answered exactly the
  marker blocks of the library files, or failed loudly (a non-zero exit, or
  an error in the report);
- no process crashed (ended by a signal other than our kills);
- after one more `tdlb update` a search finds every marker block.

Seeded: a run is repeated by its seed. Only the standard library is used.

    torture.py --build build                       # the short form (ctest)
    torture.py --build build --rounds 40 --processes 8 --damage --hostile
"""

import argparse
import json
import os
import random
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import zipfile

MARKER = "Zqx"
STORE = "td_library_browser_repos"

PYTHON_SEARCH = r"""
import json, sys, tandril
from tandril import Repository
tandril.start(root=sys.argv[1], prefdir=sys.argv[2])
repository = Repository.Repository.open()
def search():
    names = sorted(set(hit.Name for hit in repository.findBlocks(sys.argv[3])))
    report = repository.getRepositoryReport()
    errors = [line for line in report.getLog() if "**Error**" in line] + [m for _, m in report.getErrors()]
    return names, errors
first = search()
if len(sys.argv) > 4:
    # Held open while the others work, then asked again.
    sys.stdout.write("ready\n"); sys.stdout.flush()
    sys.stdin.readline()
    first = search()
json.dump({"names": first[0], "errors": first[1]}, sys.stdout)
"""


class Torture:
    def __init__(self, options):
        self.options = options
        self.random = random.Random(options.seed)
        self.build = os.path.abspath(options.build)
        self.tdlb = os.path.join(self.build, "app", "tdlb")
        self.work = tempfile.mkdtemp(prefix="tdlb-torture-", dir=options.work)
        self.root = os.path.join(self.work, "root")
        self.prefs = os.path.join(self.work, "prefs")
        shutil.copytree(os.path.join(self.build, "examples", "root"), self.root)
        self.libraries = sorted(self.product_libraries())
        self.counts = dict(rounds=0, processes=0, kills=0, damages=0, hostile=0, searches=0,
                           loud_failures=0, silent_wrong=0, missing_after_update=0, crashes=0,
                           writer_failures=0)
        self.problems = []
        self.serial = 0
        self.last_edit = 0.0

    # The library files -------------------------------------------------

    def product_libraries(self):
        """The library files of the products (not palettes) of the root."""
        for directory, _, files in os.walk(os.path.join(self.root, "toolbox")):
            if "tdblocks.json" not in files:
                continue
            with open(os.path.join(directory, "tdblocks.json"), encoding="utf-8") as handle:
                entries = json.load(handle)["entries"]
            for entry in entries:
                if entry.get("type", "Product") == "Product":
                    path = os.path.join(directory, entry["library"] + ".tdlib.json")
                    if os.path.isfile(path):
                        yield path

    @staticmethod
    def walk_blocks(blocks):
        for block in blocks:
            yield block
            yield from Torture.walk_blocks(block.get("blocks", []))

    def expected(self):
        names = set()
        for path in self.libraries:
            with open(path, encoding="utf-8") as handle:
                library = json.load(handle)
            names.update(b["name"] for b in self.walk_blocks(library["blocks"]) if MARKER in b["name"])
        return sorted(names)

    def edit_libraries(self, round_number):
        # Edits land in a later second than the generation before them: a
        # same-second edit is the racy case, a mode of its own.
        if not self.options.racy:
            while int(time.time()) <= int(self.last_edit):
                time.sleep(0.05)
        for path in self.libraries:
            if self.random.random() < 0.3:
                continue
            with open(path, encoding="utf-8") as handle:
                library = json.load(handle)
            markers = [b for b in library["blocks"] if MARKER in b["name"]]
            action = self.random.choice(["add", "add", "rename", "remove"])
            if action == "remove" and markers:
                library["blocks"].remove(self.random.choice(markers))
            elif action == "rename" and markers:
                self.random.choice(markers)["name"] = self.marker_name(round_number)
            else:
                block = {"name": self.marker_name(round_number), "type": "Block",
                         "description": "A block of the torture test.", "position": [10, 10, 60, 60],
                         "icon": {"shape": "rectangle", "label": "z", "inputs": 1, "outputs": 1}}
                subsystems = [b for b in library["blocks"] if b.get("type") == "SubSystem"]
                target = self.random.choice(subsystems)["blocks"] if subsystems and self.random.random() < 0.4 \
                    else library["blocks"]
                target.append(block)
            with open(path, "w", encoding="utf-8") as handle:
                json.dump(library, handle, indent=1)
        self.last_edit = time.time()

    def marker_name(self, round_number):
        self.serial += 1
        return "%s r%d n%d" % (MARKER, round_number, self.serial)

    # Damage and hostile files ------------------------------------------

    def archives(self):
        found = []
        for directory, _, files in os.walk(os.path.join(self.prefs, STORE)):
            found += [os.path.join(directory, f) for f in files if f.endswith(".rps")]
        return sorted(found)

    def damage_store(self):
        archives = self.archives()
        top = os.path.join(self.prefs, STORE, "toolbox", "tandril", "blocks", "lbtoplevelmanifest.xml")
        targets = archives + ([top] if os.path.exists(top) else [])
        if not targets:
            return
        target = self.random.choice(targets)
        kind = self.random.choice(["truncate", "garbage", "delete", "entry byte"])
        if kind == "entry byte" and target.endswith(".rps") and not self.change_entry_byte(target):
            kind = "garbage"
        if kind == "truncate":
            with open(target, "r+b") as handle:
                handle.truncate(os.path.getsize(target) // 2)
        elif kind == "garbage":
            with open(target, "r+b") as handle:
                handle.seek(self.random.randrange(max(1, os.path.getsize(target))))
                handle.write(bytes(self.random.randrange(256) for _ in range(64)))
        elif kind == "delete":
            os.remove(target)
        self.counts["damages"] += 1

    def change_entry_byte(self, archive):
        """Changes one byte inside a stored entry; the zip directory stays whole."""
        try:
            with zipfile.ZipFile(archive) as handle:
                infos = [i for i in handle.infolist() if i.compress_type == zipfile.ZIP_STORED and i.file_size]
        except (zipfile.BadZipFile, OSError):
            return False
        if not infos:
            return False
        info = self.random.choice(infos)
        with open(archive, "r+b") as handle:
            handle.seek(info.header_offset + 26)
            name_length = int.from_bytes(handle.read(2), "little")
            extra_length = int.from_bytes(handle.read(2), "little")
            offset = info.header_offset + 30 + name_length + extra_length + self.random.randrange(info.file_size)
            handle.seek(offset)
            byte = handle.read(1)
            handle.seek(offset)
            handle.write(bytes([byte[0] ^ 0x20]))
        return True

    def add_hostile_files(self, round_number):
        """A palette cycle and a diamond of library references, once."""
        if round_number != 1:
            return
        directory = os.path.join(self.root, "toolbox", "hostile")
        os.makedirs(directory, exist_ok=True)
        depth = 12
        for level in range(depth):
            blocks = [{"name": "%s leaf %d" % (MARKER, level), "type": "Block", "description": "",
                       "position": [0, 0, 10, 10], "icon": {"shape": "rectangle"}}]
            if level + 1 < depth:
                for copy in ("a", "b"):
                    blocks.append({"name": "ref %s" % copy, "type": "LibraryRef", "description": "",
                                   "position": [0, 0, 10, 10], "icon": {"shape": "rectangle"},
                                   "target": {"library": "fan%d" % (level + 1)}})
            with open(os.path.join(directory, "fan%d.tdlib.json" % level), "w", encoding="utf-8") as handle:
                json.dump({"format": "tandril-library", "version": 1, "name": "fan%d" % level,
                           "description": "", "blocks": blocks}, handle)
        entries = [{"name": "Fan Out", "library": "fan0", "type": "Product", "repository": "fanout",
                    "dependencies": ["fan%d.tdlib.json" % level for level in range(depth)]},
                   {"name": "Cycle A", "library": "cycle_a", "type": "Palette", "repository": "cycle_a",
                    "children": ["Cycle B"]},
                   {"name": "Cycle B", "library": "cycle_b", "type": "Palette", "repository": "cycle_b",
                    "children": ["Cycle A", "Fan Out"]}]
        with open(os.path.join(directory, "tdblocks.json"), "w", encoding="utf-8") as handle:
            json.dump({"format": "tandril-tdblocks", "version": 1, "entries": entries}, handle)
        self.libraries += [os.path.join(directory, "fan%d.tdlib.json" % level) for level in range(depth)]
        self.counts["hostile"] += 1

    # Processes ---------------------------------------------------------

    def environment(self):
        env = dict(os.environ)
        env["PYTHONPATH"] = os.path.join(self.build, "python")
        env["QT_QPA_PLATFORM"] = "offscreen"
        env["PYTHONDONTWRITEBYTECODE"] = "1"
        return env

    def tdlb_command(self, *arguments):
        return [self.tdlb, "--root", self.root, "--prefdir", self.prefs] + list(arguments)

    def python_command(self, held=False):
        return [sys.executable, "-c", PYTHON_SEARCH, self.root, self.prefs, MARKER] + (["held"] if held else [])

    def start(self, kind, command, held=False):
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   stdin=subprocess.PIPE if held else subprocess.DEVNULL,
                                   env=self.environment(), text=True)
        self.counts["processes"] += 1
        return {"kind": kind, "process": process, "killed": False, "command": command, "before": None}

    def run_round(self, round_number):
        self.counts["rounds"] += 1
        if self.options.hostile:
            self.add_hostile_files(round_number)
        held = self.start("held python", self.python_command(held=True), held=True)
        ready = held["process"].stdout.readline().strip() == "ready"
        # The held repository read the store before the edits: it may answer
        # as the store was then, or as it is now, but not short of either.
        held["before"] = self.expected()
        self.edit_libraries(round_number)
        if self.options.damage and self.random.random() < 0.7:
            self.damage_store()
        expected = self.expected()

        kinds = ["update", "update", "generate", "regenerate", "search", "search", "python"]
        jobs = []
        for _ in range(self.options.processes):
            kind = self.random.choice(kinds)
            if kind == "update":
                jobs.append(self.start(kind, self.tdlb_command("update")))
            elif kind == "generate":
                jobs.append(self.start(kind, self.tdlb_command("generate")))
            elif kind == "regenerate":
                jobs.append(self.start(kind, self.tdlb_command("generate", "--mode", "Regenerate")))
            elif kind == "search":
                jobs.append(self.start(kind, self.tdlb_command("search", "--json", MARKER)))
            else:
                jobs.append(self.start(kind, self.python_command()))
        # Kills: writers only, at a random moment of their work.
        started = time.time()
        writers = [j for j in jobs if j["kind"] in ("update", "generate", "regenerate")]
        kills = sorted((self.random.uniform(0.02, 0.4), n) for n, job in enumerate(writers)
                       if self.random.random() < self.options.kill_rate)
        for moment, n in kills:
            time.sleep(max(0.0, started + moment - time.time()))
            job = writers[n]
            if job["process"].poll() is None:
                job["process"].send_signal(signal.SIGKILL)
                job["killed"] = True
                self.counts["kills"] += 1
        if ready:
            held["process"].stdin.write("\n")
            held["process"].stdin.flush()
        for job in jobs + [held]:
            self.finish(job, expected, round_number)

        # The first read after the kills, before any repair: whole or loud.
        first = self.start("search", self.tdlb_command("search", "--json", MARKER))
        self.finish(first, expected, round_number)

        # The next update must leave a complete store.
        update = subprocess.run(self.tdlb_command("update"), capture_output=True, text=True, env=self.environment(),
                                timeout=self.options.timeout)
        search = subprocess.run(self.tdlb_command("search", "--json", MARKER), capture_output=True, text=True,
                                env=self.environment(), timeout=self.options.timeout)
        found = self.tdlb_names(search.stdout)
        if update.returncode != 0 or search.returncode != 0 or found != expected:
            missing = sorted(set(expected) - set(found or []))
            self.counts["missing_after_update"] += len(missing) or 1
            self.problems.append("round %d: after update (exit %d, search exit %d) missing %s, extra %s\n%s%s"
                                 % (round_number, update.returncode, search.returncode, missing,
                                    sorted(set(found or []) - set(expected)), update.stderr[-2000:],
                                    search.stderr[-2000:]))

    @staticmethod
    def tdlb_names(stdout):
        try:
            document = json.loads(stdout)
        except ValueError:
            return None
        return sorted(set(hit["path"].rsplit("/", 1)[-1] for p in document["products"] for hit in p["hits"]))

    def finish(self, job, expected, round_number):
        try:
            stdout, stderr = job["process"].communicate(timeout=self.options.timeout)
        except subprocess.TimeoutExpired:
            job["process"].kill()
            stdout, stderr = job["process"].communicate()
            self.problems.append("round %d: %s hung" % (round_number, job["kind"]))
        code = job["process"].returncode
        if code < 0 and not (job["killed"] and code == -signal.SIGKILL):
            self.counts["crashes"] += 1
            self.problems.append("round %d: %s crashed with signal %d\n%s" % (round_number, job["kind"], -code,
                                                                             stderr[-2000:]))
            return
        if job["killed"]:
            return
        if job["kind"] in ("search", "python", "held python"):
            self.counts["searches"] += 1
            if job["kind"] == "search":
                found = self.tdlb_names(stdout)
                loud = code != 0 or "error" in stderr.lower()
            else:
                try:
                    result = json.loads(stdout)
                    found, loud = result["names"], code != 0 or bool(result["errors"])
                except ValueError:
                    found, loud = None, True
            if found == expected or (found is not None and found == job.get("before")):
                return
            if loud:
                self.counts["loud_failures"] += 1
                return
            self.counts["silent_wrong"] += 1
            self.problems.append("round %d: %s answered silently wrong: missing %s, extra %s"
                                 % (round_number, job["kind"], sorted(set(expected) - set(found or [])),
                                    sorted(set(found or []) - set(expected))))
        elif code != 0:
            # Writers take turns: none may fail because another one works.
            self.counts["writer_failures"] += 1
            self.problems.append("round %d: %s failed with exit %d: %s" % (round_number, job["kind"], code,
                                                                        stderr.strip()[-1500:]))

    def run(self):
        first = subprocess.run(self.tdlb_command("update"), capture_output=True, text=True, env=self.environment(),
                               timeout=self.options.timeout)
        if first.returncode != 0:
            self.problems.append("the first update failed: " + first.stderr)
        for round_number in range(1, self.options.rounds + 1):
            self.run_round(round_number)
        return self.counts


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True, help="the build directory (with app/tdlb and python/)")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--processes", type=int, default=5, help="processes started together in each round")
    parser.add_argument("--kill-rate", type=float, default=0.3, help="share of writers killed with SIGKILL")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--damage", action="store_true", help="damage the writable store each round")
    parser.add_argument("--hostile", action="store_true", help="add a palette cycle and a reference fan-out")
    parser.add_argument("--racy", action="store_true", help="allow edits within the second of a generation")
    parser.add_argument("--timeout", type=float, default=300, help="seconds one process may take")
    parser.add_argument("--work", default=None, help="where the copies of the root go")
    parser.add_argument("--keep", action="store_true", help="keep the work directory")
    options = parser.parse_args()

    torture = Torture(options)
    started = time.time()
    try:
        counts = torture.run()
    finally:
        if not options.keep:
            shutil.rmtree(torture.work, ignore_errors=True)
    problems = torture.problems
    for line in problems:
        print(line)
    print("seed %d, %d processes per round x %d rounds, modes: %s" % (
        options.seed, options.processes, counts["rounds"],
        ", ".join(m for m in ("damage", "hostile", "racy") if getattr(options, m)) or "sessions and kills"))
    # The largest resident size of any process the run started (tdlb or Python).
    peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024
    print(" ".join("%s=%d" % item for item in counts.items())
          + " peak_process_mb=%d seconds=%.0f" % (peak, time.time() - started))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
