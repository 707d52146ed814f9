#!/usr/bin/env bash
# Runs one Windows program: wine_run.sh PROGRAM.exe [ARGUMENT...]. The Windows builds run their test programs through it.
# Makes the prefix when there is none yet, and an X server for the time of the run unless it is called in a session.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
# shellcheck source=scripts/wine_env.sh
source "$kxRoot/scripts/wine_env.sh"

[[ $# -gt 0 ]] || fail "usage: wine_run.sh PROGRAM.exe [ARGUMENT...]"
if [[ -n ${KX_WINE_SESSION:-} ]]; then
  exec wine "$@"
fi
# What the preparation says must not mix with what the program says.
wine_session_start own >&2
status=0
wine_do "$@" || status=$?
wine_session_stop
exit "$status"
