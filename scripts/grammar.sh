#!/usr/bin/env bash
# Installs a grammar that tests use: grammar.sh FOLDER. The folder, such as tests/engine/tsql_parser, has a package.json
# and its lock file; the packages go to build/deps/NAME OF THE FOLDER. Needs the network only the first time.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

source=$kxRoot/$1
name=$(basename "$1")
target=$kxBuild/deps/$name
if [[ -d $target/node_modules ]] && cmp -s "$source/package-lock.json" "$target/package-lock.json"; then
  exit 0
fi
say "installing the grammar for $name"
rm -rf "$target" "$target.new"
mkdir -p "$target.new"
cp "$source"/package*.json "$target.new/"
logged "$kxBuild/log/$name.log" npm ci --prefix "$target.new" --ignore-scripts --no-audit --no-fund
mv "$target.new" "$target"
