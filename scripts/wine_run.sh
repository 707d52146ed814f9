#!/usr/bin/env bash
# Runs one Windows program: wine_run.sh PROGRAM.exe [ARGUMENT...]. CMake uses it to run Windows test programs. Creates
# the prefix if needed, and starts an X server for the run unless called within a session.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
# shellcheck source=scripts/wine_env.sh
source "$kxRoot/scripts/wine_env.sh"

[[ $# -gt 0 ]] || fail "usage: wine_run.sh PROGRAM.exe [ARGUMENT...]"
if [[ -n ${KX_WINE_SESSION:-} ]]; then
  exec wine "$@"
fi
# Keep setup messages out of the program's output.
wine_session_start own >&2
status=0
wine_do "$@" || status=$?
wine_session_stop
exit "$status"
