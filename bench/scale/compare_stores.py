#!/usr/bin/python3
"""Checks that two repository stores hold the same archives, entries and bytes.

Either compares two stores on disk, or first generates both from one root
with the tdlb of two build directories (for example one built before a change
and one after it), each into a new preferences directory. The root must hold
its shipped store already (made by tdlb_shipped_store): the first run on a
root without one makes it, and so numbers its entries differently.

    bench/scale/compare_stores.py --stores STORE_A STORE_B
    bench/scale/compare_stores.py --builds BUILD_A BUILD_B --root ROOT [--work DIR]

Two stores are the same when they have the same archives (by path below the
store), each archive the same entry names in the same order, and each entry
the same bytes once unpacked. What the zip format records beside that (entry
dates, compression levels) may differ. Exits with 0 when they are the same,
1 with the differences listed, 2 when they could not be compared.
"""

import argparse
import os
import pathlib
import subprocess
import sys
import tempfile
import zipfile

STORE = "td_library_browser_repos"
SHIPPED = "toolbox/tandril/tandril/private/td_library_browser_repos/toolbox/tandril/blocks/lbtoplevelmanifest.xml"


def archives(store):
    return {path.relative_to(store).as_posix(): path for path in sorted(store.rglob("*.rps"))}


def entries(path):
    """The archive's entries in order, each name with its bytes."""
    with zipfile.ZipFile(path) as archive:
        return [(info.filename, archive.read(info)) for info in archive.infolist()]


def differences(store_a, store_b, limit=20):
    """What differs between the two stores, at most `limit` lines per archive."""
    found = []
    a, b = archives(store_a), archives(store_b)
    for name in sorted(a.keys() - b.keys()):
        found.append(f"only in {store_a}: {name}")
    for name in sorted(b.keys() - a.keys()):
        found.append(f"only in {store_b}: {name}")
    for name in sorted(a.keys() & b.keys()):
        try:
            left, right = entries(a[name]), entries(b[name])
        except (zipfile.BadZipFile, OSError) as error:
            found.append(f"{name}: cannot be read: {error}")
            continue
        lines = []
        if [n for n, _ in left] != [n for n, _ in right]:
            lines.append(f"{name}: the entries differ in names or order ({len(left)} against {len(right)})")
        right_bytes = dict(right)
        for entry, data in left:
            if entry in right_bytes and right_bytes[entry] != data:
                lines.append(f"{name}: entry {entry} holds other bytes")
        found += lines[:limit]
    if not a and not b:
        found.append("neither store holds an archive")
    return found


def generate(build, root, prefs):
    """A cold generation of the whole store with one build's tdlb; gives the store."""
    build = build.resolve()
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen",
                       LD_LIBRARY_PATH=str(build / "src") + os.pathsep + os.environ.get("LD_LIBRARY_PATH", ""))
    command = [str(build / "app" / "tdlb"), "--root", str(root), "--prefdir", str(prefs), "generate", "--mode",
               "Regenerate"]
    result = subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if result.returncode != 0:
        raise RuntimeError(f"{' '.join(command)} exited with {result.returncode}:\n{result.stderr[-2000:]}")
    return prefs / STORE


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    group = parser.add_mutually_exclusive_group(required=True)
    group.add_argument("--stores", nargs=2, type=pathlib.Path, metavar="STORE", help="two stores to compare")
    group.add_argument("--builds", nargs=2, type=pathlib.Path, metavar="BUILD",
                       help="two build directories whose tdlb generate the stores")
    parser.add_argument("--root", type=pathlib.Path, help="the host root to generate from, with --builds")
    parser.add_argument("--work", type=pathlib.Path, help="where the stores are generated (default: a temporary "
                        "directory, removed afterwards)")
    arguments = parser.parse_args()
    if arguments.builds and not arguments.root:
        parser.error("--builds needs --root")

    scratch = None
    try:
        if arguments.stores:
            store_a, store_b = arguments.stores
        else:
            work = arguments.work
            if not work:
                scratch = tempfile.TemporaryDirectory(prefix="tdlb-compare-")
                work = pathlib.Path(scratch.name)
            root = arguments.root.resolve()
            if not (root / SHIPPED).is_file():
                raise RuntimeError(f"{root} holds no shipped store: make it first with tdlb_shipped_store")
            store_a = generate(arguments.builds[0], root, work.resolve() / "prefs-a")
            store_b = generate(arguments.builds[1], root, work.resolve() / "prefs-b")
        for store in (store_a, store_b):
            if not store.is_dir():
                raise RuntimeError(f"{store} is not a directory")
        found = differences(store_a, store_b)
        stored = archives(store_a)
        summary = f"the same: {len(stored)} archives, {sum(len(entries(p)) for p in stored.values())} entries"
    except (RuntimeError, OSError) as error:
        print(f"compare_stores: {error}", file=sys.stderr)
        return 2
    finally:
        if scratch:
            scratch.cleanup()
    for line in found:
        print(line)
    if found:
        return 1
    print(summary)
    return 0


if __name__ == "__main__":
    sys.exit(main())
