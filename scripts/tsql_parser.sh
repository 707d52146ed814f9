#!/usr/bin/env bash
# Installs the T-SQL grammar that tests/engine/tsql_parser uses into build/deps, in the versions of its lock file. Needs
# the network only the first time.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

source=$kxRoot/tests/engine/tsql_parser
target=$kxBuild/deps/tsql_parser
if [[ -d $target/node_modules ]] && cmp -s "$source/package-lock.json" "$target/package-lock.json"; then
  exit 0
fi
say "installing the T-SQL grammar"
rm -rf "$target" "$target.new"
mkdir -p "$target.new"
cp "$source"/package*.json "$target.new/"
logged "$kxBuild/log/tsql-parser.log" npm ci --prefix "$target.new" --ignore-scripts --no-audit --no-fund
mv "$target.new" "$target"
