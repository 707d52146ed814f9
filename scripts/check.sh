#!/usr/bin/env bash
# Checks the source without running it: check.sh [--all] [BASE]
#
# - clang-format on all C++ files;
# - shellcheck on all scripts;
# - clang-tidy on the C++ files of the product that differ from BASE (default: where this branch left main, or on main
#   the commit before), or whose header does, with --all on every one, which takes ten minutes. It needs a native build,
#   and sees no file that is compiled for Windows alone;
# - the one-line changes of scripts/mutants/ fit the sources.
#
# The last line is `N passed, N failed`, one for each of the four.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cd "$kxRoot"

kTidyMost=25  # files at a time; more are a big change, and --all is for those

all=no
if [[ ${1:-} == --all ]]; then
  all=yes
  shift
fi
base=${1:-}

passed=0
failed=0
check() {
  local name=$1
  shift
  if "$@"; then
    passed=$((passed + 1))
  else
    echo "not passed: $name"
    failed=$((failed + 1))
  fi
}

# The files of the tree, tracked or about to be, that match the patterns.
files() {
  local file
  git ls-files --cached --others --exclude-standard -- "$@" | while read -r file; do
    [[ ! -f $file ]] || printf '%s\n' "$file"
  done
}

scripts() {
  files '*.sh' '*.bash' .ci/run
  files scripts | xargs -r grep -lE '^#!.*\b(bash|sh)$'
}

check_format() { files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror; }
check_scripts() { scripts | sort -u | xargs shellcheck -x; }

# The commit with which changed files are compared; nothing where there is none, as in a clone of one commit.
base_commit() {
  local commit
  if [[ -n $base ]]; then
    git rev-parse --verify --quiet "$base^{commit}"
    return
  fi
  for commit in main origin/main; do
    git rev-parse --verify --quiet "$commit^{commit}" >/dev/null || continue
    [[ $(git rev-parse "$commit") == $(git rev-parse HEAD) ]] || {
      git merge-base "$commit" HEAD
      return
    }
  done
  git rev-parse --verify --quiet 'HEAD~1^{commit}' || true
}

# Of the files that are named on standard input, those that the native build in $1 compiles.
compiled_files() {
  local names
  names=$(LC_ALL=C sort -u)  # read here: a process substitution within the pipeline would read the pipe
  grep -oP '"file": "\K[^"]+' "$1/compile_commands.json" | sed "s|^$kxRoot/||" | LC_ALL=C sort -u |
    LC_ALL=C comm -12 - <(printf '%s\n' "$names")
}

check_tidy() {
  mkdir -p "$kxBuild/log"
  local build=$kxBuild/sanitize commit changed
  [[ -f $build/compile_commands.json ]] || build=$kxBuild/native
  [[ -f $build/compile_commands.json ]] || {
    echo "clang-tidy needs a native build: cmake --workflow --preset native"
    return 1
  }
  if [[ $all == yes ]]; then
    mapfile -t changed < <(files '*.cpp' | grep -v '^tests/' | compiled_files "$build")
  else
    commit=$(base_commit)
    [[ -n $commit ]] || return 0
    mapfile -t changed < <({
      git diff --name-only --diff-filter=d "$commit" -- '*.cpp' '*.h'
      git ls-files --others --exclude-standard -- '*.cpp' '*.h'
    } | grep -v '^tests/' | sed 's/\.h$/.cpp/' | compiled_files "$build")
    if [[ ${#changed[@]} -gt $kTidyMost ]]; then
      warn "${#changed[@]} changed files; clang-tidy takes the first $kTidyMost (scripts/check.sh --all takes all)"
      changed=("${changed[@]:0:$kTidyMost}")
    fi
  fi
  [[ ${#changed[@]} -gt 0 ]] || return 0
  # Errors of clang itself do not count: it rejects some headers of GCC's library, and the build has compiled the files.
  printf '%s\n' "${changed[@]}" | xargs -n 1 -P "$kxJobs" clang-tidy -p "$build" --quiet >"$kxBuild/log/clang-tidy.log" \
    2>/dev/null || true
  ! grep -A 2 -e '-warnings-as-errors\]$' "$kxBuild/log/clang-tidy.log"
}

check clang-format check_format
check shellcheck check_scripts
check clang-tidy check_tidy
check mutants scripts/mutants.py --check
echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
