#!/usr/bin/env bash
# Makes the seed corpora of the fuzz targets again (fuzz/corpus/NAME/g-*)
# from the examples, the test data and the hand-kept seeds; see
# fuzz/make-corpus.py for the variants.
set -euo pipefail
exec python3 "$(dirname "$0")/make-corpus.py" "$@"
