#!/usr/bin/python3
"""A Python loop over every object of a large repository beside the same walk in C++.

Makes a synthetic root (td_make_synthetic_root --refs none) and generates its
store with tdlb, unless --root and --prefdir name a generated one; then, on
the same files and in the same run:

- C++: bench/python/bench_walk, a warm depth-first walk that reads each
  object's Name and Path (Google Benchmark, --runs repetitions), the floor;
- Python: a new process that imports tandril, walks once to read every
  manifest, then times --runs walks of

      for obj in repository.getDepthFirstIterator():
          name, path = obj.Name, obj.Path

Writes a section of BENCHMARKS.md (--output) between its markers, with the
medians, their ratio and the command line.

    /usr/bin/python3 bench/python/bench_walk.py --build BUILD [--blocks 100000] [--runs 5]
"""

import argparse
import datetime
import json
import os
import statistics
import subprocess
import sys
import time

BEGIN = "<!-- python-walk:begin -->"
END = "<!-- python-walk:end -->"
GOAL = 3.0


def child(root, prefdir, runs):
    """The Python side, in a process of its own: prints the timings as JSON."""
    import tandril
    from tandril import Repository

    tandril.start(root=root, prefdir=prefdir)
    repository = Repository.Repository.open()

    def walk():
        objects = characters = 0
        for obj in repository.getDepthFirstIterator():
            name = obj.Name
            path = obj.Path
            characters += len(name) + len(path)
            objects += 1
        return objects, characters

    objects, characters = walk()
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        counted = walk()
        times.append(time.perf_counter() - start)
        assert counted == (objects, characters)
    print(json.dumps({"objects": objects, "characters": characters, "seconds": times}))


def run(command, **kwargs):
    result = subprocess.run(command, capture_output=True, text=True, **kwargs)
    if result.returncode != 0:
        sys.exit("failed: %s\n%s%s" % (" ".join(command), result.stdout, result.stderr))
    return result.stdout


def make_root(build, work, products, blocks):
    root = os.path.join(work, "root-%d" % blocks)
    prefdir = os.path.join(work, "prefs-%d" % blocks)
    stamp = os.path.join(work, "generated-%d" % blocks)
    if not os.path.exists(stamp):
        run([os.path.join(build, "bench", "host", "td_make_synthetic_root"), "--out", root, "--products",
             str(products), "--blocks", str(blocks // products), "--refs", "none"])
        started = time.perf_counter()
        run([os.path.join(build, "app", "tdlb"), "--root", root, "--prefdir", prefdir, "generate"],
            env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
        print("generated the store of %d blocks in %.1f s" % (blocks, time.perf_counter() - started))
        open(stamp, "w").close()
    return root, prefdir


def cpp_walk(build, root, prefdir, runs):
    output = run([os.path.join(build, "bench", "python", "bench_walk"), "--root", root, "--prefdir", prefdir,
                  "--benchmark_repetitions=%d" % runs, "--benchmark_format=json"],
                 env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
    report = json.loads(output)
    runs = [b for b in report["benchmarks"] if b.get("run_type") == "iteration"]
    seconds = [b["real_time"] / 1000.0 for b in runs]  # reported in milliseconds
    return {"objects": int(runs[0]["objects"]), "characters": int(runs[0]["characters"]), "seconds": seconds}


def python_walk(build, root, prefdir, runs):
    env = dict(os.environ, PYTHONPATH=os.path.join(build, "python"), QT_QPA_PLATFORM="offscreen")
    output = run([sys.executable, os.path.abspath(__file__), "--child", "--root", root, "--prefdir", prefdir,
                  "--runs", str(runs)], env=env)
    return json.loads(output.strip().splitlines()[-1])


def milliseconds(seconds):
    return "%.1f ms" % (seconds * 1000.0)


def build_type(build):
    try:
        with open(os.path.join(build, "CMakeCache.txt"), encoding="utf-8") as cache:
            for line in cache:
                if line.startswith("CMAKE_BUILD_TYPE:"):
                    return line.split("=", 1)[1].strip() or "no build type"
    except OSError:
        pass
    return "unknown build type"


def section(args, build, blocks, cpp, python):
    cpp_median = statistics.median(cpp["seconds"])
    python_median = statistics.median(python["seconds"])
    ratio = python_median / cpp_median
    load = os.getloadavg()[0]
    now = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC")
    command = "/usr/bin/python3 bench/python/bench_walk.py --build BUILD --blocks %d --runs %d" % (blocks, args.runs)
    lines = [
        BEGIN,
        "## Python walk",
        "",
        "Written by `bench/python/bench_walk.py`; do not edit by hand. A warm depth-first walk over every object "
        "of a synthetic root of %d blocks in %d products (`td_make_synthetic_root --refs none`, store generated "
        "by `tdlb generate`), reading each object's `Name` and `Path`: in Python through the package `tandril` "
        "(a `for` loop over `getDepthFirstIterator()`), and in C++ (`bench/python/bench_walk.cpp`), which is the "
        "floor. Both walk after one walk that read every manifest, in the same run on the same files; each "
        "figure is the median of %d walks." % (blocks, args.products, args.runs),
        "",
        "Run on %s, %s build, %d cores, load average %.1f at the end, with:" % (
            now, build_type(build), os.cpu_count(), load),
        "",
        "```",
        command,
        "```",
        "",
        "| Walk | Objects | Median | Per object | Ratio to C++ | Goal |",
        "|---|---|---|---|---|---|",
        "| C++ (floor) | %d | %s | %.0f ns | 1.0 | |" % (
            cpp["objects"], milliseconds(cpp_median), cpp_median * 1e9 / cpp["objects"]),
        "| Python | %d | %s | %.0f ns | %.1f | within %.0f× of C++: %s |" % (
            python["objects"], milliseconds(python_median), python_median * 1e9 / python["objects"], ratio, GOAL,
            "met" if ratio <= GOAL else "not met"),
        "",
        "Both walks read the same %d characters of names and paths." % python["characters"],
        END,
    ]
    return "\n".join(lines) + "\n"


def write_section(path, text):
    content = open(path, encoding="utf-8").read() if os.path.exists(path) else "# Benchmarks\n"
    if BEGIN in content and END in content:
        head, rest = content.split(BEGIN, 1)
        tail = rest.split(END, 1)[1].lstrip("\n")
        content = head + text + ("\n" + tail if tail else "")
    else:
        content = content.rstrip("\n") + "\n\n" + text
    with open(path, "w", encoding="utf-8") as out:
        out.write(content)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", help="the build directory")
    parser.add_argument("--blocks", type=int, default=100000)
    parser.add_argument("--products", type=int, default=100)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--work", default=os.path.join("/tmp", "tdlb-python-walk"),
                        help="where the synthetic root and its store are kept between runs")
    parser.add_argument("--root", help="a root whose store is generated (with --prefdir)")
    parser.add_argument("--prefdir")
    parser.add_argument("--output", default=os.path.join(os.path.dirname(__file__), "..", "..", "BENCHMARKS.md"))
    parser.add_argument("--child", action="store_true", help=argparse.SUPPRESS)
    args = parser.parse_args()
    if args.child:
        child(args.root, args.prefdir, args.runs)
        return
    if not args.build:
        parser.error("--build is needed")
    build = os.path.abspath(args.build)
    if args.root:
        root, prefdir = args.root, args.prefdir
    else:
        os.makedirs(args.work, exist_ok=True)
        root, prefdir = make_root(build, args.work, args.products, args.blocks)
    cpp = cpp_walk(build, root, prefdir, args.runs)
    python = python_walk(build, root, prefdir, args.runs)
    if (cpp["objects"], cpp["characters"]) != (python["objects"], python["characters"]):
        sys.exit("the walks disagree: C++ %r, Python %r" % (cpp, python))
    text = section(args, build, args.blocks, cpp, python)
    print(text)
    write_section(os.path.abspath(args.output), text)


if __name__ == "__main__":
    main()
