#!/usr/bin/env bash
# Makes the packages: package.sh [--sign CERTIFICATE.p12 --password-file FILE]
#
# build/package/ then contains KXRestore-VERSION.zip (both bitnesses, header, type libraries, manifests, hosts, docs)
# and an installer for each bitness, KXRestore-VERSION-x64.msi and -x86.msi. The same sources give the same bytes; the
# date is that of the last commit unless SOURCE_DATE_EPOCH is set. With a certificate the programs and installers are
# signed, without a time-stamp server. For tests of upgrades, KX_PACKAGE sets another output folder and
# KX_PACKAGE_VERSION another version.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

certificate=
passwordFile=
while [[ $# -gt 0 ]]; do
  case $1 in
    --sign) certificate=${2:-} ;;
    --password-file) passwordFile=${2:-} ;;
    *) fail "usage: package.sh [--sign CERTIFICATE.p12 --password-file FILE]" ;;
  esac
  shift 2 || fail "an option needs a value"
done
[[ -z $certificate || (-r $certificate && -r $passwordFile) ]] || fail "the certificate or its password cannot be read"

export TZ=UTC LC_ALL=C.UTF-8
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git -C "$kxRoot" log -1 --format=%ct 2>/dev/null || echo 1767225600)}
export SOURCE_DATE_EPOCH
kNamespace=KXRestore
version=${KX_PACKAGE_VERSION:-$(sed -n 's/^project(KXRestore VERSION \([0-9.]*\).*/\1/p' "$kxRoot/CMakeLists.txt")}
package=${KX_PACKAGE:-$kxBuild/package}
stage=$package/stage/KXRestore-$version

# Runs a program with the package's date as the current date.
at_epoch() {
  faketime "$(date -u -d "@$SOURCE_DATE_EPOCH" '+%Y-%m-%d %H:%M:%S')" "$@"
}

# A GUID derived from a name.
identifier() {
  local sum
  sum=$(printf '%s %s' "$kNamespace" "$1" | sha1sum)
  sum=${sum^^}
  echo "${sum:0:8}-${sum:8:4}-5${sum:13:3}-A${sum:17:3}-${sum:20:12}"
}

# The GUID of an element of the IDL: idl_identifier "coclass RestoreDlg"
idl_identifier() {
  tr '\n' ' ' <"$kxRoot/component/com/kxrestore.idl" | grep -oE "uuid\([-0-9A-F]+\)[^]]*\] *$1\b" |
    sed -E 's/uuid\(([-0-9A-F]+)\).*/{\1}/'
}

sign() {
  [[ -n $certificate ]] || return 0
  logged "$kxBuild/log/sign.log" at_epoch osslsigncode sign -pkcs12 "$certificate" -readpass "$passwordFile" -h sha256 \
    -time "$SOURCE_DATE_EPOCH" -n KXRestore -in "$1" -out "$1.signed" || fail "$1 cannot be signed"
  mv "$1.signed" "$1"
}

# make_installer PLATFORM WIN64 PROGRAM-FILES KIND
make_installer() {
  local platform=$1 file=$package/KXRestore-$version-$1.msi template=Intel
  [[ $platform == x86 ]] || template=x64
  # wixl finds files in the current folder only.
  (cd "$stage/$platform" && logged "$kxBuild/log/wixl-$platform.log" at_epoch wixl --arch "$platform" -o "$file" \
    -D Version="$version" -D Platform="$platform" -D Win64="$2" -D ProgramFiles="$3" -D Kind="$4" \
    -D SharedWin64="$2" \
    -D ProductCode="{$(identifier "product $version $platform")}" -D UpgradeCode="{$(identifier "upgrade $platform")}" \
    -D ComponentCode="{$(identifier "component $platform")}" -D CommandLineCode="{$(identifier "command line $platform")}" \
    -D Class="$(idl_identifier 'coclass RestoreDlg')" -D Library="$(idl_identifier 'library KXRestore')" \
    -D Interface="$(idl_identifier 'interface _RestoreDlg')" -D Events="$(idl_identifier 'dispinterface __RestoreDlg')" \
    "$kxRoot/packaging/kxrestore.wxs") || fail "the installer for $platform cannot be made"
  # wixl generates a new package code each time; this one is derived from the content.
  local content
  content=$(cd "$stage" && sha256sum "$platform"/*.dll "$platform"/*.exe "$kxRoot/packaging/kxrestore.wxs" | sha256sum)
  at_epoch msibuild "$file" -s "KXRestore $version" KXRestore "$template;1033" \
    "{$(identifier "package $version $platform ${content%% *}")}" || fail "the installer for $platform cannot be named"
  sign "$file"
}

"$kxRoot/scripts/setup.sh" windows package
for preset in windows-x64 windows-x86; do
  build_preset "$preset" KXRestore kxrestore restore_host || fail "the build $preset failed"
done

say "packing KXRestore $version"
rm -rf "$package"
mkdir -p "$stage"
for preset in windows-x64 windows-x86; do
  logged "$kxBuild/log/$preset-install.log" cmake --install "$kxBuild/$preset" --prefix "$stage" ||
    fail "$preset cannot be installed"
done
for file in "$stage"/x64/*.{dll,exe} "$stage"/x86/*.{dll,exe}; do sign "$file"; done
find "$stage" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +

make_installer x64 yes ProgramFiles64Folder win64
make_installer x86 no ProgramFilesFolder win32
KX_STAGE=$stage KX_VERSION=$version logged "$kxBuild/log/cpack.log" \
  cpack --config "$kxRoot/packaging/cpack.cmake" -B "$package" || fail "the archive cannot be made"
rm -rf "$package/_CPack_Packages"
(cd "$package" && sha256sum -- *.zip *.msi | tee SHA256SUMS)
