#!/usr/bin/env bash
# Makes build/wine32/root once: a 32-bit Debian with Wine, for the 32-bit test programs. Debian's packages of both
# bitnesses cannot stand side by side, so that it is a root of its own; scripts/wine32/ runs its programs.
#
# Exit code 3 says that this machine cannot have one: it may not mount, or the packages cannot be had. Set KX_WINE32_ROOT
# for another place that several checkouts share.
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
# The main archive alone: the list of security updates for i386 does not fit its packages. The drivers' packages enter
# themselves in the root's own list, not in that of a test server that is running.
# shellcheck disable=SC2016  # the hook's own $1, the new root
logged "$kxBuild/log/wine32-root.log" timeout --kill-after=10 "$kLimit" env -u ODBCSYSINI -u ODBCINSTINI \
  mmdebstrap --mode="$mode" --variant=essential --arch=i386 --components=main --include="$kPackages" \
  --aptopt='Acquire::Languages "none"' --aptopt='Acquire::Retries "3"' \
  --dpkgopt='path-exclude=/usr/share/doc/*' --dpkgopt='path-exclude=/usr/share/man/*' \
  --dpkgopt='path-exclude=/usr/share/locale/*' --customize-hook='rm -rf "$1"/var/cache/apt/* "$1"/var/lib/apt/lists/*' \
  bookworm "$root" "deb [signed-by=$keyring] $kMirror bookworm main" ||
  { rm -rf "$root" && cannot "the packages could not be installed"; }
# The list of ODBC drivers that the tests share with this machine names its folder.
ln -s i386-linux-gnu "$root/usr/lib/x86_64-linux-gnu"
echo "$kRootVersion" >"$root/kx-ready"
