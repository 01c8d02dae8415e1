#!/usr/bin/python3
"""End-to-end benchmarks of tdlb on synthetic roots of many blocks.

Roots of up to 100,000 blocks have 100 products; larger ones products of
1,000 blocks (1,000 products at a million), as a site that installs every
library it finds has many products rather than huge ones. For each root size
and icon kind (the generator's simple shapes, and
realistic SVG documents of 50 to 200 elements) it makes the root, its shipped
store, and then measures, each several times in new processes: cold
generation of the writable store, in a quiet file system and right after the
previous run's store was removed (the worst case for creating files), `update`
with nothing changed, regeneration after one library changed, a cold
`search`, a full `tree`, and (in process, Google Benchmark) a warm search.
Every figure stands beside a floor measured in the same run on the same
files: `zip -r` of the stored icons and manifests, `unzip -p` of every
manifests archive, reading the files `update` reads, and the bare expression
loop over the shown names. With more than one size, a table per icon kind
gives each figure per block (per library changed for that measure) at every
size beside its ratio to the floor, and the goals of the largest size
against 100,000 blocks. The results replace the section between the markers
in BENCHMARKS.md (or are appended to it).

    bench/scale/run_scale_benchmarks.py --build BUILD_DIR [--sizes 10000,100000]
        [--icons shapes,realistic] [--runs 3 | --runs 3,3,1] [--pattern TEXT]
        [--work DIR] [--output BENCHMARKS.md]
"""

import argparse
import datetime
import json
import os
import pathlib
import re
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

BEGIN = "<!-- tdlb-scale:begin -->"
END = "<!-- tdlb-scale:end -->"
PRODUCTS = 100
BLOCKS_PER_LARGE_PRODUCT = 1000
DEFAULT_PATTERN = "Block 12"
# Goals for the 100,000-block root with shape icons, in a quiet file system:
# (wall seconds or None, largest ratio to the floor or None). Peak memory in MB.
GOALS = {
    "cold generation": (20.0, 3.0),
    "update, nothing changed": (1.0, None),
    "generate, one library changed": (None, 2.5),
    "cold search": (5.0, 1.5),
    "full tree": (5.0, 1.5),
    "warm search (in process)": (0.1, 1.5),
}
MEMORY_GOAL = 194
# Goals of the largest size against 100,000 blocks, for each icon kind: the
# largest growth of the cost per block (per library for one library changed)
# and the largest ratio to the floor of the same run.
GROWTH_GOALS = {
    "cold generation": (1.2, 1.5),
    "update, nothing changed": (1.2, 1.5),
    "generate, one library changed": (1.2, 2.5),
    "cold search": (1.2, 1.5),
    "full tree": (1.2, 1.5),
}
# The cold search at the largest size: wall seconds and peak memory in MB.
LARGE_SEARCH_GOAL = (10.0, 1024)
STORE = "toolbox/tandril/tandril/private/td_library_browser_repos"
TOP_LEVEL = "td_library_browser_repos/toolbox/tandril/blocks/lbtoplevelmanifest.xml"
VERIFIED = "td_library_browser_repos/toolbox/tandril/blocks/verified"


class BenchmarkError(Exception):
    pass


def products_for(blocks):
    return PRODUCTS if blocks <= PRODUCTS * BLOCKS_PER_LARGE_PRODUCT else blocks // BLOCKS_PER_LARGE_PRODUCT


def run_measured(command, capture=False):
    """Runs one process; returns (seconds, CPU seconds, peak resident MB, its standard output or None)."""
    with tempfile.TemporaryFile("w+") as out, tempfile.TemporaryFile("w+") as err:
        start = time.perf_counter()
        process = subprocess.Popen(command, stdout=out if capture else subprocess.DEVNULL, stderr=err, text=True)
        # wait4 gives this child's own peak, not the largest of all children so far.
        _, status, usage = os.wait4(process.pid, 0)
        elapsed = time.perf_counter() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            err.seek(0)
            raise BenchmarkError(f"{' '.join(map(str, command))} exited with {process.returncode}:\n"
                                 f"{err.read()[-2000:]}")
        out.seek(0)
        return elapsed, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024.0, out.read() if capture else None


def run_shell(script):
    """A floor made of standard tools: wall time of one shell script."""
    # From standard input: a script naming a thousand products' files is
    # longer than the system takes as one argument.
    start = time.perf_counter()
    result = subprocess.run(["sh", "-s"], input=script, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                            text=True)
    if result.returncode != 0:
        raise BenchmarkError(f"floor script failed: {script[:200]}\n{result.stderr[-2000:]}")
    return time.perf_counter() - start


class Measure:
    """The runs of one figure and of its floor."""

    def __init__(self, name, command, floor_name):
        self.name = name
        self.command = command
        self.floor_name = floor_name
        self.times = []
        self.cpu_times = []
        self.peaks = []
        self.floor_times = []

    def median(self):
        return statistics.median(self.times)

    def floor(self):
        return statistics.median(self.floor_times) if self.floor_times else float("nan")

    def cpu(self):
        return statistics.median(self.cpu_times) if self.cpu_times else float("nan")

    def peak(self):
        return max(self.peaks) if self.peaks else float("nan")


class ScaleRun:
    def __init__(self, build, work, blocks, icons, runs, pattern, log, reuse_root=False):
        self.tdlb = build / "app" / "tdlb"
        self.shipped = build / "app" / "tdlb_shipped_store"
        self.generator = build / "bench" / "host" / "td_make_synthetic_root"
        self.search_bench = build / "bench" / "search" / "bench_search"
        for program in (self.tdlb, self.shipped, self.generator, self.search_bench):
            if not program.exists():
                raise BenchmarkError(f"{program} is missing: build the targets tdlb, tdlb_shipped_store, "
                                     "td_make_synthetic_root and bench_search first")
        self.blocks = blocks
        self.products = products_for(blocks)
        self.icons = icons
        self.runs = runs
        self.pattern = pattern
        self.root = work / f"root-{blocks}-{icons}"
        self.prefs = work / f"prefs-{blocks}-{icons}"
        self.stage = work / f"stage-{blocks}-{icons}"
        self.log = log
        self.reuse_root = reuse_root
        self.measures = []

    def tdlb_command(self, *arguments):
        return [str(self.tdlb), "--root", str(self.root), "--prefdir", str(self.prefs), *arguments]

    def title(self):
        return f"{self.blocks:,} blocks in {self.products:,} products, {self.icons} icons"

    def say(self, text):
        self.log(f"[{self.title()}] {text}")

    def prepare(self):
        keep_root = self.reuse_root and (self.root / STORE).is_dir()
        for path in (self.prefs, self.stage, *self.prefs.parent.glob(f"{self.prefs.name}-*")):
            shutil.rmtree(path, ignore_errors=True)
        if keep_root:
            self.say("using the root and shipped store an earlier run made")
            return
        shutil.rmtree(self.root, ignore_errors=True)
        self.say("making the root and its shipped store")
        run_measured([str(self.generator), "--out", str(self.root), "--products", str(self.products), "--blocks",
                      str(self.blocks // self.products), "--refs", "none", "--icons", self.icons])
        run_measured([str(self.shipped), str(self.root)])

    def archives(self, kind):
        return sorted((self.prefs / "td_library_browser_repos").glob(f"*/lb_*_{kind}_repos.rps"))

    def stage_archives(self):
        """Unpacks the writable store, once, for the zip floors."""
        shutil.rmtree(self.stage, ignore_errors=True)
        for archive in self.archives("icons") + self.archives("manifests"):
            target = self.stage / archive.parent.name / archive.stem
            target.mkdir(parents=True)
            subprocess.run(["unzip", "-q", str(archive), "-d", str(target)], check=True)

    def zip_floor(self, directories):
        script = " && ".join(f"(cd '{d}' && rm -f ../{d.name}.zip && zip -q -r ../{d.name}.zip .)"
                             for d in directories)
        return run_shell(script)

    def unzip_floor(self):
        names = " ".join(f"'{a}'" for a in self.archives("manifests"))
        return run_shell(f"for a in {names}; do unzip -p \"$a\"; done > /dev/null")

    def measure(self, name, command, floor_name, before=None, floor=None, capture=False):
        """command is the argument list, or a function giving it just before each run."""
        measure = Measure(name, command, floor_name)
        self.say(name)
        for run in range(self.runs):
            if before:
                before(run)
            elapsed, cpu, peak, output = run_measured(command() if callable(command) else command, capture)
            measure.times.append(elapsed)
            measure.cpu_times.append(cpu)
            measure.peaks.append(peak)
            if floor:
                measure.floor_times.append(floor())
        self.measures.append(measure)
        return measure, output

    def edit_one_library(self, run):
        library = self.root / "toolbox/synthetic/synth_0000/synth_0000.tdlib.json"
        text = library.read_text()
        # The text differs from every earlier run's too: a root kept by
        # --reuse-roots already holds "Edited in run 0.", and a library whose
        # checksum is unchanged is rightly not generated again.
        text = re.sub(r'"description": "[^"]*"', f'"description": "Edited in run {run} at {time.time_ns()}."', text,
                      count=1)
        library.write_text(text)
        # Dated ahead, so that a minimal generation cannot take it for unchanged.
        stamp = time.time() + 60 * (run + 1)
        os.utime(library, (stamp, stamp))

    def run(self):
        self.prepare()

        # Each cold run writes a store of its own: removing the last run's
        # files first would make the file system pay for them in this run.
        final_prefs = self.prefs

        def fresh_prefs(run):
            self.prefs = final_prefs.with_name(f"{final_prefs.name}-cold{run}")

        cold, _ = self.measure("cold generation", lambda: self.tdlb_command("generate", "--mode", "Regenerate"),
                               "`zip -r` of every stored archive's files", before=fresh_prefs)

        # The same runs again, each right after the store of the run before
        # it was removed: the file system then pays for the freed files when
        # the next run creates its own.
        def removed_prefs(run):
            shutil.rmtree(self.prefs)
            self.prefs = final_prefs.with_name(f"{final_prefs.name}-removed{run}")

        removed, _ = self.measure("cold generation, right after removal",
                                  lambda: self.tdlb_command("generate", "--mode", "Regenerate"),
                                  "`zip -r` of every stored archive's files", before=removed_prefs)
        self.prefs.rename(final_prefs)
        self.prefs = final_prefs
        # The store's record of archives read whole names them by path: the
        # first update after the rename reads every archive whole once, which
        # is not what "nothing changed" measures.
        run_measured(self.tdlb_command("update"))
        # The first generation over a new store reads each shipped archive
        # whole once, to find damage, and notes it in the store's record;
        # later ones trust the record while the archive is unchanged. Each
        # run starts from the record as the update left it.
        verified = self.prefs / VERIFIED
        unverified = verified.read_bytes()
        shipped = " ".join(f"'{p}'" for p in sorted((self.root / STORE).glob("*/lb_*_repos.rps")))
        self.measure("generate, first over a new store", self.tdlb_command("generate"),
                     "`unzip -tq` of every shipped archive", before=lambda run: verified.write_bytes(unverified),
                     floor=lambda: run_shell(f"for a in {shipped}; do unzip -tq \"$a\"; done"))
        for measure in (cold, removed):
            measure.command = self.tdlb_command("generate", "--mode", "Regenerate")
        self.stage_archives()
        product_dirs = sorted(p for p in self.stage.glob("*/*") if p.is_dir())
        cold.floor_times = [self.zip_floor(product_dirs) for _ in range(self.runs)]
        removed.floor_times = cold.floor_times
        for left in final_prefs.parent.glob(f"{final_prefs.name}-cold*"):
            shutil.rmtree(left)

        top = self.prefs / TOP_LEVEL
        libraries = " ".join(f"'{p}'" for p in sorted((self.root / "toolbox/synthetic").glob("*/*.json")))
        self.measure("update, nothing changed", self.tdlb_command("update"),
                     "reading the top-level manifest and every tdblocks and library file",
                     floor=lambda: run_shell(f"cat '{top}' {libraries} > /dev/null"))

        one_product = [p for p in product_dirs if p.parent.name == "synth_0000"]
        archive = self.archives("manifests")[0]
        before = archive.stat().st_mtime_ns
        self.measure("generate, one library changed", self.tdlb_command("generate"),
                     "`zip -r` of that product's archives' files", before=self.edit_one_library,
                     floor=lambda: self.zip_floor(one_product))
        if archive.stat().st_mtime_ns == before:
            raise BenchmarkError(f"the changed library was not regenerated: {archive} is as it was")

        search, output = self.measure("cold search", self.tdlb_command("search", self.pattern, "--json"),
                                      "`unzip -p` of every manifests archive", floor=self.unzip_floor,
                                      capture=True)
        search.hits = json.loads(output)["total"]

        tree, output = self.measure("full tree", self.tdlb_command("tree"), "`unzip -p` of every manifests archive",
                                    floor=self.unzip_floor, capture=True)
        tree.lines = output.count("\n")

        self.warm_search()

    def warm_search(self):
        self.say("warm search")
        command = [str(self.search_bench), "--root", str(self.root), "--prefdir", str(self.prefs), "--pattern",
                   self.pattern, f"--benchmark_repetitions={max(self.runs, 3)}", "--benchmark_format=json"]
        _, _, peak, output = run_measured(command, capture=True)
        results = json.loads(output)["benchmarks"]

        def median_of(name):
            for entry in results:
                if entry.get("run_name") == name and entry.get("aggregate_name") == "median":
                    return entry["real_time"] / 1000.0, entry.get("hits", 0), entry["cpu_time"] / 1000.0
            raise BenchmarkError(f"bench_search gave no median for {name}")

        warm = Measure("warm search (in process)", command[:-2], "the bare `QRegExp` loop over the shown names")
        warm_time, warm.hits, _ = median_of("WarmSearch")
        warm.times = [warm_time]
        warm.cpu_times = [median_of("WarmSearch")[2]]
        warm.floor_times = [median_of("BareExpressionLoop")[0]]
        warm.peaks = [peak]
        self.measures.append(warm)


def seconds(value):
    if value != value:
        return "n/a"
    if value < 1e-5:
        return f"{value * 1e9:.0f} ns"
    if value < 0.001:
        return f"{value * 1e6:.0f} µs"
    if value < 0.01:
        return f"{value * 1000:.1f} ms"
    return f"{value * 1000:.0f} ms" if value < 1 else f"{value:.2f} s"


PROJECT = pathlib.Path(__file__).resolve().parents[2]


def build_name(build):
    """The build directory as commands show it: relative to the project's root when it lies inside."""
    try:
        return str(build.resolve().relative_to(PROJECT))
    except ValueError:
        return "BUILD"


def command_text(command, run):
    text = shlex.join(str(c) for c in command)
    build = run.tdlb.parent.parent
    for path, name in ((run.root, "ROOT"), (run.prefs, "PREFS"), (build, build_name(build))):
        text = text.replace(str(path), name)
    return text


def ratio_of(measure):
    floor = measure.floor()
    return measure.median() / floor if floor == floor and floor > 0 else float("nan")


def target_text(run, measure):
    if run.blocks != 100_000 or run.icons != "shapes" or measure.name not in GOALS:
        return ""
    wall, ratio = GOALS[measure.name]
    parts, met = [], measure.peak() <= MEMORY_GOAL
    if wall is not None:
        parts.append(f"< {seconds(wall)}")
        met = met and measure.median() < wall
    if ratio is not None:
        parts.append(f"<= {ratio:.1f}x floor")
        met = met and ratio_of(measure) <= ratio
    parts.append(f"<= {MEMORY_GOAL} MB")
    return f"{', '.join(parts)}: {'met' if met else 'missed'}"


def per_unit(run, measure):
    """Seconds per block, or per library for the one changed library: (figure, floor)."""
    unit = 1 if measure.name == "generate, one library changed" else run.blocks
    return measure.median() / unit, measure.floor() / unit


def growth_goal_text(reference, largest, measure):
    """Goal of the largest size against the 100,000-block run, met or missed, or the empty string."""
    if reference is None or measure.name not in GROWTH_GOALS:
        return ""
    growth_limit, floor_limit = GROWTH_GOALS[measure.name]
    before = next((m for m in reference.measures if m.name == measure.name), None)
    if before is None:
        return ""
    growth = per_unit(largest, measure)[0] / per_unit(reference, before)[0]
    met = growth <= growth_limit and ratio_of(measure) <= floor_limit
    parts = [f"<= {growth_limit:.1f}x per {'library' if measure.name.startswith('generate,') else 'block'} "
             f"of {reference.blocks:,} blocks", f"<= {floor_limit:.1f}x floor"]
    if measure.name == "cold search":
        wall, memory = LARGE_SEARCH_GOAL
        parts += [f"< {seconds(wall)}", f"< {memory} MB"]
        met = met and measure.median() < wall and measure.peak() < memory
    return f"{', '.join(parts)}: {'met' if met else 'missed'}"


def growth_table(runs):
    """Each figure per block at every size of one icon kind, beside its ratio to the floor."""
    runs = sorted(runs, key=lambda run: run.blocks)
    if len(runs) < 2:
        return []
    largest = runs[-1]
    reference = next((run for run in runs if run.blocks == PRODUCTS * BLOCKS_PER_LARGE_PRODUCT), None)
    if reference is largest:
        reference = None
    previous = runs[-2]
    lines = [f"### Per block, {largest.icons} icons", "",
             "Each figure divided by the blocks of its root (\"generate, one library changed\": per library, "
             "the figure itself), the ratio to the floor of the same run in parentheses; growth is the cost "
             f"per block at {largest.blocks:,} blocks over that at {previous.blocks:,}.", "",
             "| Measure | " + " | ".join(f"{run.blocks:,} blocks" for run in runs)
             + f" | Growth | Goal ({largest.blocks:,} blocks) |",
             "|---|" + "---|" * len(runs) + "---|---|"]
    for measure in largest.measures:
        cells, figures = [], []
        for run in runs:
            same = next((m for m in run.measures if m.name == measure.name), None)
            if same is None:
                cells.append("n/a")
                figures.append(float("nan"))
                continue
            figure, _ = per_unit(run, same)
            ratio = ratio_of(same)
            figures.append(figure)
            cells.append(f"{seconds(figure)} ({ratio:.1f}x)" if ratio == ratio else seconds(figure))
        growth = figures[-1] / figures[-2] if figures[-2] == figures[-2] and figures[-2] > 0 else float("nan")
        lines.append(f"| {measure.name} | " + " | ".join(cells)
                     + f" | {growth:.2f} | {growth_goal_text(reference, largest, measure)} |")
    lines.append("")
    return lines


def section(runs, pattern, invocation, started):
    load = os.getloadavg()
    lines = [
        BEGIN,
        "## Command line at scale",
        "",
        "Written by `bench/scale/run_scale_benchmarks.py`; do not edit by hand. Roots of "
        f"{PRODUCTS} products up to {PRODUCTS * BLOCKS_PER_LARGE_PRODUCT:,} blocks and of products of "
        f"{BLOCKS_PER_LARGE_PRODUCT:,} blocks above, from `td_make_synthetic_root --refs none --icons KIND` (each "
        f"product reaches only its own library), searched for \"{pattern}\". Each figure is the median of its runs, each run a new "
        "process except the warm search; peak memory is the largest resident set of the runs. The floor is "
        "measured in the same run on the same files; the ratio is figure / floor. A quiet cold generation "
        "writes a new store beside the earlier ones; one \"right after removal\" first removes the store of "
        "the run before it, so that the file system pays for those files while this run creates its own.",
        "",
        f"Run on {started:%Y-%m-%d %H:%M} UTC, {os.cpu_count()} cores, load average {load[0]:.1f} at the end, "
        f"with:",
        "",
        "```",
        invocation,
        "```",
        "",
    ]
    for run in runs:
        lines += [f"### {run.title()} ({run.runs} runs each)", "",
                  "| Measure | Median | CPU (user + sys) | Peak memory | Floor | Floor median | Ratio | "
                  "Goal (100,000 blocks, shapes) |",
                  "|---|---|---|---|---|---|---|---|"]
        for m in run.measures:
            ratio = ratio_of(m)
            ratio_text = f"{ratio:.1f}" if ratio == ratio else "n/a"
            lines.append(f"| {m.name} | {seconds(m.median())} | {seconds(m.cpu())} | {m.peak():.0f} MB | "
                         f"{m.floor_name} | {seconds(m.floor())} | {ratio_text} | {target_text(run, m)} |")
        extra = [f"{m.name}: {m.hits:.0f} hits" for m in run.measures if hasattr(m, "hits")]
        extra += [f"tree: {m.lines} lines" for m in run.measures if hasattr(m, "lines")]
        lines += ["", "Checks: " + "; ".join(extra) + ".", "", "Commands:", "", "```"]
        lines += [command_text(m.command, run) for m in run.measures]
        lines += ["```", ""]
    for icons in dict.fromkeys(run.icons for run in runs):
        lines += growth_table([run for run in runs if run.icons == icons])
    lines.append(END)
    return "\n".join(lines) + "\n"


def write_section(path, text):
    old = path.read_text() if path.exists() else "# Benchmarks\n"
    if BEGIN in old and END in old:
        new = old[: old.index(BEGIN)] + text + old[old.index(END) + len(END) + 1:]
    else:
        new = old.rstrip("\n") + "\n\n" + text
    path.write_text(new)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--build", required=True, type=pathlib.Path, help="the build directory")
    parser.add_argument("--sizes", default="10000,100000", help="block counts, comma separated")
    parser.add_argument("--icons", default="shapes,realistic",
                        help="icon kinds of the synthetic roots, comma separated (default shapes,realistic)")
    parser.add_argument("--runs", default="3",
                        help="runs of each measure (default 3), or one number per size, comma separated")
    parser.add_argument("--pattern", default=DEFAULT_PATTERN, help=f"what to search for (default '{DEFAULT_PATTERN}')")
    parser.add_argument("--work", type=pathlib.Path, help="where the roots go (default: a temporary directory)")
    parser.add_argument("--reuse-roots", action="store_true",
                        help="keep a root and shipped store that an earlier run left in --work")
    parser.add_argument("--output", type=pathlib.Path, default=PROJECT / "BENCHMARKS.md",
                        help="the file whose section is rewritten")
    arguments = parser.parse_args()
    try:
        sizes = [int(s) for s in arguments.sizes.split(",")]
        runs_per_size = [int(r) for r in arguments.runs.split(",")]
    except ValueError:
        parser.error("--sizes and --runs take whole numbers separated by commas")
    if len(runs_per_size) == 1:
        runs_per_size *= len(sizes)
    if len(runs_per_size) != len(sizes):
        parser.error("--runs takes one number, or one for each size")
    icon_kinds = arguments.icons.split(",")
    if any(kind not in ("shapes", "realistic") for kind in icon_kinds):
        parser.error("--icons takes shapes, realistic or both, separated by a comma")
    if any(r < 1 for r in runs_per_size) or any(s < PRODUCTS for s in sizes):
        parser.error(f"--runs must be at least 1 and every size at least {PRODUCTS}")
    for tool in ("zip", "unzip"):
        if not shutil.which(tool):
            parser.error(f"'{tool}' is needed for the floors")

    started = datetime.datetime.now(datetime.timezone.utc)
    work = arguments.work or pathlib.Path(tempfile.mkdtemp(prefix="tdlb-scale-"))
    work.mkdir(parents=True, exist_ok=True)
    os.environ["QT_QPA_PLATFORM"] = "offscreen"
    log = lambda text: print(f"{time.strftime('%H:%M:%S')} {text}", file=sys.stderr, flush=True)
    def shown(argument):
        if argument == str(arguments.work):
            return "WORKDIR"
        if argument == str(arguments.output):
            return os.path.relpath(arguments.output.resolve(), PROJECT)
        return argument.replace(str(arguments.build.resolve()), build_name(arguments.build))

    invocation = "bench/scale/run_scale_benchmarks.py " + " ".join(shown(a) for a in sys.argv[1:])
    runs = []
    try:
        for size, size_runs in zip(sizes, runs_per_size):
            for icons in icon_kinds:
                run = ScaleRun(arguments.build.resolve(), work, size, icons, size_runs, arguments.pattern, log,
                               arguments.reuse_roots)
                run.run()
                runs.append(run)
                # Each size as it ends: a later one may take an hour.
                write_section(arguments.output, section(runs, arguments.pattern, invocation, started))
    except (BenchmarkError, subprocess.CalledProcessError, OSError) as error:
        print(f"run_scale_benchmarks: {error}", file=sys.stderr)
        return 1
    finally:
        if not arguments.work:
            shutil.rmtree(work, ignore_errors=True)
    write_section(arguments.output, section(runs, arguments.pattern, invocation, started))
    log(f"wrote {arguments.output}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
