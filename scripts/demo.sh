#!/usr/bin/env bash
# Shows the system at work: demo.sh [--scripted] [--rows N] [--tour]
#
# Builds the command line and a sample catalog, and queries the catalog. Then builds the component and its sample host,
# registers the component, and lets the host run the restore dialog. With a display you work the dialog yourself.
# Without one, or with --scripted, a script selects a run, ticks a folder, applies, searches by a mask, marks a file
# type, appends an archive disc and presses "Restore Now", on an X server of its own. Screenshots of the steps and the
# host's output go to build/demo/. --tour works the dialog through the tasks of docs/tour.md instead, and takes its
# pictures.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
export KX_SCREEN=1280x1024  # just enough for the dialog
# shellcheck source=scripts/wine_env.sh
source "$kxRoot/scripts/wine_env.sh"

kScriptLimit=180  # seconds for the whole scripted dialog

scripted=no
rows=20000
steps=$kxRoot/scripts/demo_steps.txt
while [[ $# -gt 0 ]]; do
  case $1 in
    --scripted) scripted=yes ;;
    --tour)
      scripted=yes
      steps=$kxRoot/scripts/tour_steps.txt
      ;;
    --rows)
      [[ ${2:-} =~ ^[0-9]+$ ]] || fail "--rows wants a number"
      rows=$2
      shift
      ;;
    *) fail "usage: demo.sh [--scripted] [--rows N] [--tour]" ;;
  esac
  shift
done

demo=$kxBuild/demo
windowsBuild=$kxBuild/windows-x64

display_works() {
  [[ -n ${DISPLAY:-} ]] && timeout 10 xdpyinfo >/dev/null 2>&1
}

# The host waits for the screenshot file, so it must appear complete.
take_screenshot() {
  sleep 0.3  # lets the last change be painted
  import -window root "$demo/$1.tmp.png" && mv "$demo/$1.tmp.png" "$demo/$1.png"
}

# Prints the host's output and takes the screenshots that it requests.
follow_host() {
  local line
  while IFS= read -r line; do
    line=${line%$'\r'}
    printf '%s\n' "$line"
    if [[ $line == 'shot: '* ]]; then
      take_screenshot "${line#shot: }" || warn "no screenshot ${line#shot: }"
    fi
  done
}

run_host() {
  local arguments=(--catalog "$(windows_path "$demo/catalog.db")" --log "$(windows_path "$demo/session.log")")
  local limit=()
  if [[ $scripted == yes ]]; then
    arguments+=(--script "$(windows_path "$steps")" --shots "$(windows_path "$demo")")
    limit=(timeout --kill-after=10 "$kScriptLimit")
  fi
  "${limit[@]}" wine "$windowsBuild/host/restore_host.exe" "${arguments[@]}" {kxWineLock}>&- | follow_host |
    tee "$demo/output.txt"
}

check_scripted() {
  local name
  [[ $(grep -c '^CommenceRestore$' "$demo/output.txt") -eq 1 ]] || fail "the host was not told to restore"
  grep -q '^restore: ' "$demo/output.txt" || fail "nothing was marked for restore"
  grep -q '^DefineRestoreSet = 1$' "$demo/output.txt" || fail "the dialog did not end with 1"
  while read -r name; do
    [[ -s $demo/$name.png ]] || fail "the screenshot $name is missing"
  done < <(sed -n 's/^shot //p' "$steps" | tr -d '\r')
}

# Prints a command line and the first lines of its output.
ask_catalog() {
  printf '\n$ kxrestore %s\n' "$*"
  "$kxBuild/native/host/kxrestore" "$@" --catalog "$demo/catalog.db" | awk 'NR <= 8'
}

"$kxRoot/scripts/setup.sh" native
build_preset native make_catalog kxrestore || fail "the native build failed"
mkdir -p "$demo"
"$kxBuild/native/host/make_catalog" "$demo/catalog.db" --rows "$rows"
ask_catalog sets
ask_catalog types
ask_catalog find report --newest
ask_catalog mark --type jpg --set 'Daily Documents'
ask_catalog count
echo

"$kxRoot/scripts/setup.sh" windows wine
build_preset windows-x64 KXRestore restore_host || fail "the Windows build failed"

rm -f "$demo"/*.png "$demo/output.txt" "$demo/session.log"

if [[ $scripted == no ]] && ! display_works; then
  say "no display: the script works the dialog"
  scripted=yes
fi
if [[ $scripted == yes ]]; then wine_session_start own; else wine_session_start user; fi

"$kxBuild/native/host/make_catalog" "$demo/catalog.db" --rows "$rows" --disc "$kKxDisc" \
  --archive "$WINEPREFIX/drive_c/dev/wrk/qvs/tarvane source/client/CDArchive.mdb"

say "registering the component"
wine_do regsvr32 /s "$(windows_path "$windowsBuild/KXRestore.dll")" || fail "the component cannot be registered"

say "running the restore dialog"
run_host
wine_session_stop

if [[ $scripted == yes ]]; then
  check_scripted
  say "screenshots are in $demo: $(cd "$demo" && ls -m -- *.png)"
fi
say "$(grep -c '^restore: ' "$demo/output.txt" || true) files were handed to the host"
