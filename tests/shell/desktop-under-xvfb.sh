#!/usr/bin/env bash
# Starts hifx-desktop on a virtual X display as a clerk starts it, on the
# example site: logs in at the login window, presses Route File with the
# keyboard, and opens the log in the "text editor", here a stand-in for
# xdg-open that keeps a copy, and leaves by File, Exit. Passes when the route
# HIF is written, the log shows the conversion's closing line, and the
# program ends cleanly (under the sanitizers: with nothing to report).
#
#   desktop-under-xvfb.sh HIFX_DESKTOP HIFX EXAMPLES_DIR
set -euo pipefail
desktop=$(realpath "$1") hifx=$(realpath "$2") examples=$(realpath "$3")

work=$(mktemp -d)
cleanup() {
  [ -n "${app:-}" ] && kill "$app" 2>/dev/null || true
  [ -n "${xvfb:-}" ] && kill "$xvfb" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "desktop-under-xvfb: $*" >&2
  [ -f "$work/desktop.log" ] && sed 's/^/  desktop: /' "$work/desktop.log" >&2
  exit 1
}

cd "$work"
ln -s "$examples" examples
mkdir -p out/example bin config
"$hifx" --site site dist load examples/site.dst > /dev/null 2>&1 || fail "the example site did not load"
cat > bin/xdg-open <<'OPEN'
#!/bin/sh
cp "${1#file://}" "$(dirname "$0")/../opened.txt"
OPEN
chmod +x bin/xdg-open

exec 3< <(Xvfb -displayfd 1 -screen 0 1024x768x24 -nolisten tcp 2>/dev/null & echo "pid $!")
read -r _ xvfb <&3
read -r number <&3 || fail "Xvfb did not start"
export DISPLAY=":$number"
export XDG_CONFIG_HOME="$work/config" PATH="$work/bin:$PATH"
export SOURCE_DATE_EPOCH=1700000000 TZ=UTC
unset QT_QPA_PLATFORM

"$desktop" --site site > "$work/desktop.log" 2>&1 &
app=$!

# The first visible window of that title, waited for up to 20 s. A window
# that closes while xdotool looks at it (the login, as the main window
# opens) makes one search fail: the next one goes on.
window() {
  local id
  for _ in $(seq 100); do
    id=$(xdotool search --onlyvisible --name "$1" 2> /dev/null | head -1) || true
    [ -n "$id" ] && echo "$id" && return 0
    sleep 0.2
  done
  return 1
}
login=$(window '^Login$') || fail "no login window"
xdotool windowfocus --sync "$login"
xdotool type --delay 20 SUPER
xdotool key Tab
xdotool type --delay 20 super123
xdotool key Return

main=$(window '^Handheld Interchange File Exchange v') || fail "no main window after the login"
xdotool windowfocus --sync "$main"
sleep 0.5
xdotool key space  # Route File has the focus when the window opens
for _ in $(seq 100); do
  [ -s out/example/route.pdb ] && break
  sleep 0.2
done
[ -s out/example/route.pdb ] || fail "Route File wrote no HIF"

# Open Log is six steps along the tab order from Route File.
sleep 0.5
xdotool key Tab Tab Tab Tab Tab Tab space
for _ in $(seq 50); do
  [ -s opened.txt ] && break
  sleep 0.2
done
[ -s opened.txt ] || fail "Open Log showed no log"
grep -qx "Route Conversion Finished.*" opened.txt || fail "the log lacks the closing line: $(cat opened.txt)"
"$hifx" view out/example/route.pdb > /dev/null || fail "the HIF does not read back"

# Out by the menus: Convert opens with Alt+C, Left goes to File, X is Exit.
xdotool key alt+c Left x
for _ in $(seq 100); do
  kill -0 "$app" 2>/dev/null || break
  sleep 0.2
done
kill -0 "$app" 2>/dev/null && fail "File, Exit did not end the program"
status=0
wait "$app" || status=$?
app=""
[ "$status" -eq 0 ] || fail "the program ended with status $status"
grep -q "LeakSanitizer\|AddressSanitizer" "$work/desktop.log" && fail "the sanitizers spoke"
echo "desktop-under-xvfb: route HIF written, log shown ($(grep -c '' opened.txt) lines)"
