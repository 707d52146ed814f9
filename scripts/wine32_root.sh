#!/usr/bin/env bash
# Creates build/wine32/root once: a 32-bit Debian with Wine for the 32-bit test programs, run by scripts/wine32/. It is
# a separate root because Debian's packages of both bitnesses conflict.
#
# Exit code 3: this machine cannot have one, because it may not mount or cannot get the packages. KX_WINE32_ROOT sets
# another path, to share it between checkouts.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

kMirror=http://deb.debian.org/debian
kRootVersion=1
kLimit=600  # seconds
kPackages=wine,wine32,fonts-wine,fonts-liberation,libodbc2,odbc-postgresql,libsqliteodbc,libxrender1,libxcomposite1
kPackages+=,libxcursor1,libxfixes3,libxi6,libxinerama1,libxrandr2,libxxf86vm1,xdotool

root=${KX_WINE32_ROOT:-$kxBuild/wine32/root}

cannot() {
  warn "no 32-bit Wine: $*"
  exit 3
}

bwrap --bind / / --dev /dev --proc /proc true 2>/dev/null || cannot "this machine lets nobody mount (bubblewrap fails)"
[[ $(cat "$root/kx-ready" 2>/dev/null) != "$kRootVersion" ]] || exit 0

say "making a 32-bit root with Wine in $root"
rm -rf "$root"
mkdir -p "$(dirname "$root")"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
mode=auto
[[ $(id -u) -ne 0 ]] || mode=root
# Only the main archive: the list of security updates for i386 does not match its packages. The drivers' packages
# register themselves in the root's own list, not in that of a running test server.
# shellcheck disable=SC2016  # the hook's own $1, the new root
logged "$kxBuild/log/wine32-root.log" timeout --kill-after=10 "$kLimit" env -u ODBCSYSINI -u ODBCINSTINI \
  mmdebstrap --mode="$mode" --variant=essential --arch=i386 --components=main --include="$kPackages" \
  --aptopt='Acquire::Languages "none"' --aptopt='Acquire::Retries "3"' \
  --dpkgopt='path-exclude=/usr/share/doc/*' --dpkgopt='path-exclude=/usr/share/man/*' \
  --dpkgopt='path-exclude=/usr/share/locale/*' --customize-hook='rm -rf "$1"/var/cache/apt/* "$1"/var/lib/apt/lists/*' \
  bookworm "$root" "deb [signed-by=$keyring] $kMirror bookworm main" ||
  { rm -rf "$root" && cannot "the packages could not be installed"; }
# The shared list of ODBC drivers refers to this folder.
ln -s i386-linux-gnu "$root/usr/lib/x86_64-linux-gnu"
echo "$kRootVersion" >"$root/kx-ready"
