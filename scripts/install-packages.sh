#!/usr/bin/env bash
# Installs the packages of the named groups of packages.txt that are missing on this machine.
# Where none is missing it changes nothing and needs neither network nor privileges.
#
#   scripts/install-packages.sh GROUP...      for example: build desktop test
#
# TORVANE_NO_INSTALL=1 skips it, for machines that are set up by other means.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

fail() {
  printf '%s\n' "$@" >&2
  exit 1
}

groups_of_list() { sed -n 's/^\[\(.*\)\]$/\1/p' packages.txt | tr '\n' ' '; }

packages_of() {
  awk -v group="[$1]" '/^\[/ {inside = $0 == group; next} inside && NF && !/^#/ {print $1}' packages.txt
}

installed() { [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]; }

[[ $# -gt 0 ]] || fail "Usage: scripts/install-packages.sh GROUP...   (groups: $(groups_of_list))"

wanted=()
for group in "$@"; do
  mapfile -t names < <(packages_of "$group")
  [[ ${#names[@]} -gt 0 ]] || fail "No group \"$group\" in scripts/packages.txt (groups: $(groups_of_list))"
  wanted+=("${names[@]}")
done

if [[ -n ${TORVANE_NO_INSTALL:-} ]]; then
  echo "Packages: not looked at, as TORVANE_NO_INSTALL is set."
  exit 0
fi

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
  fail "Packages: this system has no apt-get, so nothing can be installed from here." \
    "Please install the equivalents of these Debian packages by hand:" \
    "  ${wanted[*]}" \
    "and then call the script again with TORVANE_NO_INSTALL=1 in its environment."
fi

missing=()
for package in "${wanted[@]}"; do
  installed "$package" || missing+=("$package")
done
if [[ ${#missing[@]} -eq 0 ]]; then
  echo "Packages: all ${#wanted[@]} that are needed are installed."
  exit 0
fi

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || fail "Packages: these are missing and only root may install them:" \
    "  apt-get install ${missing[*]}"
  as_root=(sudo)
fi

echo "Packages: installing with apt-get${as_root[0]:+ through sudo}: ${missing[*]}"
apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 \
    -o Dpkg::Use-Pty=0 "$@" </dev/null
}
# Package lists that are a little old still serve, so a failure here is not the end.
apt update || echo "Packages: the package lists could not be updated; going on with those at hand." >&2
apt install --no-install-recommends "${missing[@]}" ||
  fail "Packages: apt-get could not install: ${missing[*]}"
