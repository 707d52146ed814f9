#!/usr/bin/env bash
# Installs what is needed to build and run the system on Debian 12: setup.sh [GROUP...]
#
#   native   build of the native programs and tests
#   checks   the formatter and the linters of scripts/check.sh
#   windows  cross-build of the DLL and its tests, SQLite's source for it
#   wine     running Windows programs, with and without a display
#   wine32   making the root in which 32-bit ones run
#   package  making the installers and signing them
#   hosts    checking the sample hosts in other languages, a grammar of PowerShell
#   bench    the benchmarks
#   server   the database server and the ODBC drivers that the tests need, no server is left running; a grammar of T-SQL
#
# Installs all groups by default. Needs root or sudo only when a package is missing, and the network only then and for
# SQLite's source.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

declare -A kPackages=(
  [native]="build-essential cmake ninja-build libsqlite3-dev unixodbc-dev googletest libgtest-dev unicode-data mdbtools"
  [checks]="clang-format clang-tidy shellcheck git python3"
  [windows]="build-essential cmake ninja-build googletest unicode-data libsqlite3-0
             g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix wine64-tools libwine-dev
             librsvg2-bin icoutils dpkg-dev xz-utils tcl faketime"
  # Wine loads the X libraries at run time, so its package does not depend on them.
  [wine]="wine wine64 fonts-wine fonts-liberation fonts-vlgothic fonts-symbola fontconfig xvfb x11-utils xdotool imagemagick libxrender1 libxcomposite1
          libxcursor1 libxfixes3 libxi6 libxinerama1 libxrandr2 libxxf86vm1"
  [package]="wixl msitools osslsigncode openssl zip"
  [hosts]="python3 mono-mcs libmono-microsoft-csharp4.0-cil"
  [wine32]="mmdebstrap arch-test bubblewrap"
  [bench]="build-essential cmake ninja-build libsqlite3-dev libbenchmark-dev unixodbc-dev libpq-dev"
  [server]="postgresql unixodbc odbc-postgresql libsqliteodbc"
)

wanted=("$@")
[[ $# -gt 0 ]] || wanted=(native checks windows wine wine32 package hosts bench server)

packages=()
needsSqlite=no
grammars=()
for group in "${wanted[@]}"; do
  [[ -n ${kPackages[$group]:-} ]] || fail "no group '$group'; there are: ${!kPackages[*]}"
  read -r -d '' -a more <<<"${kPackages[$group]}" || true
  packages+=("${more[@]}")
  [[ $group != windows ]] || needsSqlite=yes
  [[ $group != server ]] || grammars+=(tests/engine/tsql_parser)
  [[ $group != hosts ]] || grammars+=(tests/host/powershell_parser)
done

# Node.js from another source often includes npm.
if [[ ${#grammars[@]} -gt 0 ]] && ! command -v npm >/dev/null; then packages+=(nodejs npm); fi

# Queries the package database, because half of these packages contain no program.
missing_packages() {
  declare -A have=()
  local name status
  while read -r status name; do
    [[ $status == installed ]] && have[$name]=1
  done < <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null || true)
  for name in "${packages[@]}"; do
    [[ -n ${have[$name]:-} ]] || printf '%s\n' "$name"
  done | sort -u
}

as_root() {
  if [[ $(id -u) -eq 0 ]]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "installing packages needs root or sudo; missing: ${missing[*]}"
  fi
}

mapfile -t missing < <(missing_packages)
if [[ ${#missing[@]} -gt 0 ]]; then
  say "installing ${missing[*]}"
  aptGet=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=600 -o Acquire::Retries=3)
  # One unreachable third-party source must not prevent installing from the others.
  as_root "${aptGet[@]}" update || warn "apt-get update had errors"
  # The tests run their own servers. The package would create and start one for the system.
  clusterConf=/etc/postgresql-common/createcluster.conf
  clusterKept=
  if [[ " ${missing[*]} " == *" postgresql "* ]]; then
    as_root "${aptGet[@]}" install --no-install-recommends postgresql-common
    clusterKept=$(mktemp)
    cp "$clusterConf" "$clusterKept"
    as_root sed -i -E 's/^#? *create_main_cluster *=.*/create_main_cluster = false/' "$clusterConf"
  fi
  status=0
  as_root "${aptGet[@]}" install --no-install-recommends "${missing[@]}" || status=$?
  if [[ -n $clusterKept ]]; then
    as_root cp "$clusterKept" "$clusterConf"
    rm -f "$clusterKept"
  fi
  [[ $status -eq 0 ]] || fail "the packages could not be installed"
  mapfile -t missing < <(missing_packages)
  [[ ${#missing[@]} -eq 0 ]] || fail "still missing: ${missing[*]}"
fi

if [[ $needsSqlite == yes ]]; then
  "$kxRoot/scripts/sqlite_source.sh"
fi
for grammar in "${grammars[@]}"; do "$kxRoot/scripts/grammar.sh" "$grammar"; done
