#!/usr/bin/env bash
# Line coverage of the sources (src, app, host, python) by the whole suite:
# a --coverage build of its own in build-coverage (or $1), every ctest test,
# then gcovr's summary and an HTML page in build-coverage/coverage/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-packages.sh
build=${1:-build-coverage}
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B "$build" -G Ninja -DPython_EXECUTABLE=/usr/bin/python3 "${launcher[@]}" \
  -DCMAKE_BUILD_TYPE=Debug -DTDLB_BUILD_BENCHMARKS=OFF -DCMAKE_CXX_FLAGS="--coverage -O0" \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage \
  -DCMAKE_MODULE_LINKER_FLAGS=--coverage
cmake --build "$build" -j2
find "$build" -name '*.gcda' -delete
# A failing test still counts for coverage; the summary says how many failed.
ctest --test-dir "$build" -j2 --timeout 1800 || echo "== some tests failed (coverage still measured)"
mkdir -p "$build/coverage"
gcovr -r . --object-directory "$build" -j 2 --gcov-ignore-parse-errors \
  --filter 'src/' --filter 'app/' --filter 'host/' --filter 'python/' \
  --json "$build/coverage/coverage.json" --html-details "$build/coverage/index.html" --print-summary
