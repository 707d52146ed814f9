#!/usr/bin/env bash
# Lets everything around the dialog fail, again and again: faults.sh [MINUTES]
#
# Memory, files, disks, power, kills, damaged pages and, where clang is, the fuzzer, under the sanitizers, with other
# random choices each round, for as long as it is told (30 minutes; at least one round). Prints a table: case, tried,
# held. Ends with 1 when something did not hold.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

minutes=${1:-30}
[[ $minutes =~ ^[0-9]+$ ]] || fail "usage: faults.sh [MINUTES]"
end=$((SECONDS + minutes * 60))

"$kxRoot/scripts/setup.sh" native
build_preset sanitize power_loss_tests dialog_faults_tests || fail "the build failed"
programs=("$kxBuild/sanitize/tests/power_loss_tests" "$kxBuild/sanitize/tests/dialog_faults_tests")

fuzzer=
if command -v clang++ >/dev/null; then
  say "building the fuzzer"
  fuzzBuild=$kxBuild/fuzz
  (cd "$kxRoot" && logged "$kxBuild/log/fuzz-configure.log" cmake -S . -B "$fuzzBuild" -G Ninja \
    -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKX_FUZZ=ON \
    -DKX_SANITIZE=ON) &&
    logged "$kxBuild/log/fuzz-build.log" cmake --build "$fuzzBuild" -j "$kxJobs" --target jet_sql_fuzzer &&
    fuzzer=$(find "$fuzzBuild" -name jet_sql_fuzzer -type f -perm -u+x | head -n 1)
  [[ -n $fuzzer ]] || warn "the fuzzer cannot be built here"
fi

work=$kxBuild/faults
rm -rf "$work"
mkdir -p "$work/corpus"
export KX_FAULTS_TABLE=$work/counts.tsv
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
kRuns=100000 # of the fuzzer, a round
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
  if [[ -n $fuzzer ]]; then
    log=$work/fuzzer.$round.log held=$kRuns
    if ! (cd "$work" && "$fuzzer" -runs=$kRuns -max_len=600 -seed=$round corpus "$kxRoot/tests/engine/fuzz_corpus") \
      >"$log" 2>&1; then
      status=1 held=0
      warn "the fuzzer found something (whole output in $log)"
    fi
    printf 'statements fuzzed\t%d\t%d\n' "$kRuns" "$held" >>"$KX_FAULTS_TABLE"
  fi
done

say "$round round(s)"
awk -F '\t' '
  { tried[$1] += $2; held[$1] += $3 }
  END { for (name in tried) printf "| %s | %d | %d |\n", name, tried[name], held[name] }' "$KX_FAULTS_TABLE" |
  sort >"$work/table.md"
printf '| case | tried | held |\n|---|---|---|\n' | cat - "$work/table.md"
exit "$status"
