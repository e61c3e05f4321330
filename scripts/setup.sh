#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when missing,
# and any further packages named as arguments. Runs apt-get as root, or
# through sudo.
set -euo pipefail

packages=(cmake g++ make libgtest-dev libbenchmark-dev libsqlite3-dev libpalm-perl clang libclang-rt-14-dev
          libcli11-dev qt6-base-dev qt6-qpa-plugins fonts-liberation2 fontconfig poppler-utils zbar-tools
          xvfb xdotool xauth cups cups-client printer-driver-cups-pdf man-db groff-base zsh "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: need root or sudo to install: ${missing[*]}" >&2; exit 1; }
  sudo="sudo"
fi
echo "setup: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
if ! $sudo apt-get install -y -q "${missing[@]}" >/dev/null; then
  $sudo apt-get update -q >/dev/null
  $sudo apt-get install -y -q "${missing[@]}" >/dev/null
fi
