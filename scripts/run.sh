#!/usr/bin/env bash
# Builds Torvane, with whatever that needs, and starts it. Arguments are handed to the program.
# Without a display it runs the start-up model on the command line instead and leaves the scope's
# screen in ./out, as numbers and as a picture.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-packages.sh build desktop

# The tests are left out: they are half of the building time.
cmake --preset unity -DTORVANE_DESKTOP=ON -DTORVANE_TESTS=OFF
cmake --build --preset unity
programs=build/unity/bin

if [[ -n ${DISPLAY:-} || -n ${WAYLAND_DISPLAY:-} ]]; then
  echo "Starting $programs/torvane"
  exec "$programs/torvane" "$@"
fi

model="2-1 PI+ Controller"
mkdir -p out
echo
echo "There is no display (neither DISPLAY nor WAYLAND_DISPLAY is set), so no window can open."
echo "Running \"$model\" for 0.5 simulated seconds on the command line instead."
QT_QPA_PLATFORM=offscreen "$programs/torvane-cli" scope "$model" --until 0.5 \
  --out out/scope.csv --picture out/scope.png
echo "The scope's last screen as numbers:    $PWD/out/scope.csv"
echo "The same screen as the window has it:  $PWD/out/scope.png"
