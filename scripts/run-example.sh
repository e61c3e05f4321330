#!/usr/bin/env bash
# The main job on the bundled examples: installs what is missing, builds,
# loads the example site into a fresh site folder, writes a route HIF from
# the sample meters and shows what it holds.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh default --target hifx make_example_hif >/dev/null

bin=build/default
out=out/example
hifx="$bin/src/hifx --site $out/site"
rm -rf "$out"
mkdir -p "$out"

echo "== hifx dist load examples/site.dst (into a fresh site folder, $out/site)"
$hifx dist load examples/site.dst
echo "== hifx settings"
$hifx settings
echo "== hifx site show"
$hifx site show
echo "== hifx map list; hifx map check Billing.hcm"
$hifx map list
$hifx map check Billing.hcm && echo "Billing.hcm: valid"

echo "== writing $out/route-sample.pdb from examples/route-sample.csv"
"$bin/examples/make_example_hif" examples/route-sample.csv "$out/route-sample.pdb"
echo "== hifx dump $out/route-sample.pdb"
$hifx dump "$out/route-sample.pdb"
echo "== hifx view $out/route-sample.pdb"
$hifx view "$out/route-sample.pdb"
echo "== hifx view $out/route-sample.pdb --route 1"
$hifx view "$out/route-sample.pdb" --route 1
