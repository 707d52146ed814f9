#!/usr/bin/env bash
# Tests the packages under Wine: test_package.sh. Makes them twice and compares; installs each, runs a host, repairs,
# upgrades and removes it, and checks that nothing is left. The last line is `N passed, N failed`.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

kIdentifiers='CLSID\{B1CBA00E-D60F-4721-B48F-2D342110EB9C}
KXRestore.RestoreDlg
TypeLib\{8BDD56C6-588F-44AB-909A-334B0BD36C17}
Interface\{85A2C559-27A5-4196-9373-81836E81026B}
Interface\{BB4D256B-BCA9-41F0-A4E1-69474339D805}'
kSteps='wait-form
select-run 1
tick C:\Data
click cmdAction(0)
expect-enabled cmdRestore(0) YES
click cmdRestore(0)
wait-closed'

work=$kxBuild/test-package
log=$kxBuild/log/test-package.log
package=$kxBuild/package
version=$(sed -n 's/^project(KXRestore VERSION \([0-9.]*\).*/\1/p' "$kxRoot/CMakeLists.txt")
passed=0
failed=0

# check NAME COMMAND...: records whether the command succeeds; its output goes to the log.
check() {
  local check=$1
  shift
  echo "== $check" >>"$log"
  if "$@" >>"$log" 2>&1 </dev/null; then
    passed=$((passed + 1))
    echo "ok      $check"
  else
    failed=$((failed + 1))
    echo "FAILED  $check (see $log)"
  fi
}

same_bytes_again() {
  cp "$package/SHA256SUMS" "$work/first" || return 1
  # Forces a new link, too.
  rm -f "$kxBuild"/windows-x{64,86}/KXRestore.dll "$kxBuild"/windows-x{64,86}/host/{kxrestore,restore_host}.exe
  "$kxRoot/scripts/package.sh" && diff "$work/first" "$package/SHA256SUMS"
}

# Uses only what the archive contains.
example_builds() {
  local compiler=$1-w64-mingw32-g++-posix
  "$compiler" -std=c++17 -Wall -Wextra -Werror -municode -static -I"$unpacked/include" "$unpacked/host/examples/restore.cpp" \
    -o "$work/restore-$1.exe" -lole32 -loleaut32 -luuid
}

archive_is_whole() {
  local folder file
  for folder in x64 x86; do
    for file in KXRestore.dll KXRestore.de.txt KXRestore.dll.debug KXRestore.tlb KXRestore.X.manifest restore_host.exe \
      kxrestore.exe; do
      [[ -s $unpacked/$folder/$file ]] || { echo "no $folder/$file" && return 1; }
    done
  done
  for file in README.md CHANGELOG.md docs/api.md docs/kxrestore.1 include/kxrestore.h include/kxrestore_com.h \
    host/examples/{restore.vbs,restore.js,restore.ps1,Restore.cs,restore.py,restore.cpp,restore_import.cpp}; do
    [[ -s $unpacked/$file ]] || { echo "no $file" && return 1; }
  done
  ! "$1-w64-mingw32-objdump" -t "$unpacked/x64/KXRestore.dll" | grep DefineRestoreSet >/dev/null || { echo "not stripped" && return 1; }
  "$1-w64-mingw32-objdump" -t "$unpacked/x64/KXRestore.dll.debug" | grep DefineRestoreSet >/dev/null
}

registry_keys() {
  local key
  while read -r key; do wine_do reg query "HKLM\\Software\\Classes\\$key" /s 2>/dev/null | tr -d '\r' | grep -v '^reg: ' || true; done <<<"$kIdentifiers"
}

# The same except for the path of the DLL.
registry_keys_without_place() {
  registry_keys | sed -E 's/(REG_SZ +)[A-Z]:\\.*\\KXRestore\.dll$/\1DLL/; s/(REG_SZ +)[A-Z]:\\.*$/\1FOLDER/'
}

nothing_left() {
  local keys files
  keys=$(registry_keys)
  files=$(find "$WINEPREFIX/drive_c" -ipath '*/Program Files*/KXRestore*')
  echo "$keys$files"
  [[ -z $keys && -z $files ]]
}

# msi /i|/x FILE [PROPERTY=VALUE...]
msi() {
  local action=$1 file=$2
  shift 2
  timeout 120 wine msiexec "$action" "$(windows_path "$file")" "$@" /qn {kxWineLock}>&-
}

host_restores() {
  local program=$1
  cp "$work/catalog.db" "$work/run.db" || return 1
  printf '%s\n' "$kSteps" >"$work/steps.txt"
  timeout 120 wine "$program" --catalog "$(windows_path "$work/run.db")" --script "$(windows_path "$work/steps.txt")" \
    {kxWineLock}>&- | tr -d '\r' >"$work/output.txt"
  cat "$work/output.txt"
  grep -qx CommenceRestore "$work/output.txt" && grep -q '^restore: C:.Data' "$work/output.txt" &&
    grep -qx 'DefineRestoreSet = 1' "$work/output.txt"
}

command_line_answers() {
  timeout 180 wine "$1" sets --catalog "$(windows_path "$work/catalog.db")" {kxWineLock}>&- >"$work/output.txt"
  cat "$work/output.txt"
  grep -q 'Daily Documents' "$work/output.txt"
}

# Late bound, from a script.
script_creates() {
  printf '%s\r\n' 'Set dialog = CreateObject("KXRestore.RestoreDlg")' 'dialog.DB = "x"' 'WScript.Echo "created"' >"$work/late.vbs"
  timeout 60 wine cscript //nologo "$(windows_path "$work/late.vbs")" {kxWineLock}>&- | grep created >/dev/null
}

# again COMMAND... Right after an installer has ended, Wine may refuse to start a program.
again() {
  local try
  for try in 1 2 3; do
    "$@" && return
    sleep "$try"
  done
  return 1
}

same_keys_as_regsvr32() {
  registry_keys_without_place >"$work/installed.keys"
  [[ -s $work/installed.keys ]] || return 1
  msi /x "$installer" && nothing_left || return 1
  again wine_do regsvr32 /s "$(windows_path "$unpacked/$platform/KXRestore.dll")" || return 1
  registry_keys_without_place >"$work/registered.keys"
  again wine_do regsvr32 /u /s "$(windows_path "$unpacked/$platform/KXRestore.dll")" && nothing_left || return 1
  diff "$work/installed.keys" "$work/registered.keys" && msi /i "$installer"
}

repairs() {
  local dll
  dll=$(find "$WINEPREFIX/drive_c" -ipath '*/KXRestore/KXRestore.dll')
  # The equivalent of /fa, which Wine does not support.
  rm "$dll" && msi /i "$installer" REINSTALL=ALL REINSTALLMODE=amus && [[ -s $dll ]]
}

only_new_version_works() {
  wine_do reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s | tr -d '\r' >"$work/uninstall.keys"
  grep -q "DisplayVersion.*$version" "$work/uninstall.keys" && ! grep -q 'DisplayVersion.*9\.0\.0' "$work/uninstall.keys" &&
    script_creates
}

upgrades() {
  msi /x "$installer" && msi /i "$package-older/KXRestore-9.0.0-$platform.msi" && msi /i "$installer" || return 1
  again only_new_version_works
}

removed_leaves_nothing() {
  msi /x "$installer" && nothing_left && ! script_creates
}

# Both in one prefix: 32-bit programs cannot run there, but they can be installed. Wine keeps two copies of keys that
# Windows shares, so only those visible to 64-bit programs are checked.
one_leaves_the_other() {
  msi /i "$package/KXRestore-$version-x64.msi" && msi /i "$package/KXRestore-$version-x86.msi" || return 1
  msi /x "$package/KXRestore-$version-x86.msi" && script_creates || return 1
  msi /x "$package/KXRestore-$version-x64.msi" && nothing_left
}

# test_platform BITS PLATFORM
test_platform() {
  export KX_WINE_BITS=$1
  platform=$2
  # shellcheck source=scripts/wine_env.sh
  source "$kxRoot/scripts/wine_env.sh"
  wine_session_start own
  installer=$package/KXRestore-$version-$platform.msi
  mkdir -p "$work/alone-$platform"
  cp "$unpacked/$platform/restore_host.exe" "$work/alone-$platform/"
  wine_do regsvr32 /u /s "$(windows_path "$unpacked/$platform/KXRestore.dll")" || true
  check "$platform: without registration a host restores" host_restores "$unpacked/$platform/restore_host.exe"
  check "$platform: the command line answers" command_line_answers "$unpacked/$platform/kxrestore.exe"
  check "$platform: it installs" msi /i "$installer"
  check "$platform: a host restores" host_restores "$work/alone-$platform/restore_host.exe"
  check "$platform: a script creates the object" script_creates
  check "$platform: the installer writes what regsvr32 writes" same_keys_as_regsvr32
  check "$platform: it is repaired" repairs
  check "$platform: a newer version replaces an older one" upgrades
  check "$platform: removed, nothing is left" removed_leaves_nothing
  [[ $platform == x86 ]] || check "removing one bitness leaves the other" one_leaves_the_other
  wine_session_stop
}

signed_verifies() {
  openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=Test -days 36500 -addext extendedKeyUsage=codeSigning \
    -keyout "$work/key.pem" -out "$work/certificate.pem" || return 1
  echo secret >"$work/password"
  openssl pkcs12 -export -inkey "$work/key.pem" -in "$work/certificate.pem" -out "$work/certificate.p12" \
    -passout "file:$work/password" || return 1
  KX_PACKAGE=$package-signed "$kxRoot/scripts/package.sh" --sign "$work/certificate.p12" --password-file "$work/password" ||
    return 1
  local file
  for file in "$package-signed"/*.msi "$package-signed"/stage/*/x64/KXRestore.dll "$package-signed"/stage/*/x86/kxrestore.exe; do
    osslsigncode verify -CAfile "$work/certificate.pem" -in "$file" || return 1
  done
}

"$kxRoot/scripts/setup.sh" native windows wine wine32 package hosts
rm -rf "$work" "$package-older" "$package-signed"
mkdir -p "$work"
: >"$log"
build_preset native make_catalog || fail "the native build failed"
"$kxBuild/native/host/make_catalog" "$work/catalog.db" --rows 2000 >/dev/null
unpacked=$work/KXRestore-$version

check "the packages are made" "$kxRoot/scripts/package.sh"
check "made again they are the same bytes" same_bytes_again
check "the archive unpacks" env -C "$work" cmake -E tar xf "$package/KXRestore-$version.zip"
check "the archive holds what it should" archive_is_whole x86_64
check "the C++ host builds for x64 with the archive alone" example_builds x86_64
check "the C++ host builds for x86 with the archive alone" example_builds i686
check "the PowerShell host parses" node "$kxRoot/tests/host/powershell_parser/check.mjs" \
  "$kxBuild/deps/powershell_parser/node_modules" "$unpacked/host/examples/restore.ps1"
check "the Python host compiles" python3 -m py_compile "$unpacked/host/examples/restore.py"
check "the C# host compiles" mcs -r:Microsoft.CSharp -out:"$work/Restore.exe" "$unpacked/host/examples/Restore.cs"
check "signed packages verify" signed_verifies
KX_PACKAGE=$package-older KX_PACKAGE_VERSION=9.0.0 "$kxRoot/scripts/package.sh" >>"$log" 2>&1 ||
  fail "the older packages cannot be made"

test_platform 64 x64
status=0
"$kxRoot/scripts/wine32_root.sh" || status=$?
if [[ $status -eq 0 ]]; then test_platform 32 x86; else warn "the 32-bit installer is not tested"; fi

echo "$passed passed, $failed failed"
[[ $failed -eq 0 ]]
