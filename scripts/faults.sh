#!/usr/bin/env bash
# Makes everything around the dialog fail, again and again: faults.sh [MINUTES]
#
# Memory, files, disks, power, kills, damaged pages, a server's driver and, where clang is installed, the fuzzers, under
# the sanitizers, with other random choices each round, for the given time (30 minutes; at least one round). Prints a
# table: case, tried, held. Ends with 1 when something did not hold.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
# shellcheck source=scripts/test_server.sh
source "$kxRoot/scripts/test_server.sh"

minutes=${1:-30}
[[ $minutes =~ ^[0-9]+$ ]] || fail "usage: faults.sh [MINUTES]"
end=$((SECONDS + minutes * 60))

"$kxRoot/scripts/setup.sh" native server
build_preset sanitize durability_tests dialog_faults_tests server_tests || fail "the build failed"
programs=("$kxBuild/sanitize/tests/durability_tests" "$kxBuild/sanitize/tests/dialog_faults_tests")

fuzzers=()
if command -v clang++ >/dev/null; then
  say "building the fuzzers"
  fuzzBuild=$kxBuild/fuzz
  (cd "$kxRoot" && logged "$kxBuild/log/fuzz-configure.log" cmake -S . -B "$fuzzBuild" -G Ninja \
    -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKX_FUZZ=ON \
    -DKX_SANITIZE=ON) || fail "the fuzzers cannot be configured"
  logged "$kxBuild/log/fuzz-build.log" cmake --build "$fuzzBuild" -j "$kxJobs" --target jet_sql_fuzzer jet_file_fuzzer ||
    fail "the fuzzers cannot be built"
  fuzzers=(jet_sql_fuzzer jet_file_fuzzer)
fi

work=$kxBuild/faults
rm -rf "$work"
mkdir -p "$work"
export KX_FAULTS_TABLE=$work/counts.tsv
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
# Of the fuzzers, a round: inputs and their longest size.
declare -A kRuns=([jet_sql_fuzzer]=100000 [jet_file_fuzzer]=10000)
declare -A kLongest=([jet_sql_fuzzer]=600 [jet_file_fuzzer]=200)
declare -A kSeeds=([jet_sql_fuzzer]=$kxRoot/tests/engine/fuzz_corpus [jet_file_fuzzer]="")
kDriverSeconds=240 # of a round
declare -A kCases=([jet_sql_fuzzer]="statements fuzzed" [jet_file_fuzzer]="files of the desktop engine fuzzed")
trap test_server_stop EXIT
test_server_start
status=0
round=0
: >"$KX_FAULTS_TABLE"
while [[ $round -eq 0 || $SECONDS -lt $end ]]; do
  round=$((round + 1))
  say "round $round"
  for program in "${programs[@]}"; do
    log=$work/$(basename "$program").$round.log
    # A round takes ten times the sample of a test run; the first one begins where that does.
    if ! KX_FAULTS_SEED=$round KX_FAULTS_TIMES=10 "$program" --gtest_brief=1 --gtest_also_run_disabled_tests >"$log" 2>&1; then
      status=1
      warn "$(basename "$program"), round $round: something did not hold (whole output in $log)"
    fi
  done
  log=$work/server_tests.$round.log
  if ! KX_FAULTS_SEED=$round KX_FAULTS_SECONDS=$kDriverSeconds "$kxBuild/sanitize/tests/server_tests" --gtest_brief=1 \
    --gtest_filter='DriverSweep.Screen*' >"$log" 2>&1; then
    status=1
    warn "server_tests, round $round: something did not hold (whole output in $log)"
  fi
  sed -n 's/^\(.*[^ ]\)  *[0-9]* calls, *\([0-9]*\) faults tried, all held$/a call of the driver: \1\t\2\t\2/p' "$log" \
    >>"$KX_FAULTS_TABLE"
  for fuzzer in ${fuzzers[@]+"${fuzzers[@]}"}; do
    log=$work/$fuzzer.$round.log held=${kRuns[$fuzzer]}
    mkdir -p "$work/$fuzzer"
    # shellcheck disable=SC2086 # no seeds, no argument
    if ! (cd "$work" && "$fuzzBuild/tests/engine/$fuzzer" -runs="$held" -max_len="${kLongest[$fuzzer]}" -seed="$round" \
      "$fuzzer" ${kSeeds[$fuzzer]}) >"$log" 2>&1; then
      status=1 held=0
      warn "$fuzzer found something (whole output in $log)"
    fi
    printf '%s\t%d\t%d\n' "${kCases[$fuzzer]}" "${kRuns[$fuzzer]}" "$held" >>"$KX_FAULTS_TABLE"
  done
done

say "$round round(s)"
awk -F '\t' '
  { tried[$1] += $2; held[$1] += $3 }
  END { for (name in tried) printf "| %s | %d | %d |\n", name, tried[name], held[name] }' "$KX_FAULTS_TABLE" |
  sort >"$work/table.md"
printf '| case | tried | held |\n|---|---|---|\n' | cat - "$work/table.md"
exit "$status"
