#!/usr/bin/env bash
# The main job on the bundled examples: installs what is missing, builds,
# writes a route HIF from the sample meters and shows what it holds.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh default --target hifx make_example_hif >/dev/null

bin=build/default
out=out/example
mkdir -p "$out"
echo "== writing $out/route-sample.pdb from examples/route-sample.csv"
"$bin/examples/make_example_hif" examples/route-sample.csv "$out/route-sample.pdb"
echo "== hifx dump $out/route-sample.pdb"
"$bin/src/hifx" dump "$out/route-sample.pdb"
echo "== hifx view $out/route-sample.pdb"
"$bin/src/hifx" view "$out/route-sample.pdb"
echo "== hifx view $out/route-sample.pdb --route 1"
"$bin/src/hifx" view "$out/route-sample.pdb" --route 1
