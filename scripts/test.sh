#!/usr/bin/env bash
# Builds and tests everything: test.sh [--native] [--windows]
#
# Native tests run under the address and undefined-behaviour sanitizers, the 64-bit Windows tests under Wine, and of the
# 32-bit ones those that depend on the platform: component, windows, hosts. A machine that cannot have a 32-bit Wine
# reports that and skips them. The native half also compiles every header by itself and runs scripts/check.sh. The
# options select a half. The last line is `N passed, N failed`; tests that did not run because of a crash or the time
# limit count as failed.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

kNativeLimit=300  # seconds for one program
kWindowsLimit=600
kPrograms32=(component_tests win32_tests e2e_tests)

native=no
windows=no
for argument in "$@"; do
  case $argument in
    --native) native=yes ;;
    --windows) windows=yes ;;
    *) fail "usage: test.sh [--native] [--windows]" ;;
  esac
done
if [[ $native$windows == nono ]]; then
  native=yes
  windows=yes
fi

results=$kxBuild/test-results
rm -rf "$results"
mkdir -p "$results"

# Counts the completed, failed and skipped tests of a GoogleTest XML report.
read_xml() {
  awk '
    /<testcase / {
      if (/result="completed"/) ended++
      if (/result="skipped"/) skipped++
    }
    /<testsuites / { if (match($0, / failures="[0-9]+"/)) failures = substr($0, RSTART + 11, RLENGTH - 12) }
    END { print ended + 0, failures + 0, skipped + 0 }' "$1"
}

# Runs one program and writes PASSED FAILED SKIPPED to RESULTS.count, its output to RESULTS.log: run_program RESULTS
# LIMIT WINDOWS-PATHS COMMAND...
run_program() {
  local base=$1 limit=$2 xmlPath=$1.xml status=0 tried
  [[ $3 == no ]] || xmlPath=$(windows_path "$base.xml")
  shift 3
  local expected passed=0 failed=0 skipped=0 ended
  # The list of tests shows how many a crash prevented. The first program in a new prefix may wait long for Wine.
  for tried in 1 2 3; do
    expected=$(timeout --kill-after=10 60 "$@" --gtest_list_tests 2>>"$base.log" |
      awk '/^  / && $1 !~ /^DISABLED_/ { count++ } END { print count + 0 }') || expected=0
    [[ $expected -eq 0 ]] || break
    echo "the list of tests could not be had ($tried)" >>"$base.log"
  done

  GTEST_OUTPUT="xml:$xmlPath" timeout --kill-after=10 "$limit" "$@" --gtest_color=no >>"$base.log" 2>&1 || status=$?

  if [[ -s $base.xml ]]; then
    read -r ended failed skipped < <(read_xml "$base.xml")
    passed=$((ended - failed))
  else
    passed=$(grep -c '^\[       OK \]' "$base.log" || true)
    skipped=$(grep -c '^\[  SKIPPED \] .*ms)' "$base.log" || true)
  fi
  local missing=$((expected - passed - failed - skipped))
  [[ $missing -le 0 ]] || failed=$((failed + missing))
  # Leaks and crashes at exit belong to no test; a program without tests is a failure too.
  if [[ $failed -eq 0 && ($status -ne 0 || $expected -eq 0) ]]; then failed=1; fi
  [[ $status -ne 124 && $status -ne 137 ]] || echo "ended after $limit s" >>"$base.log"
  echo "exit status $status" >>"$base.log"
  echo "$passed $failed $skipped" >"$base.count"
}

report_program() {
  local base=$1 passed failed skipped
  read -r passed failed skipped <"$base.count"
  local note=
  [[ $skipped -eq 0 ]] || note=", $skipped skipped"
  printf '%-40s %5d ok, %d not%s\n' "${base#"$results"/}" "$passed" "$failed" "$note"
  if [[ $failed -ne 0 ]]; then
    # The whole log when it is short, otherwise the failures and the end.
    if [[ $(wc -l <"$base.log") -le 300 ]]; then
      cat "$base.log"
    else
      grep -E -B 12 '^\[  FAILED  \]' "$base.log" | head -n 200 || true
      echo '...'
      tail -n 60 "$base.log"
    fi
  fi
}

test_programs() {
  find "$1" -maxdepth 1 -type f -name "$2" -perm -u+x | sort
}

run_native() {
  build_preset sanitize || fail "the native build failed"
  build_preset sanitize check_headers || fail "a header does not compile alone"
  export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
  mkdir -p "$results/native"
  local program programs running=0
  mapfile -t programs < <(test_programs "$kxBuild/sanitize/tests" '*_tests')
  [[ ${#programs[@]} -gt 0 ]] || fail "the native build made no test program"
  say "running ${#programs[@]} native test programs"
  for program in "${programs[@]}"; do
    # These stop the database server that the others use, so they run last.
    [[ $program != */engine_tests && $program != */server_tests ]] || continue
    if [[ $running -ge $kxJobs ]]; then
      wait -n || true
      running=$((running - 1))
    fi
    (cd "$results/native" && run_program "$results/native/$(basename "$program")" "$kNativeLimit" no "$program") &
    running=$((running + 1))
  done
  wait
  for program in engine_tests server_tests; do
    (cd "$results/native" &&
      run_program "$results/native/$program" "$kNativeLimit" no "$kxBuild/sanitize/tests/$program")
  done
  for program in "${programs[@]}"; do report_program "$results/native/$(basename "$program")"; done
}

# Runs test programs under Wine in a subshell: run_under_wine BITS RESULTS PROGRAM...
run_under_wine() (
  export KX_WINE_BITS=$1
  folder=$2
  shift 2
  # shellcheck source=scripts/wine_env.sh
  source "$kxRoot/scripts/wine_env.sh"
  mkdir -p "$folder"
  wine_session_start own
  say "running $# Windows test programs under Wine ($KX_WINE_BITS bit)"
  # One at a time: they share a desktop and its focus.
  for program in "$@"; do
    (cd "$folder" && run_program "$folder/$(basename "$program")" "$kWindowsLimit" yes wine "$program") {kxWineLock}>&-
    report_program "$folder/$(basename "$program")"
    # Processes that a program left running must not affect the next one.
    wine_stop_server
  done
  wine_session_stop
)

run_windows() {
  build_preset windows-x64 || fail "the 64-bit Windows build failed"
  build_preset windows-x86 KXRestore restore_host "${kPrograms32[@]}" || fail "the 32-bit Windows build failed"
  local programs status=0
  mapfile -t programs < <(test_programs "$kxBuild/windows-x64/tests" '*_tests.exe')
  [[ ${#programs[@]} -gt 0 ]] || fail "the Windows build made no test program"
  run_under_wine 64 "$results/windows" "${programs[@]}"
  "$kxRoot/scripts/wine32_root.sh" || status=$?
  case $status in
    0)
      programs=("${kPrograms32[@]/#/$kxBuild/windows-x86/tests/}")
      run_under_wine 32 "$results/windows-x86" "${programs[@]/%/.exe}"
      ;;
    3) warn "the 32-bit tests are left out" ;;
    *) fail "the 32-bit Wine cannot be made" ;;
  esac
}

# Runs a script that ends with the same kind of line: run_script NAME SCRIPT
run_script() {
  local base=$results/$1 passed=0 failed=1
  "$kxRoot/scripts/$2" >"$base.log" 2>&1 || true
  read -r passed failed < <(tail -n 1 "$base.log" | sed -n 's/^\([0-9]*\) passed, \([0-9]*\) failed$/\1 \2/p') || true
  echo "${passed:-0} ${failed:-1} 0" >"$base.count"
  report_program "$base"
}

groups=(native checks server)
[[ $windows == no ]] || groups+=(windows wine wine32 package hosts)
"$kxRoot/scripts/setup.sh" "${groups[@]}"

# This shell owns the database server; a child runs the tests, because each needs its own exit trap.
if [[ -z ${KX_TEST_SERVER:-} ]]; then
  # shellcheck source=scripts/test_server.sh
  source "$kxRoot/scripts/test_server.sh"
  trap test_server_stop EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
  test_server_start
  status=0
  "$kxRoot/scripts/test.sh" "$@" || status=$?
  exit "$status"
fi

if [[ $native == yes ]]; then
  run_native
  say "checking the source"
  run_script checks check.sh
fi
if [[ $windows == yes ]]; then
  run_windows
  say "testing the packages"
  run_script packages test_package.sh
fi

read -r passed failed skipped < <(find "$results" -name '*.count' -exec cat {} + |
  awk '{ passed += $1; failed += $2; skipped += $3 } END { print passed + 0, failed + 0, skipped + 0 }')
[[ $skipped -eq 0 ]] || echo "$skipped skipped"
echo "$passed passed, $failed failed"
[[ $passed -gt 0 && $failed -eq 0 ]]
