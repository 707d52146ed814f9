#!/usr/bin/env bash
# Runs a program in the 32-bit root: enter.sh PROGRAM [ARGUMENT...]. It shares this machine's processes and network and
# the paths that tests use: /tmp, the source tree, the Wine prefix, the home and the current folder.
set -euo pipefail

tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
root=${KX_WINE32_ROOT:-$tree/build/wine32/root}

arguments=(--tmpfs / --dev /dev --proc /proc --symlink usr/bin /bin --symlink usr/sbin /sbin --symlink usr/lib /lib)
for folder in usr etc var; do arguments+=(--ro-bind "$root/$folder" "/$folder"); done
for file in /etc/passwd /etc/group /etc/hosts; do
  [[ ! -e $root$file ]] || arguments+=(--ro-bind "$file" "$file")
done
for folder in /tmp "$tree" "${WINEPREFIX:-}" "${HOME:-}" "$PWD"; do
  [[ ! -d $folder ]] || arguments+=(--bind "$folder" "$folder")
done
exec bwrap "${arguments[@]}" --setenv PATH /usr/sbin:/usr/bin --chdir "$PWD" -- "$@"
