#!/usr/bin/env bash
# Makes what is handed to others, in build/package: packages for Debian 12 (the desktop program, the
# command line alone, the libraries, the Python module) and an archive of the sources, of what git
# tracks. The same sources give the same bytes, wherever and whenever: SOURCE_DATE_EPOCH, or else the
# time of the last commit, stands for the time in all that is made.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-packages.sh build desktop python package

tracked() { git rev-parse --show-prefix 2>/dev/null | grep -qx ''; }

if [[ -z ${SOURCE_DATE_EPOCH:-} ]]; then
  # The archive of the sources has the commit's time on all its files.
  SOURCE_DATE_EPOCH=$(if tracked; then git log -1 --format=%ct; else stat -c %Y CHANGELOG.md; fi)
fi
export SOURCE_DATE_EPOCH

out=$PWD/build/package
rm -rf "$out"
mkdir -p "$out"

# Whatever the folder was configured for before.
cmake --preset unity -DTORVANE_DESKTOP=ON -DTORVANE_PYTHON=ON -DPython3_EXECUTABLE=/usr/bin/python3 \
  -DTORVANE_TESTS=OFF -DTORVANE_PACKAGES=ON "-DCMAKE_INSTALL_LIBDIR=lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)"
cmake --build --preset unity
(cd build/unity && cpack -B "$out/work")
mv "$out"/work/*.deb "$out"
rm -rf "$out/work"

if tracked; then
  version=$(sed -n 's/^project(Torvane VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  git archive --format=tar --prefix="torvane-$version/" HEAD |
    gzip -9 --no-name >"$out/torvane-$version.tar.gz"
fi
(cd "$out" && sha256sum -- *)
