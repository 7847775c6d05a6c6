#!/usr/bin/env bash
# Measures how many small slips the tests catch: makes faults in src/ one at a time (a comparison
# turned, a sign, a constant, a statement dropped, two arguments swapped), in a copy of the sources
# with a build of its own, runs the tests of that folder, and tells which faults were caught.
#   scripts/mutate.sh [FOLDER...] [--count 100] [--seed 1] [--files PATTERN]
#   scripts/mutate.sh [FOLDER...] --again REPORT [--survivors]
#   scripts/mutate.sh [FOLDER...] --list
#   --tests FOLDER... runs those tests only, --without FILTER leaves slow ones out.
# The same seed gives the same faults. The reports stand in build/mutation/FOLDER.faults.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-packages.sh build desktop test mutation
exec python3 -B scripts/mutate.py "$@"
