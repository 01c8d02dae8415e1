#!/usr/bin/env python3
"""Mutation testing of the module: how many small faults does the suite catch?

From a seed, picks mutants in the C++ sources of src/, host/ and python/ (a
relational operator flipped, && and || swapped, a ! removed or added, an
integer constant off by one, a call statement or a bare return removed, an
if's condition forced), applies each in turn to a copy of the tree (never to
the working tree), rebuilds what the mutant touches, runs the tests that can
see it, and records it as killed, survived (with its diff), timed out or not
compiled.

    python3 tools/mutate.py run --work /work/data/mutate/w0 --seed 28 --count 260 \\
        --report /work/data/mutate/base-0.jsonl [--shard 0/2] [--path src/model] \\
        [--coverage-map map.json] [--tests-regex 'Xml'] [--label realdisplay]
    python3 tools/mutate.py summary base-0.jsonl base-1.jsonl > report.md
    python3 tools/mutate.py coverage-map --build build-coverage --out map.json
    python3 tools/mutate.py list --path src/model
    python3 tools/mutate.py self-test

docs/testing.md tells how the copy is kept cheap and which tests each folder
runs. Exit codes: 0 done, 1 a step failed (build or tests of the unmutated
copy, a bad report), 2 usage error.
"""

import argparse
import dataclasses
import difflib
import hashlib
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tarfile
import tempfile
import time
from pathlib import Path

REPO = Path(__file__).resolve().parent.parent
FOLDERS = ("src", "host", "python")

# Which test groups can see a mutant, by the folder it is in, most direct
# first: the run stops at the first failure, so the suite of the folder itself
# goes first and the slow ones last. A coverage map narrows this to the groups
# that reach the mutated line. "monkey" and "torture" are long seeded random
# runs and are left out of the mutant runs by default (--with-slow adds them).
FOLDER_GROUPS = [
    ("src/platform", ["platform", "model", "repository", "frame", "host", "fuzz", "integration",
                      "gui", "python", "app", "realdisplay"]),
    ("src/model", ["model", "fuzz", "repository", "integration", "gui", "python", "app", "realdisplay"]),
    ("src/repository", ["repository", "fuzz", "integration", "gui", "python", "app", "realdisplay"]),
    ("src/frame", ["frame", "integration", "gui", "python", "app", "realdisplay"]),
    ("src/scripting", ["repository", "integration", "gui", "python", "app", "realdisplay"]),
    ("src/gui", ["gui", "python", "app", "realdisplay"]),
    ("host", ["host", "fuzz", "integration", "gui", "python", "app", "realdisplay"]),
    ("python", ["python"]),
]
SLOW_GROUPS = ("monkey", "torture")
# Programs a group runs besides its own test executable.
GROUP_TARGETS = {
    "python": ["_tandril"],
    "monkey": ["_tandril"],
    "app": ["tdlb"],
    "realdisplay": ["tdlb"],
    "torture": ["tdlb", "_tandril"],
}

# ---------------------------------------------------------------- mutants

KEYWORDS = {"return", "if", "else", "while", "for", "switch", "case", "delete", "throw", "do",
            "new", "sizeof", "static_assert", "default", "goto", "co_return", "co_await", "emit"}
RELATIONAL = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str        # relative to the tree
    start: int       # character offsets of the replaced text
    end: int
    original: str
    replacement: str
    operator: str
    line: int        # 1-based line of start
    origin: str = ""  # the id it had in an earlier revision (relocate)

    @property
    def ident(self):
        if self.origin:
            return self.origin
        key = f"{self.file}:{self.start}:{self.end}:{self.original}:{self.replacement}"
        return hashlib.sha1(key.encode()).hexdigest()[:12]

    def apply(self, text):
        if text[self.start:self.end] != self.original:
            raise ValueError(f"{self.file}:{self.line}: the source no longer reads {self.original!r}")
        return text[:self.start] + self.replacement + text[self.end:]

    def diff(self, text):
        mutated = self.apply(text)
        return "".join(difflib.unified_diff(text.splitlines(True), mutated.splitlines(True),
                                            f"a/{self.file}", f"b/{self.file}", n=0))

    def lines(self, text):
        """The source lines the mutant touches."""
        first = self.line
        return list(range(first, first + text.count("\n", self.start, self.end) + 1))


def mask(text):
    """The text with comments, string and character literals and preprocessor
    lines blanked (newlines kept), so that offsets stay those of the text."""
    out = list(text)
    i, n = 0, len(text)
    line_start = True

    def blank(a, b):
        for k in range(a, b):
            if out[k] != "\n":
                out[k] = " "

    while i < n:
        c = text[i]
        if line_start and c == "#":
            j = i
            while j < n and (text[j] != "\n" or text[j - 1] == "\\"):
                j += 1
            blank(i, j)
            i = j
            continue
        if c == "\n":
            line_start = True
            i += 1
            continue
        if not c.isspace():
            line_start = False
        if text.startswith("//", i):
            j = text.find("\n", i)
            j = n if j < 0 else j
            blank(i, j)
            i = j
        elif text.startswith("/*", i):
            j = text.find("*/", i + 2)
            j = n if j < 0 else j + 2
            blank(i, j)
            i = j
        elif c == "R" and text.startswith('"', i + 1) and (i == 0 or not (text[i - 1].isalnum() or text[i - 1] == "_")):
            m = re.match(r'R"([^(\s]*)\(', text[i:])
            if m:
                close = text.find(")" + m.group(1) + '"', i + m.end())
                j = n if close < 0 else close + len(m.group(1)) + 2
                blank(i + 1, j)
                i = j
            else:
                i += 1
        elif c == '"' or (c == "'" and not (i > 0 and text[i - 1].isalnum() and i + 1 < n and text[i + 1].isalnum())):
            j = i + 1
            while j < n and text[j] != c and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            blank(i + 1, min(j, n))
            i = j + 1
        else:
            i += 1
    return "".join(out)


def matching_paren(masked, open_at):
    depth = 0
    for k in range(open_at, len(masked)):
        if masked[k] == "(":
            depth += 1
        elif masked[k] == ")":
            depth -= 1
            if depth == 0:
                return k
    return -1


CALL_STATEMENT = re.compile(r"^([ \t]*)((?:::)?[A-Za-z_]\w*(?:(?:\.|->|::)[A-Za-z_]\w*)*\s*\(.*\)\s*;)[ \t]*$",
                            re.MULTILINE)


def find_mutants(text, file):
    """Every mutant of one C++ file, in the order of the text."""
    masked = mask(text)
    found = []

    def add(start, end, replacement, operator):
        found.append(Mutant(file, start, end, text[start:end], replacement, operator,
                            text.count("\n", 0, start) + 1))

    for m in re.finditer(r"(?<=\s)(==|!=|<=|>=|<|>)(?=\s)", masked):
        add(m.start(), m.end(), RELATIONAL[m.group(1)], "relational")
    for m in re.finditer(r"(?<=\s)(&&|\|\|)(?=\s)", masked):
        add(m.start(), m.end(), "||" if m.group(1) == "&&" else "&&", "logical")
    for m in re.finditer(r"!(?=[\w(])", masked):
        add(m.start(), m.end(), "", "not-removed")
    for m in re.finditer(r"(?<![\w.'])(\d+)(?![\w.'])", masked):
        value = int(m.group(1))
        add(m.start(), m.end(), str(value - 1 if value == 1 else value + 1), "constant")
    for m in re.finditer(r"\breturn\s*;", masked):
        add(m.start(), m.end(), ";", "return-removed")
    for m in CALL_STATEMENT.finditer(masked):
        statement = m.group(2)
        head = re.match(r"(?:::)?([A-Za-z_]\w*)", statement).group(1)
        if head in KEYWORDS or head.isupper() or head.startswith("Q_"):
            continue
        body = statement[:statement.rfind(";")].rstrip()
        if body.count("(") != body.count(")"):
            continue
        add(m.start(2), m.end(2), ";", "call-removed")
    for m in re.finditer(r"\bif\s*\(", masked):
        if re.match(r"\s*constexpr", masked[m.end():]):
            continue
        close = matching_paren(masked, m.end() - 1)
        if close < 0:
            continue
        cond_start, cond_end = m.end(), close
        condition = masked[cond_start:cond_end]
        # An init-statement or a declaration in the condition: forcing it
        # would only make a mutant that does not compile.
        if ";" in condition or not condition.strip() or re.search(r"(?<![=!<>])=(?!=)", condition):
            continue
        original = text[cond_start:cond_end]
        add(cond_start, cond_end, f"!({original})", "not-added")
        add(cond_start, cond_end, "true", "forced-true")
        add(cond_start, cond_end, "false", "forced-false")
    return sorted(found, key=lambda mu: (mu.start, mu.operator, mu.replacement))


def source_files(tree, paths):
    files = []
    for folder in FOLDERS:
        for f in sorted((tree / folder).rglob("*.cpp")):
            rel = f.relative_to(tree).as_posix()
            if not paths or any(rel == p or rel.startswith(p.rstrip("/") + "/") for p in paths):
                files.append(rel)
    return files


def sample(tree, seed, count, paths):
    """The same mutants for the same sources, seed and count."""
    everything = []
    for rel in source_files(tree, paths):
        everything.extend(find_mutants((tree / rel).read_text(), rel))
    rng = random.Random(seed)
    rng.shuffle(everything)
    return everything[:count], len(everything)

def relocate(tree, record):
    """An earlier report's mutant found again in a later revision of its file:
    an occurrence of its original text whose first line reads, before and
    after the change, as the first line its diff removed and added, the one
    nearest the old line. None when there is no such occurrence."""
    diff = record["diff"].splitlines()
    removed = next((ln[1:] for ln in diff if ln.startswith("-") and not ln.startswith("---")), None)
    added = next((ln[1:] for ln in diff if ln.startswith("+") and not ln.startswith("+++")), None)
    path = tree / record["file"]
    original, replacement = record["original"], record["replacement"]
    if removed is None or added is None or not original or not path.exists():
        return None
    text = path.read_text()
    found = []
    at = text.find(original)
    while at >= 0:
        first = text.rfind("\n", 0, at) + 1
        last = text.find("\n", at)
        last = len(text) if last < 0 else last
        mutated = text[first:at] + replacement + text[at + len(original):]
        if text[first:last] == removed and mutated.split("\n", 1)[0] == added:
            found.append(at)
        at = text.find(original, at + 1)
    if not found:
        return None
    start = min(found, key=lambda a: abs(text.count("\n", 0, a) + 1 - record["line"]))
    return Mutant(record["file"], start, start + len(original), original, replacement, record["operator"],
                  text.count("\n", 0, start) + 1, record["id"])

# ---------------------------------------------------------------- the copy


def run(cmd, **kw):
    return subprocess.run(cmd, **kw)


def prepare_copy(work, rev, configure_args):
    """A copy of the tree at rev in work, with its build in work/build.
    A copy already there is brought to rev file by file, so that the next
    build only redoes what changed."""
    work.mkdir(parents=True, exist_ok=True)
    listing = work / ".mutate-files"
    with tempfile.TemporaryDirectory(dir=work.parent) as tmp:
        archive = Path(tmp) / "tree.tar"
        with open(archive, "wb") as out:
            if run(["git", "-C", str(REPO), "archive", rev], stdout=out).returncode != 0:
                raise SystemExit(f"mutate: git archive {rev} failed")
        with tarfile.open(archive) as tar:
            members = [m for m in tar.getmembers() if m.isfile()]
            names = set()
            for m in members:
                names.add(m.name)
                data = tar.extractfile(m).read()
                target = work / m.name
                if target.exists() and target.read_bytes() == data:
                    continue
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(data)
                target.chmod(m.mode)
    if listing.exists():
        for old in listing.read_text().splitlines():
            if old not in names and (work / old).exists():
                (work / old).unlink()
    listing.write_text("\n".join(sorted(names)) + "\n")
    build = work / "build"
    if not (build / "build.ninja").exists():
        cmd = ["cmake", "-S", str(work), "-B", str(build), "-G", "Ninja",
               "-DPython_EXECUTABLE=/usr/bin/python3", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
               "-DTDLB_BUILD_BENCHMARKS=OFF"] + configure_args
        if shutil.which("ccache"):
            cmd.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        if run(cmd, stdout=subprocess.DEVNULL).returncode != 0:
            raise SystemExit("mutate: configuring the copy failed")
    return build

# ---------------------------------------------------------------- tests


def ctest_groups(build, regex=None, label=None):
    """The tests of the build by group, in ctest's order."""
    cmd = ["ctest", "--test-dir", str(build), "--show-only=json-v1"]
    if regex:
        cmd += ["-R", regex]
    if label:
        cmd += ["-L", label]
    info = json.loads(run(cmd, capture_output=True, text=True, check=True).stdout)
    groups = {}
    for test in info["tests"]:
        props = {p["name"]: p["value"] for p in test.get("properties", [])}
        name, command = test["name"], test["command"]
        exe = Path(command[0]).name
        if exe.startswith("td_") and exe.endswith("_tests"):
            group = exe[3:-6]
        elif name == "python.test_monkey":
            group = "monkey"
        else:
            group = name.split(".")[0]
        entry = {"name": name, "command": command, "env": props.get("ENVIRONMENT", []),
                 "cwd": props.get("WORKING_DIRECTORY", str(build)),
                 "skip": props.get("SKIP_RETURN_CODE"), "gtest": "--gtest_filter=" + name in command}
        groups.setdefault(group, []).append(entry)
    return groups


def group_targets(group, tests):
    targets = set(GROUP_TARGETS.get(group, []))
    for t in tests:
        exe = Path(t["command"][0])
        if exe.name.startswith(("td_", "fuzz_")):
            targets.add(exe.name)
    return sorted(targets)


EXTRA_ENV = []


def environment(entries):
    env = dict(os.environ)
    for e in list(entries) + EXTRA_ENV:
        k, _, v = e.partition("=")
        env[k] = v
    return env


def run_process(cmd, env, cwd, deadline):
    """(returncode or None on timeout, output)"""
    left = max(1.0, deadline - time.monotonic())
    proc = subprocess.Popen(cmd, env=env, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            start_new_session=True)
    try:
        out, _ = proc.communicate(timeout=left)
        return proc.returncode, out.decode(errors="replace")
    except subprocess.TimeoutExpired:
        os.killpg(proc.pid, 9)
        out, _ = proc.communicate()
        return None, out.decode(errors="replace")


def failing_gtest(output):
    failed = re.search(r"^\[  FAILED  \] (\S+)", output, re.MULTILINE)
    if failed:
        return failed.group(1)
    runs = re.findall(r"^\[ RUN      \] (\S+)", output, re.MULTILINE)
    return runs[-1] if runs else "?"


WHOLE_PROGRAMS = [True]


def run_group(tests, deadline, first=None):
    """Runs one group until its first failure: ("pass"|"fail"|"timeout", test).
    A gtest program runs its tests in one process, all of them unless the run
    is limited to some tests (so a test added since ctest listed them runs
    too); first, when given, runs alone before the rest."""
    if tests and tests[0]["gtest"]:
        base = [a for a in tests[0]["command"] if not a.startswith("--gtest_filter=")]
        names = [t["name"] for t in tests]
        passes = [[first]] if first in names else []
        passes.append(["*"] if WHOLE_PROGRAMS[0] else names)
        for chosen in passes:
            cmd = base + ["--gtest_fail_fast", "--gtest_filter=" + ":".join(chosen)]
            code, out = run_process(cmd, environment(tests[0]["env"]), tests[0]["cwd"], deadline)
            if code is None:
                return "timeout", failing_gtest(out)
            if code != 0:
                return "fail", failing_gtest(out)
        return "pass", None
    ordered = sorted(tests, key=lambda t: t["name"] != first)
    for t in ordered:
        cmd = list(t["command"])
        if "pytest" in cmd:
            cmd.append("-x")
        code, _ = run_process(cmd, environment(t["env"]), t["cwd"], deadline)
        if code is None:
            return "timeout", t["name"]
        if code != 0 and str(code) != str(t["skip"]):
            return "fail", t["name"]
    return "pass", None


def build_targets(build, targets, timeout):
    try:
        r = run(["cmake", "--build", str(build), "-j1", "--target"] + targets,
                capture_output=True, text=True, timeout=timeout)
    except subprocess.TimeoutExpired:
        return False, "the build timed out"
    if r.returncode == 0:
        return True, ""
    errors = [ln for ln in r.stdout.splitlines() if "error" in ln]
    return False, (errors[0] if errors else r.stdout[-300:]).strip()

# ---------------------------------------------------------------- coverage map


def groups_for(mutant, text, cover, allowed):
    """The groups to run for a mutant, or [] when the coverage map knows its
    lines and no group reaches them."""
    folder = next((groups for prefix, groups in FOLDER_GROUPS if mutant.file.startswith(prefix + "/")), [])
    ordered = [g for g in folder + list(SLOW_GROUPS) if g in allowed]
    if cover is None or mutant.file not in cover:
        return ordered
    per_line = cover[mutant.file]
    known = [str(ln) for ln in mutant.lines(text) if str(ln) in per_line]
    if not known:
        return ordered
    reaching = set(g for ln in known for g in per_line[ln])
    if "*" in reaching:
        return ordered
    return [g for g in ordered if g in reaching]

# ---------------------------------------------------------------- commands


def load_report(paths):
    records = {}
    for p in paths:
        if Path(p).exists():
            for line in Path(p).read_text().splitlines():
                if line.strip():
                    r = json.loads(line)
                    records[r["id"]] = r
    return records


def cmd_run(args):
    # A stopped run still writes the mutated file back (the finally below).
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    EXTRA_ENV.extend(args.env)
    work = Path(args.work).resolve()
    if REPO in work.parents or work == REPO:
        raise SystemExit("mutate: --work must be outside the working tree")
    build = prepare_copy(work, args.rev, args.configure or [])
    timing_file = work / ".mutate-timing.json"
    timing = json.loads(timing_file.read_text()) if timing_file.exists() else {}
    head = run(["git", "-C", str(REPO), "rev-parse", args.rev], capture_output=True, text=True).stdout.strip()
    if args.keep_timing and timing:
        timing["rev"] = head
    if timing.get("rev") != head:
        # The test programs list their tests once built.
        print("mutate: building the unmutated copy", flush=True)
        if run(["cmake", "--build", str(build), "-j2"], stdout=subprocess.DEVNULL).returncode != 0:
            raise SystemExit("mutate: the unmutated copy does not build")
    else:
        # Tests registered from a glob at configure time (the Python files)
        # must be those of this revision, not of the one the copy was built at:
        # a removed file would fail and count as a kill.
        run(["cmake", str(build)], stdout=subprocess.DEVNULL)
    groups = ctest_groups(build, args.tests_regex, args.label)
    WHOLE_PROGRAMS[0] = not (args.tests_regex or args.label)
    allowed = [g for g in groups if args.with_slow or g not in SLOW_GROUPS]
    if not allowed:
        raise SystemExit("mutate: no test matches")
    gone = []
    if args.same_as:
        earlier = sorted(load_report(args.same_as).values(), key=lambda r: (r["file"], r["line"]))
        found = [(r, relocate(work, r)) for r in earlier]
        gone = [r for r, m in found if m is None]
        mutants, total = [m for _, m in found if m is not None], len(earlier)
    else:
        mutants, total = sample(work, args.seed, args.count, args.path)
    shard, shards = (int(x) for x in args.shard.split("/"))
    mine = [m for i, m in enumerate(mutants) if i % shards == shard and (not args.ids or m.ident in args.ids)]
    if args.reverse:
        mine.reverse()
    cover = json.loads(Path(args.coverage_map).read_text()) if args.coverage_map else None
    prior = load_report(args.prior) if args.prior else {}
    done = load_report([args.report])
    print(f"mutate: {len(mine)} of {len(mutants)} mutants (of {total} sites), seed {args.seed}, "
          f"{len(done)} done already", flush=True)

    if timing.get("rev") != head or not set(allowed) <= set(timing.get("seconds", {})):
        print("mutate: building and testing the unmutated copy", flush=True)
        targets = sorted({t for g in allowed for t in group_targets(g, groups[g])})
        ok, why = build_targets(build, targets, 7200)
        if not ok:
            raise SystemExit(f"mutate: the unmutated copy does not build: {why}")
        seconds = {}
        for g in allowed:
            t0 = time.monotonic()
            result, test = run_group(groups[g], t0 + 3600)
            if result != "pass":
                raise SystemExit(f"mutate: the unmutated copy fails {g}: {test}")
            seconds[g] = round(time.monotonic() - t0, 1)
            print(f"  {g}: {seconds[g]} s", flush=True)
        timing = {"rev": head, "seconds": seconds}
        timing_file.write_text(json.dumps(timing))

    with open(args.report, "a") as report:
        for r in gone:
            if r["id"] not in done and shard == 0 and (not args.ids or r["id"] in args.ids):
                report.write(json.dumps(dict(r, status="gone", note="its lines are no longer in the file")) + "\n")
        for n, m in enumerate(mine, 1):
            if m.ident in done:
                continue
            path = work / m.file
            original = path.read_text()
            record = {"id": m.ident, "file": m.file, "line": m.line, "operator": m.operator,
                      "original": m.original, "replacement": m.replacement, "diff": m.diff(original)}
            before = prior.get(m.ident)
            if args.only_prior and not before:
                continue
            if args.rerun_killed_only and before and before["status"] not in ("killed", "timeout"):
                record.update(status=before["status"], note="carried from the earlier run: " + before.get("note", ""))
                report.write(json.dumps(record) + "\n")
                report.flush()
                continue
            chosen = groups_for(m, original, cover, allowed)
            first_test = None
            if before and before.get("group") in chosen:
                chosen.remove(before["group"])
                chosen.insert(0, before["group"])
                first_test = before.get("test")
            t0 = time.monotonic()
            try:
                path.write_text(m.apply(original))
                # Each group's programs are built just before it runs: a mutant
                # the first group kills links nothing else (a host mutant would
                # otherwise relink every program on the static host library).
                first_group = (chosen or groups_for(m, original, None, allowed))[:1]
                ok, why = build_targets(build, group_targets(first_group[0], groups[first_group[0]]),
                                        args.build_timeout)
                if not ok:
                    record.update(status="not-compiled", note=why[:300])
                elif not chosen:
                    record.update(status="survived", note="no test reaches the line")
                else:
                    record.update(status="survived", note="ran " + " ".join(chosen))
                    for g in chosen:
                        ok, why = build_targets(build, group_targets(g, groups[g]), args.build_timeout)
                        if not ok:
                            record.update(status="not-compiled", note=why[:300])
                            break
                        limit = max(args.min_timeout, args.timeout_factor * timing["seconds"][g])
                        result, test = run_group(groups[g], time.monotonic() + limit,
                                                 first_test if g == chosen[0] else None)
                        if result != "pass":
                            record.update(status="killed" if result == "fail" else "timeout",
                                          group=g, test=test, note="")
                            break
            finally:
                path.write_text(original)
            record["seconds"] = round(time.monotonic() - t0, 1)
            report.write(json.dumps(record) + "\n")
            report.flush()
            print(f"[{n}/{len(mine)}] {record['status']:<12} {m.file}:{m.line} {m.operator} "
                  f"({record['seconds']} s) {record.get('test') or ''}", flush=True)
    return 0


def cmd_summary(args):
    records = load_report(args.reports)
    if not records:
        print("mutate: no records", file=sys.stderr)
        return 1
    by = {}
    for r in records.values():
        by.setdefault(r["status"], []).append(r)
    for r in by.pop("gone", []):
        records.pop(r["id"])
        print(f"mutate: {r['id']} ({r['file']}:{r['line']}) left out, its lines are gone", file=sys.stderr)
    compiled = len(records) - len(by.get("not-compiled", []))
    caught = len(by.get("killed", [])) + len(by.get("timeout", []))
    print(f"| mutants | compiled | killed | timed out | survived | not compiled | score |")
    print(f"|---|---|---|---|---|---|---|")
    print(f"| {len(records)} | {compiled} | {len(by.get('killed', []))} | {len(by.get('timeout', []))} | "
          f"{len(by.get('survived', []))} | {len(by.get('not-compiled', []))} | "
          f"{100.0 * caught / max(1, compiled):.1f} % |")
    if args.folders:
        print("\n| folder | compiled | caught | score |\n|---|---|---|---|")
        folders = {}
        for r in records.values():
            if r["status"] != "not-compiled":
                key = "/".join(r["file"].split("/")[:2]) if r["file"].startswith("src/") else r["file"].split("/")[0]
                c = folders.setdefault(key, [0, 0])
                c[0] += 1
                c[1] += r["status"] in ("killed", "timeout")
        for k in sorted(folders):
            print(f"| {k} | {folders[k][0]} | {folders[k][1]} | {100.0 * folders[k][1] / folders[k][0]:.0f} % |")
    if args.survivors:
        print("\n| id | where | change | note |\n|---|---|---|---|")
        for r in sorted(by.get("survived", []), key=lambda r: (r["file"], r["line"])):
            change = next((ln[1:].strip() for ln in r["diff"].splitlines() if ln.startswith("+") and not ln.startswith("+++")), "")
            was = next((ln[1:].strip() for ln in r["diff"].splitlines() if ln.startswith("-") and not ln.startswith("---")), "")
            cell = f"`{was}` → `{change}`".replace("|", "\\|")
            print(f"| {r['id']} | {r['file']}:{r['line']} | {cell} | {r.get('note', '')} |")
    return 0


def cmd_list(args):
    tree = Path(args.tree).resolve()
    counts = {}
    for rel in source_files(tree, args.path):
        for m in find_mutants((tree / rel).read_text(), rel):
            counts[m.operator] = counts.get(m.operator, 0) + 1
    for k in sorted(counts):
        print(f"{k:<16} {counts[k]}")
    print(f"{'all':<16} {sum(counts.values())}")
    return 0


def add_coverage(cover, gcovr_json, group):
    for f in json.loads(Path(gcovr_json).read_text())["files"]:
        lines = cover.setdefault(f["file"], {})
        for ln in f["lines"]:
            entry = lines.setdefault(str(ln["line_number"]), [])
            if ln["count"] > 0 and group not in entry:
                entry.append(group)


def cmd_coverage_map(args):
    """Which lines of the sources the tests reach. From gcovr JSON files of
    whole-suite runs (tools/coverage.sh writes one), a reached line runs every
    group of its folder; with --build, each test group runs alone in that
    --coverage build, so that a mutant runs only the groups that reach it."""
    cover = {}
    if args.json:
        for j in args.json:
            add_coverage(cover, j, "*")
        Path(args.out).write_text(json.dumps(cover))
        return 0
    if not args.build:
        print("coverage-map: give --json or --build", file=sys.stderr)
        return 2
    build = Path(args.build).resolve()
    root = Path(args.root).resolve()
    out_dir = Path(args.out).resolve().parent / "coverage-groups"
    out_dir.mkdir(parents=True, exist_ok=True)
    groups = ctest_groups(build)
    for g, tests in groups.items():
        if args.groups and g not in args.groups:
            continue
        for gcda in build.rglob("*.gcda"):
            gcda.unlink()
        t0 = time.monotonic()
        for t in tests:
            run_process(t["command"], environment(t["env"]), t["cwd"], time.monotonic() + 1800)
        part = out_dir / f"{g}.json"
        run(["gcovr", "-r", str(root), "--object-directory", str(build), "-j", "2",
             "--gcov-ignore-parse-errors", "--json", str(part)] +
            [a for f in ("src", "host", "python", "app") for a in ("--filter", str(root / f) + "/")],
            check=True, stdout=subprocess.DEVNULL)
        add_coverage(cover, part, g)
        print(f"coverage-map: {g} ({len(tests)} tests, {time.monotonic() - t0:.0f} s)", flush=True)
    Path(args.out).write_text(json.dumps(cover))
    return 0

# ---------------------------------------------------------------- self-test


def cmd_self_test(_args):
    source = (
        '#include <vector>\n'
        'int f(int a, std::vector<int> v) {\n'
        '    // a < b in a comment\n'
        '    const char *s = "x == 1 && !y";\n'
        '    if (a < 3 && !v.empty())\n'
        '        v.push_back(a);\n'
        '    return;\n'
        '}\n')
    expected = {
        ("relational", 5, "<", "<="),
        ("logical", 5, "&&", "||"),
        ("not-removed", 5, "!", ""),
        ("constant", 5, "3", "4"),
        ("call-removed", 6, "v.push_back(a);", ";"),
        ("return-removed", 7, "return;", ";"),
        ("not-added", 5, "a < 3 && !v.empty()", "!(a < 3 && !v.empty())"),
        ("forced-true", 5, "a < 3 && !v.empty()", "true"),
        ("forced-false", 5, "a < 3 && !v.empty()", "false"),
    }
    mutants = find_mutants(source, "x.cpp")
    got = {(m.operator, m.line, m.original, m.replacement) for m in mutants}
    failures = []
    if got != expected:
        failures.append(f"mutants differ: missing {sorted(expected - got)}, unexpected {sorted(got - expected)}")
    for m in mutants:
        mutated = m.apply(source)
        if mutated[:m.start] != source[:m.start] or mutated[m.start + len(m.replacement):] != source[m.end:]:
            failures.append(f"{m.operator} changed more than its own text")
        changed = [d for d in difflib.ndiff(source.splitlines(), mutated.splitlines()) if d[:1] in "+-"]
        if len(changed) != 2:
            failures.append(f"{m.operator} changed {len(changed)} lines instead of one")
    with tempfile.TemporaryDirectory() as tmp:
        tree = Path(tmp)
        m = next(m for m in mutants if m.operator == "relational")
        record = {"id": m.ident, "file": "x.cpp", "line": m.line, "operator": m.operator, "original": m.original,
                  "replacement": m.replacement, "diff": m.diff(source)}
        later = source.replace("#include <vector>\n", "#include <vector>\n// moved\nint g();\n")
        (tree / "x.cpp").write_text(later)
        moved = relocate(tree, record)
        if moved is None or moved.ident != m.ident or moved.line != m.line + 2 or \
                moved.apply(later) != m.apply(source).replace("#include <vector>\n", "#include <vector>\n// moved\nint g();\n"):
            failures.append("a mutant was not found again two lines further down")
        (tree / "x.cpp").write_text(later.replace("a < 3", "a < 4"))
        if relocate(tree, record) is not None:
            failures.append("a mutant whose line changed was found again")
    raw = 'auto x = R"(if (a < b) f();)";\nint y = 1\'000;\n'
    if find_mutants(raw, "r.cpp"):
        failures.append("a raw string or a digit separator was mutated")
    for f in failures:
        print("self-test:", f)
    print("self-test:", "failed" if failures else f"ok ({len(mutants)} mutants checked)")
    return 1 if failures else 0


def main(argv=None):
    p = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = p.add_subparsers(dest="command", required=True)
    r = sub.add_parser("run", help="apply and test a seeded sample of mutants")
    r.add_argument("--work", required=True, help="the copy of the tree (made if missing; its build is WORK/build)")
    r.add_argument("--rev", default="HEAD", help="the revision the copy is brought to (default HEAD)")
    r.add_argument("--seed", type=int, default=28)
    r.add_argument("--count", type=int, default=260, help="mutants in the sample")
    r.add_argument("--path", action="append", help="only sources below this folder (repeatable)")
    r.add_argument("--ids", type=lambda text: text.split(","), help="only these mutants of the sample (ID,ID,...)")
    r.add_argument("--same-as", action="append",
                   help="instead of a sample, the mutants of an earlier report (repeatable), found again in this "
                        "revision by the lines they changed (status 'gone' where those lines are no longer there)")
    r.add_argument("--reverse", action="store_true",
                   help="take the mutants from the end: a further worker on a shard another one takes from the start")
    r.add_argument("--shard", default="0/1", help="I/N: this run takes every N-th mutant from the I-th")
    r.add_argument("--report", required=True, help="JSON lines, one per mutant; a rerun skips those in it")
    r.add_argument("--coverage-map", help="from coverage-map: run only the groups that reach a mutant")
    r.add_argument("--tests-regex", help="only the ctest tests matching this")
    r.add_argument("--label", help="only the ctest tests with this label")
    r.add_argument("--with-slow", action="store_true", help="also run the monkey and the torture test")
    r.add_argument("--prior", action="append",
                   help="an earlier report (repeatable): the group and test that killed a mutant go first")
    r.add_argument("--only-prior", action="store_true",
                   help="with --prior: leave out the mutants the earlier run has not done (yet)")
    r.add_argument("--rerun-killed-only", action="store_true",
                   help="with --prior: carry over what the earlier run did not kill instead of testing it")
    r.add_argument("--timeout-factor", type=float, default=5.0, help="time limit per group, times its unmutated run")
    r.add_argument("--min-timeout", type=float, default=60.0)
    r.add_argument("--keep-timing", action="store_true",
                   help="keep the group times of the copy's earlier revision instead of building and "
                        "testing the unmutated copy again (its tests were checked elsewhere)")
    r.add_argument("--build-timeout", type=float, default=1200.0)
    r.add_argument("--configure", action="append", help="an extra cmake argument for a new copy")
    r.add_argument("--env", action="append", default=[],
                   help="NAME=VALUE for every test, over ctest's own (e.g. TDLB_REALDISPLAY_TIME_SCALE=4 "
                        "on a busy machine)")
    r.set_defaults(func=cmd_run)
    s = sub.add_parser("summary", help="markdown tables of one or more reports")
    s.add_argument("reports", nargs="+")
    s.add_argument("--folders", action="store_true", help="the score per folder")
    s.add_argument("--survivors", action="store_true", help="one line per surviving mutant")
    s.set_defaults(func=cmd_summary)
    ls = sub.add_parser("list", help="count the mutation sites")
    ls.add_argument("--tree", default=str(REPO))
    ls.add_argument("--path", action="append")
    ls.set_defaults(func=cmd_list)
    c = sub.add_parser("coverage-map", help="which test group reaches which line, from a --coverage build")
    c.add_argument("--json", nargs="*", help="gcovr JSON files of whole-suite runs")
    c.add_argument("--build", help="a --coverage build whose groups run one by one")
    c.add_argument("--root", default=str(REPO), help="the sources the build was made from")
    c.add_argument("--out", required=True)
    c.add_argument("--groups", nargs="*", help="only these groups")
    c.set_defaults(func=cmd_coverage_map)
    t = sub.add_parser("self-test", help="check the mutation operators on a small text")
    t.set_defaults(func=cmd_self_test)
    args = p.parse_args(argv)
    return args.func(args)


if __name__ == "__main__":
    sys.exit(main())
