#!/usr/bin/env bash
# Runs the dialog many times in one host process under Wine: soak.sh [RUNS]
#
# 1,000 runs unless told otherwise, every other one cancelled. Prints what the process holds as it goes (handles,
# windows, drawing objects, private memory) and ends with 1 when something grows after the hundredth run.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

runs=${1:-1000}
[[ $runs =~ ^[0-9]+$ ]] || fail "usage: soak.sh [RUNS]"
"$kxRoot/scripts/setup.sh" windows wine
build_preset windows-x64 e2e_tests KXRestore || fail "the build failed"
# shellcheck source=scripts/wine_env.sh
source "$kxRoot/scripts/wine_env.sh"
wine_session_start own
trap 'wine_stop_server; wine_session_stop' EXIT
status=0
KX_SOAK_RUNS=$runs wine "$kxBuild/windows-x64/tests/e2e_tests.exe" --gtest_filter="*RunsForWeeks*" \
  {kxWineLock}>&- || status=$?
exit "$status"
