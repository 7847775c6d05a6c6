#!/usr/bin/env bash
# Builds everything, with whatever that needs, and runs every test. Needs no display. Arguments are
# handed to ctest, for example: scripts/test.sh -R scope
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-packages.sh build desktop test python

# The module is for the system's Python, whatever other one comes first on the path.
cmake --preset unity -DTORVANE_DESKTOP=ON -DTORVANE_TESTS=ON -DTORVANE_PYTHON=ON \
  -DPython3_EXECUTABLE=/usr/bin/python3
cmake --build --preset unity

# The tests drive real windows, which stay in memory whatever display there is.
export QT_QPA_PLATFORM=offscreen
# Tests of windows wait now and then: three at a time keep two processors at work.
ctest --preset unity --no-tests=error -j 3 "$@"
