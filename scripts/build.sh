#!/usr/bin/env bash
# Configures and builds one preset (default: "default"); extra arguments go
# to the build, e.g. --target hifx.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
shift || true
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$(nproc)" "$@"
