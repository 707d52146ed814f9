#!/usr/bin/env bash
# Provides build/deps/sqlite/sqlite3.{c,h}, which the Windows builds compile: the SQLite version that the native builds
# link, from Debian's source package. Needs no root and does not change the machine's package configuration.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

kDefaultMirror=http://deb.debian.org
target=$kxBuild/deps/sqlite
version=$(dpkg-query -W -f='${source:Version}' libsqlite3-0)
if [[ -f $target/sqlite3.c && -f $target/sqlite3.h && $(cat "$target/stamp" 2>/dev/null) == "$version" ]]; then
  exit 0
fi

say "making SQLite's amalgamation ($version)"
mkdir -p "$kxBuild/deps"
work=$(mktemp -d "$kxBuild/deps/sqlite-work.XXXXXX")
trap 'rm -rf "$work"' EXIT
codename=$(. /etc/os-release && echo "${VERSION_CODENAME:-bookworm}")

# Derives source entries from this machine's binary entries for Debian's own suites, in both of apt's formats.
write_configured_sources() {
  local parts=$1 file
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [[ -r $file ]] || continue
    awk -v codename="$codename" '
      $1 != "deb" { next }
      {
        sub(/#.*/, ""); options = ""; line = $0
        if (match(line, /\[[^]]*\]/)) {
          options = substr(line, RSTART, RLENGTH)
          line = substr(line, 1, RSTART - 1) " " substr(line, RSTART + RLENGTH)
          sub(/arch=[^] ]*/, "", options)
          if (options ~ /^\[ *\]$/) options = ""
        }
        count = split(line, word, " "); main = 0
        for (i = 4; i <= count; i++) if (word[i] == "main") main = 1
        if (main && word[3] ~ "^" codename "(-updates|-security|/updates)?$")
          print "deb-src", options, word[2], word[3], "main"
      }' "$file"
  done >"$parts/configured.list"
  for file in /etc/apt/sources.list.d/*.sources; do
    [[ -r $file ]] || continue
    awk -v codename="$codename" '
      function finish(   i, n, word, suites) {
        n = split(field["suites"], word, " "); suites = ""
        for (i = 1; i <= n; i++)
          if (word[i] ~ "^" codename "(-updates|-security|/updates)?$") suites = suites " " word[i]
        if ((" " field["types"] " ") ~ / deb / && (" " field["components"] " ") ~ / main / && suites != "" &&
            tolower(field["enabled"]) !~ /no|false|0/) {
          printf "Types: deb-src\nURIs: %s\nSuites:%s\nComponents: main\n", field["uris"], suites
          if (signedBy != "") print signedBy
          print ""
        }
        delete field; signedBy = ""; name = ""
      }
      /^#/ { next }
      /^[ \t]*$/ { finish(); next }
      /^[ \t]/ {
        if (name == "signed-by") signedBy = signedBy "\n" $0
        else { sub(/^[ \t]+/, ""); field[name] = field[name] " " $0 }
        next
      }
      {
        name = tolower($0); sub(/:.*/, "", name)
        value = $0; sub(/^[^:]*:[ \t]*/, "", value)
        field[name] = value
        if (name == "signed-by") signedBy = $0
      }
      END { finish() }' "$file"
  done >"$parts/configured.sources"
}

write_default_sources() {
  local parts=$1 keyring=/usr/share/keyrings/debian-archive-keyring.gpg suite path
  local options=''
  [[ ! -r $keyring ]] || options="[signed-by=$keyring]"
  for suite in bookworm bookworm-updates bookworm-security; do
    path=debian
    [[ $suite != *-security ]] || path=debian-security
    echo "deb-src $options $kDefaultMirror/$path $suite main"
  done >"$parts/default.list"
}

# Downloads the source package using the entries that `$1` writes; apt's state stays in the work folder.
download_with() {
  local state=$work/$1
  rm -rf "$work/source"
  mkdir -p "$state"/{parts,lists/partial,cache/archives/partial} "$work/source" && "$1" "$state/parts" || return 1
  local apt=(apt-get -q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$state/parts"
    -o Dir::State::Lists="$state/lists" -o Dir::Cache="$state/cache" -o Acquire::Languages=none
    -o Acquire::Retries=3 -o APT::Sandbox::User=root -o APT::Get::List-Cleanup=false)
  "${apt[@]}" update || true
  # An older point release may be gone from the archive; the current one serves as well.
  (cd "$work/source" &&
    { "${apt[@]}" source --download-only "sqlite3=$version" || "${apt[@]}" source --download-only sqlite3; })
}

make_amalgamation() {
  mkdir "$work/out" &&
    (cd "$work/source" && dpkg-source --no-check -x sqlite3_*.dsc "$work/tree") &&
    (cd "$work/out" && ../tree/configure && make sqlite3.c)
}

logged "$kxBuild/log/sqlite-source.log" download_with write_configured_sources ||
  logged "$kxBuild/log/sqlite-source-default.log" download_with write_default_sources ||
  fail "SQLite's source package cannot be downloaded"
logged "$kxBuild/log/sqlite-make.log" make_amalgamation || fail "SQLite's amalgamation cannot be made"

mkdir -p "$target"
rm -f "$target/stamp"
cp "$work/out/sqlite3.c" "$work/out/sqlite3.h" "$target/"
echo "$version" >"$target/stamp"
