# Shared by the scripts in this folder (source it). Sets `kxRoot`, the root of the source tree, regardless of the
# current directory, and `kxBuild`, the folder for everything generated.
# shellcheck shell=bash

kxRoot=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
kxBuild=$kxRoot/build
kxJobs=$(nproc 2>/dev/null || echo 2)
export kxRoot kxBuild kxJobs

say() { printf '== %s\n' "$*"; }
warn() { printf 'warning: %s\n' "$*" >&2; }
fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# Runs a command with its output redirected to a file, which is shown only when the command fails: logged LOG COMMAND...
logged() {
  local log=$1 status=0
  shift
  mkdir -p "$(dirname "$log")"
  "$@" >"$log" 2>&1 || status=$?
  if [[ $status -ne 0 ]]; then
    tail -n 200 "$log" >&2
    printf 'error: %s: exit status %s (whole output in %s)\n' "$*" "$status" "$log" >&2
  fi
  return "$status"
}

# Configures a preset and builds the given targets, or all: build_preset PRESET [TARGET...]
build_preset() {
  local preset=$1
  shift
  local targets=()
  [[ $# -eq 0 ]] || targets=(--target "$@")
  say "building $preset${*:+: $*}"
  # Reconfiguring takes a second and notices new folders and packages.
  (cd "$kxRoot" && logged "$kxBuild/log/$preset-configure.log" cmake --preset "$preset") || return 1
  logged "$kxBuild/log/$preset-build.log" cmake --build "$kxBuild/$preset" -j "$kxJobs" "${targets[@]}"
}
