#!/usr/bin/env bash
# Builds the fuzz targets of tests/fuzz with clang in a tree of their own,
# runs each for the time given, one after another on one core, and writes
# executions, coverage and crashes of every target to FUZZING.md.
#
#   tools/run_fuzzers.sh [-t SECONDS] [-b BUILD_DIR] [-o REPORT] [TARGET...]
#
# Defaults: 600 seconds per target, build directory build-fuzz, report
# FUZZING.md, all targets. Paths are relative to the project root. Each
# target's growing corpus, crash files and log stay in BUILD_DIR/fuzz-runs;
# the checked-in seeds in tests/fuzz/corpus are only read.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
seconds=600
build=build-fuzz
report=FUZZING.md
# The targets as tests/fuzz/CMakeLists.txt lists them (name:source:part).
mapfile -t all_targets < <(sed -n '/^set(TDLB_FUZZ_TARGETS/,/)/p' "$root/tests/fuzz/CMakeLists.txt" \
  | grep -o '[a-z_]*:[A-Za-z]*:[a-z]*' | cut -d: -f1)

while getopts "t:b:o:h" option; do
  case $option in
    t) seconds=$OPTARG ;;
    b) build=$OPTARG ;;
    o) report=$OPTARG ;;
    *) sed -n '2,12p' "$0"; exit 2 ;;
  esac
done
shift $((OPTIND - 1))
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=("${all_targets[@]}")
for target in "${targets[@]}"; do
  if [[ ! " ${all_targets[*]} " == *" $target "* ]]; then
    echo "unknown target '$target'; known: ${all_targets[*]}" >&2
    exit 2
  fi
done
if ! [[ $seconds =~ ^[0-9]+$ ]] || [ "$seconds" -eq 0 ]; then
  echo "the time per target must be a whole number of seconds, not '$seconds'" >&2
  exit 2
fi
command -v clang++ >/dev/null || { echo "clang++ is needed to build the fuzz targets" >&2; exit 2; }

cd "$root"
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang -DTD_FUZZ=ON \
  -DTDLB_BUILD_BENCHMARKS=OFF -DPython_EXECUTABLE=/usr/bin/python3 "${launcher[@]}" >/dev/null
ninja -C "$build" -j2 $(printf 'fuzz_%s ' "${targets[@]}")

runs="$build/fuzz-runs"
# The file-based targets write their input once per run: keep that in memory.
[ -d /dev/shm ] && [ -w /dev/shm ] && export TMPDIR=/dev/shm
export LSAN_OPTIONS="suppressions=$root/tests/fuzz/lsan.supp${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
rows=()
total=0
for target in "${targets[@]}"; do
  work="$runs/$target"
  mkdir -p "$work/corpus" "$work/artifacts"
  # One job, one worker: the output goes to fuzz-0.log in the working directory.
  ( cd "$work" && rm -f fuzz-0.log &&
    "$root/$build/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -jobs=1 -workers=1 \
      -timeout=10 -print_final_stats=1 -artifact_prefix=artifacts/ \
      corpus "$root/tests/fuzz/corpus/$target" >/dev/null 2>&1 ) || true
  log="$work/fuzz-0.log"
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n1)
  persecond=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -n1)
  status=$(grep -E '^#[0-9]+.*cov: ' "$log" | tail -n1)
  cov=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$status")
  ft=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$status")
  corpus=$(sed -n 's/.* corp: \([0-9]*\/[0-9]*[a-zA-Z]*\).*/\1/p' <<<"$status")
  crashes=$(find "$work/artifacts" -type f \( -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' \) | wc -l)
  if [ -z "$executions" ]; then
    echo "$target: no final statistics; see $log" >&2
    executions=0
  fi
  total=$((total + executions))
  rows+=("| $target | $seconds | $executions | ${persecond:-?} | ${cov:-?} | ${ft:-?} | ${corpus:-?} | $crashes |")
  echo "$target: $executions executions, cov ${cov:-?}, ft ${ft:-?}, $crashes crash files"
done

{
  echo "# Fuzzing"
  echo
  echo "Each reader of outside data has a libFuzzer target in \`tests/fuzz/\` (see DEVELOPERS.md)."
  echo "Figures of the last run, $(date -u '+%Y-%m-%d %H:%M UTC'), on $(nproc) cores shared with other work,"
  echo "$(clang++ --version | head -n1), targets run one after another:"
  echo
  echo '```'
  echo "tools/run_fuzzers.sh -t $seconds -b $build ${*}"
  echo '```'
  echo
  echo "| target | seconds | executions | exec/s | cov | ft | corpus (units/size) | crash files |"
  echo "|---|---|---|---|---|---|---|---|"
  printf '%s\n' "${rows[@]}"
  echo
  echo "Executions across the targets: $total."
  echo
  echo "cov and ft are libFuzzer's counts of covered edges and features at the end of the run."
  echo "Crash files (crash, leak, timeout, out of memory) are in \`$runs/<target>/artifacts/\`;"
  echo "each one found is fixed and kept as a regression test in the normal suite."
} > "$report.new"
if [ -f "$report" ] && grep -q '^## Found and fixed' "$report"; then
  # The record of what earlier runs found is kept below the figures.
  { echo; sed -n '/^## Found and fixed/,$p' "$report"; } >> "$report.new"
fi
mv "$report.new" "$report"
echo "executions across the targets: $total; figures in $report"
