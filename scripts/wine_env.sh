# Environment for running Windows programs under Wine (source it after lib.sh). The prefix is build/wine, independent of
# the user's Wine. KX_WINEPREFIX sets another prefix, KX_SCREEN another screen size than 2560x1440, KX_WINE_BITS=32
# selects the 32-bit Wine in build/wine32 (created by wine32_root.sh).
#
# A session has exclusive use of the prefix: wine_session_start, any number of `wine_do`, wine_session_stop (also called
# by a trap at exit). KX_WINE_SESSION is set for scripts that are called within one.
# shellcheck shell=bash

if [[ ${KX_WINE_BITS:-64} == 32 ]]; then
  export WINEPREFIX=${KX_WINEPREFIX:-$kxBuild/wine32/prefix}
  export WINEARCH=win32
  export PATH=${kxRoot:?source lib.sh first}/scripts/wine32:$PATH
else
  export WINEPREFIX=${KX_WINEPREFIX:-$kxBuild/wine}
  export WINEARCH=win64
fi
export WINEDEBUG=${KX_WINEDEBUG:--all}
# No prompts for Mono and Gecko, no menu entries on the user's desktop, and a crash ends the program at once.
export WINEDLLOVERRIDES='mscoree,mshtml=;winedbg.exe=d;winemenubuilder.exe=d'
# English dates, and UTF-8 file names.
export LC_ALL=C.UTF-8
unset LANGUAGE
if [[ ! -w ${HOME:-/nonexistent} ]]; then
  export HOME=$kxBuild/home
  mkdir -p "$HOME"
fi

kKxPrefixVersion=5
kKxDisc=$WINEPREFIX/disc  # content of the CD-ROM drive, Z:
kxXvfbPid=
kxWineLock=

# Child processes must not inherit the lock: the Wine server may outlive the script.
wine_do() {
  if [[ -n $kxWineLock ]]; then
    wine "$@" {kxWineLock}>&-
  else
    wine "$@"
  fi
}

# Ends all programs of this prefix, and only this one, and waits for them.
wine_stop_server() {
  wineserver -k 2>/dev/null || true
  timeout 30 wineserver -w 2>/dev/null || true
}

windows_path() {
  local path
  path=$(realpath -m "$1")
  printf 'Y:%s\n' "${path//\//\\}"
}

wine_lock() {
  mkdir -p "$(dirname "$WINEPREFIX")"
  exec {kxWineLock}>"$WINEPREFIX.lock"
  flock -w 2 "$kxWineLock" && return 0
  warn "waiting for another session on $WINEPREFIX"
  flock -w 1200 "$kxWineLock" || fail "$WINEPREFIX is still in use by another session"
}

wine_make_prefix() {
  [[ $(cat "$WINEPREFIX/kx-ready" 2>/dev/null) != "$kKxPrefixVersion" ]] || return 0
  say "making the Wine prefix $WINEPREFIX"
  wine_stop_server
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  # Without a display no dialog can block.
  local desktop='HKCU\Control Panel\Desktop' log=$kxBuild/log/wine-prefix.log
  # Scripts that the font of the dialogs does not have.
  local fontLinks='HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink'
  (
    unset DISPLAY
    logged "$log" timeout 180 wine wineboot -i &&
      logged "$log" timeout 60 wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f &&
      logged "$log" timeout 60 wine reg add "$desktop" /v FontSmoothing /d 2 /f &&
      logged "$log" timeout 60 wine reg add "$desktop" /v FontSmoothingType /t REG_DWORD /d 2 /f &&
      logged "$log" timeout 60 wine reg add "$fontLinks" /v Tahoma /t REG_MULTI_SZ /f \
        /d 'VL-PGothic-Regular.ttf,VL PGothic\0Symbola_hint.ttf,Symbola' &&
      logged "$log" timeout 60 wine reg add 'HKLM\Software\Wine\Drives' /v z: /d cdrom /f
  ) {kxWineLock}>&- || fail "the Wine prefix cannot be made"
  # A server that was started without a display cannot create windows.
  timeout 60 wineserver -w || true
  wine_stop_server
  # The component looks for discs in the last drive, so the CD-ROM drive is Z: and the file system's root is Y:.
  ln -sfn / "$WINEPREFIX/dosdevices/y:"
  ln -sfn ../disc "$WINEPREFIX/dosdevices/z:"
  mkdir -p "$kKxDisc"
  printf VOL003 >"$kKxDisc/.windows-label"  # read when the server starts
  # Wine looks there for the fonts of title bars and dialogs.
  cp /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
  echo "$kKxPrefixVersion" >"$WINEPREFIX/kx-ready"
}

# Starts an X server on a free display number.
start_xvfb() {
  local file
  file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 "${KX_SCREEN:-2560x1440}x24" -nolisten tcp -noreset 3>"$file" >"$kxBuild/log/xvfb.log" 2>&1 \
    {kxWineLock}>&- &
  kxXvfbPid=$!
  local tries
  for ((tries = 0; tries < 400; ++tries)); do
    [[ ! -s $file ]] || break
    kill -0 "$kxXvfbPid" 2>/dev/null || break
    sleep 0.05
  done
  local number
  number=$(cat "$file")
  rm -f "$file"
  [[ -n $number ]] || fail "Xvfb does not start, see $kxBuild/log/xvfb.log"
  export DISPLAY=:$number
}

# "own" (the default) starts an X server for the programs; "user" uses the current display.
wine_session_start() {
  mkdir -p "$kxBuild/log"
  trap wine_session_stop EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
  wine_lock
  wine_make_prefix
  wine_stop_server
  [[ ${1:-own} == user ]] || start_xvfb
  export KX_WINE_SESSION=1
}

wine_session_stop() {
  trap - EXIT
  [[ -z $kxWineLock ]] || wine_stop_server
  if [[ -n $kxXvfbPid ]]; then
    kill "$kxXvfbPid" 2>/dev/null || true
    wait "$kxXvfbPid" 2>/dev/null || true
    kxXvfbPid=
  fi
  if [[ -n $kxWineLock ]]; then
    exec {kxWineLock}>&-
    kxWineLock=
  fi
}
