#!/usr/bin/env bash
# Builds and runs the benchmarks: bench.sh [OPTION OF THE BENCHMARK LIBRARY...]
#
# Prints a table for each program and writes build/bench/report.json, an array of objects: name and rows, then either
# ours, bare and ratio (medians in seconds of several alternating runs, and their ratio) or value and unit, and the
# limit if there is one. Exit code 1 when something exceeds its limit. --benchmark_filter=REGEX runs a part.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
# shellcheck source=scripts/test_server.sh
source "$(dirname "${BASH_SOURCE[0]}")/test_server.sh"

"$kxRoot/scripts/setup.sh" native bench server
build_preset native benches || fail "the benchmarks cannot be built"

trap test_server_stop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
test_server_start

work=$kxBuild/bench
mkdir -p "$work"
rm -f "$work"/*.json
status=0
mapfile -t programs < <(find "$kxBuild/native/bench" -maxdepth 1 -type f -name '*_bench' -perm -u+x | sort)
[[ ${#programs[@]} -gt 0 ]] || fail "there is no benchmark program"
reports=()
for program in "${programs[@]}"; do
  name=$(basename "$program")
  say "running $name"
  programStatus=0
  (cd "$work" && "$program" --report="$work/$name.lines.json" "$@") || programStatus=$?
  [[ $programStatus -le 1 ]] || warn "$name ended with $programStatus"
  [[ $programStatus -le $status ]] || status=$programStatus
  [[ ! -f $work/$name.lines.json ]] || reports+=("$work/$name.lines.json")
done

{
  echo '['
  # A comma after every line but the last.
  [[ ${#reports[@]} -eq 0 ]] || cat "${reports[@]}" | sed '$!s/$/,/; s/^/  /'
  echo ']'
} >"$work/report.json"
[[ ${#reports[@]} -eq 0 ]] || rm -f "${reports[@]}"
say "the report is in $work/report.json"
exit "$status"
