#!/usr/bin/env bash
# The Windows build: cross-compiles the engine, the command line and the
# engine's tests for 64-bit Windows with mingw-w64, runs the whole test suite
# under Wine with no display (the settings tests on Wine's registry), and
# checks that hifx.exe turns the bundled example route file into the very
# bytes that the Linux build writes. Installs mingw-w64, GoogleTest's sources
# and Wine when missing; where they can't be installed it says so and skips.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! scripts/setup.sh g++-mingw-w64-x86-64-posix googletest wine64; then
  echo "== Windows build skipped: mingw-w64 and wine64 could not be installed"
  exit 0
fi
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)

# A Wine of our own, headless and quiet, without the Mono and Gecko installers.
export WINEPREFIX="$PWD/build/windows-wine"
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
# One server and one set of Wine's own services for the whole run, started
# here with no output of ours open: a server that quits after each program
# races the next program's start ("wine client error: recvmsg"), and services
# started by a test would hold its output open.
mkdir -p "$WINEPREFIX"
"$wineserver" -p >/dev/null 2>&1 || true  # or one is running already
trap '"$wineserver" -k >/dev/null 2>&1 || true' EXIT
"$wine" wineboot --init >/dev/null 2>&1 || true

echo "== Windows build (mingw-w64)"
scripts/build.sh windows
echo "== Windows tests under Wine"
# Now and then Wine fails to start a program at all (a failure with no output
# in no time, about one start in a thousand here); such a test gets a second
# start, which the log shows. A test of ours that fails fails twice.
ctest --preset windows -j "$(nproc)" --repeat until-pass:2

echo "== hifx.exe route under Wine against the Linux build, on the bundled example"
scripts/build.sh default --target hifx >/dev/null
check=build/windows/example-check
rm -rf "$check"
mkdir -p "$check"
export SOURCE_DATE_EPOCH=1700000000 TZ=UTC
"$wine" reg delete 'HKLM\Software\Norvane, Inc.' /f >/dev/null 2>&1 || true
"$wine" build/windows/src/hifx.exe --site "$check/site-windows" dist load examples/site.dst
"$wine" build/windows/src/hifx.exe --site "$check/site-windows" --yes route \
  --source examples/route-fixed.txt --dest "$check/route-windows.pdb"
build/default/src/hifx --site "$check/site-linux" dist load examples/site.dst 2>/dev/null
build/default/src/hifx --site "$check/site-linux" --yes route \
  --source examples/route-fixed.txt --dest "$check/route-linux.pdb" >/dev/null
"$wine" reg delete 'HKLM\Software\Norvane, Inc.' /f >/dev/null 2>&1 || true
cmp "$check/route-windows.pdb" "$check/route-linux.pdb"
echo "hifx.exe and hifx wrote the same $(stat -c %s "$check/route-linux.pdb") bytes"
echo "== Windows build passed"
