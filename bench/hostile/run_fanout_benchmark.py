#!/usr/bin/python3
"""Time and peak memory of tdlb on a fan-out of library references.

Libraries fan0 .. fanK each hold one block and two references to the next,
so that a walk entering every reference wherever it meets it would visit the
last library 2^K times. For each K the script copies the build's example
root, adds the fan-out as a product of its own, and runs in new processes
`tdlb update` (generation of the writable store) and `tdlb search Level`
(a walk through every reference, as deep as a walk enters: 64 nested
references), each several times. It reports the
library files' bytes, the medians of wall time and the largest peak resident
memory, and replaces its section of BENCHMARKS.md (between the markers).

    bench/hostile/run_fanout_benchmark.py --build BUILD_DIR [--levels 8,16,24,32]
        [--runs 3] [--output BENCHMARKS.md]
"""

import argparse
import json
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile

BEGIN = "<!-- tdlb-fanout:begin -->"
END = "<!-- tdlb-fanout:end -->"


def write_fan_out(root, levels):
    """Writes the fan-out below the root; gives the bytes of its library files."""
    directory = root / "toolbox" / "fanout"
    directory.mkdir(parents=True)
    total = 0
    for level in range(levels + 1):
        blocks = [{"name": f"Level{level}", "type": "Block"}]
        if level < levels:
            blocks += [{"name": side, "type": "LibraryRef", "target": {"library": f"fan{level + 1}"}}
                       for side in ("Left", "Right")]
        text = json.dumps({"format": "tandril-library", "version": 1, "name": f"fan{level}", "blocks": blocks})
        (directory / f"fan{level}.tdlib.json").write_text(text)
        total += len(text)
    entries = [{"name": "Fan Out", "library": "fan0", "type": "Product"}]
    (directory / "tdblocks.json").write_text(
        json.dumps({"format": "tandril-tdblocks", "version": 1, "entries": entries}))
    return total


def measured(command):
    """Runs one process under /usr/bin/time; gives (seconds, peak MB, its standard output)."""
    result = subprocess.run(["/usr/bin/time", "-f", "%e %M"] + command, capture_output=True, text=True)
    if result.returncode != 0:
        raise RuntimeError(f"{' '.join(command)} exited with {result.returncode}: {result.stderr[-2000:]}")
    seconds, kilobytes = result.stderr.strip().splitlines()[-1].split()
    return float(seconds), int(kilobytes) / 1024.0, result.stdout


def measure(build, levels, runs, work):
    base = work / f"k{levels}"
    root = base / "root"
    shutil.copytree(build / "examples" / "root", root)
    size = write_fan_out(root, levels)
    tdlb = str(build / "app" / "tdlb")
    rows = {}
    # A walk enters at most 64 nested references: the deepest level it reaches.
    deepest = min(levels, 64)
    for name, arguments in (("update", ["update"]), ("search", ["search", "Level"])):
        times, peaks = [], []
        for run in range(runs):
            prefs = base / f"prefs-{name}-{run}"
            if name == "search":
                measured([tdlb, "--root", str(root), "--prefdir", str(prefs), "update"])
            seconds, peak, out = measured([tdlb, "--root", str(root), "--prefdir", str(prefs)] + arguments)
            if name == "search" and f"fan{deepest}/Level{deepest}" not in out:
                raise RuntimeError(f"the search did not find Level{deepest}: {out[-2000:]}")
            times.append(seconds)
            peaks.append(peak)
        rows[name] = (statistics.median(times), max(peaks))
    shutil.rmtree(base)
    return size, rows


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True, type=pathlib.Path)
    parser.add_argument("--levels", default="8,16,24,32")
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--output", type=pathlib.Path,
                        default=pathlib.Path(__file__).resolve().parents[2] / "BENCHMARKS.md")
    args = parser.parse_args()
    build = args.build.resolve()
    lines = [BEGIN, "## Fan-out of library references", "",
             "K libraries, each with one block and two references to the next (a walk entering every",
             "reference at each place it meets it would see the last library 2^K times; so it did before",
             "issue 25, when 18 levels took a search 18 s and 1.6 GB). A walk now enters each reference once",
             "and at most 64 nested ones, so time and memory grow with the bytes of the files. Medians of "
             f"{args.runs} runs, new processes, peak resident memory the largest of the runs:", "",
             "```sh", f"/usr/bin/python3 bench/hostile/run_fanout_benchmark.py --build {args.build} "
             f"--levels {args.levels} --runs {args.runs}", "```", "",
             "| K | library bytes | update | update peak | search | search peak |",
             "|---|---|---|---|---|---|"]
    with tempfile.TemporaryDirectory(prefix="tdlb-fanout-") as work:
        for levels in [int(k) for k in args.levels.split(",")]:
            size, rows = measure(build, levels, args.runs, pathlib.Path(work))
            update, search = rows["update"], rows["search"]
            lines.append(f"| {levels} | {size:,} | {update[0]:.2f} s | {update[1]:.0f} MB "
                         f"| {search[0]:.2f} s | {search[1]:.0f} MB |")
            print(lines[-1], flush=True)
    lines.append(END)
    section = "\n".join(lines) + "\n"
    text = args.output.read_text() if args.output.exists() else ""
    if BEGIN in text and END in text:
        text = text[:text.index(BEGIN)] + section + text[text.index(END) + len(END) + 1:]
    else:
        text = text.rstrip("\n") + "\n\n" + section
    args.output.write_text(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
