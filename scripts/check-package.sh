#!/usr/bin/env bash
# Makes the packages, lets Debian's checkers read them, and tries each as a user would: installs it in
# a root that has Debian's essential packages and those that it asks for and nothing else, starts its
# programs there, or builds one with its libraries, removes it and looks for what it left. The root is
# made of this machine's own packages, so that it needs no network. Needs root's rights, by itself or
# through sudo.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/package.sh
scripts/install-packages.sh build package-check

as_root=()
[[ $(id -u) -eq 0 ]] || as_root=(sudo)
files=build/package/files
root=build/package/root
example=/usr/share/torvane/examples/4-1-encoder-resolution.tvf

# An array and no function, so that what is started in the background has the number of the program.
inside=("${as_root[@]}" chroot "$root" env -i PATH=/usr/bin:/bin HOME=/root LANG=C.UTF-8)

package_file() { echo "build/package/$1"_*.deb; }

check_files() {
  dpkg-deb --extract "$(package_file torvane)" "$files"
  lintian --allow-root --fail-on error,warning build/package/*.deb
  desktop-file-validate "$files"/usr/share/applications/*.desktop
  appstreamcli validate --no-net "$files"/usr/share/metainfo/*.xml
}

# Manual page and completion know every option that --help lists.
check_options() {
  local program=$1 manual completion command option
  manual=$(zcat "$files/usr/share/man/man1/$program.1.gz" | sed 's/\\-/-/g')
  completion=$(<"$files/usr/share/bash-completion/completions/$program")
  for command in "${@:2}"; do
    # shellcheck disable=SC2086
    for option in $("$files/usr/bin/$program" $command --help | grep -oE '^ +(-h,)?--[^ {]+' |
      grep -oE -- '--[a-z-]+'); do
      [[ $manual == *"$option"* && $completion == *"$option"* ]] || {
        echo "$program $command: $option is missing in the manual page or the completion" >&2
        return 1
      }
    done
  done
}

# The essential packages, those that the package needs and further ones, with all that they need in
# turn.
needed_packages() {
  local asked
  asked=$(dpkg-deb --field "$(package_file "$1")" Depends | tr ',|' '\n' | sed 's/(.*//')
  # shellcheck disable=SC2046,SC2086
  apt-cache depends --recurse --installed --important \
    $(dpkg-query -W -f '${Essential} ${Package}\n' | sed -n 's/^yes //p') $asked "${@:2}" | sort -u |
    comm -12 - <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p' | sort -u)
}

make_root() {
  local names name
  mapfile -t names < <(needed_packages "$@")
  "${as_root[@]}" rm -rf "$root"
  mkdir -p "$root"/{dev,root,tmp,etc,usr/{bin,sbin,lib,lib32,lib64,libx32},var/lib/dpkg/{info,updates}}
  # Documents are left out, for time.
  dpkg-query --listfiles "${names[@]}" | grep -vE '^/usr/share/(doc|man|locale)/|^/\.?$|^$' | sort -u |
    while IFS= read -r name; do [[ ! -e $name && ! -L $name ]] || printf '%s\n' "$name"; done |
    "${as_root[@]}" tar --create --no-recursion --files-from=- 2>/dev/null |
    (cd "$root" && "${as_root[@]}" tar --extract --keep-directory-symlink)
  dpkg-query --status "${names[@]}" >"$root/var/lib/dpkg/status"
  for name in "${names[@]}"; do
    cp /var/lib/dpkg/info/"$name"{,:*}.list "$root/var/lib/dpkg/info" 2>/dev/null || true
  done
  "${as_root[@]}" cp -a /dev/null /dev/urandom "$root/dev"
  "${inside[@]}" /sbin/ldconfig
}

check_command_line() {
  "${inside[@]}" torvane-cli run 1 --until 0.1 --every 0.001 >build/package/run.csv
  build/unity/bin/torvane-cli run 1 --until 0.1 --every 0.001 | cmp - build/package/run.csv
}

# The program without pictures, which loads no graphical library.
check_plain_command_line() {
  check_command_line
  "${inside[@]}" torvane-cli scope "$example" --until 0.5 --out /tmp/screen.csv
  if "${inside[@]}" ldd /usr/bin/torvane-cli | grep -E 'libQt|libX' ||
    "${inside[@]}" torvane-cli scope "$example" --until 0.5 --out /tmp/no.csv --picture /tmp/no.png; then
    echo "torvane-cli has or pretends to have what draws pictures." >&2
    return 1
  fi
}

# The programs of examples/embed, built with the installed libraries and nothing of this tree.
check_libraries() {
  "${as_root[@]}" cp -r examples/embed "$root/tmp/embed"
  "${inside[@]}" cmake -S /tmp/embed -B /tmp/embed/build -DCMAKE_BUILD_TYPE=Release -G Ninja \
    -DCMAKE_CXX_FLAGS='-Wall -Wextra -Wconversion -Wno-sign-conversion -Wshadow -Werror'
  "${inside[@]}" cmake --build /tmp/embed/build
  "${inside[@]}" /tmp/embed/build/own_loop
  "${inside[@]}" /tmp/embed/build/two_threads
  "${inside[@]}" /tmp/embed/build/built_in_loop >build/package/embedded
  # What the command line says of the same loop, to the bit.
  build/unity/bin/torvane-cli run "3-1 PI Controller" --set KP=1.2 --until 0.04 --every 0.001 \
    --record Command,Response | diff - <(grep -v margin build/package/embedded)
  "${inside[@]}" /tmp/embed/build/measured_loop >build/package/embedded
  build/unity/bin/torvane-cli measure 6-1 --set KVP=1 --bode --units >build/package/measured
  sed -n '1s/,Reason$//p' build/package/measured |
    diff - <(sed -E 's/: [^ ]+ (.*)/ (\1)/; s/ \(\)$//' build/package/embedded | paste -sd,)
  sed -n '2s/,$//p' build/package/measured |
    diff - <(cut -d: -f2 build/package/embedded | cut -d' ' -f2 | paste -sd,)
}

# The module gives the numbers of the command line, to the bit. NumPy's own libraries are found by links
# that Debian makes when it is installed, and the root has none of those, nor what NumPy has compiled (-B).
check_module() {
  local libraries
  libraries=/usr/lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)
  "${inside[@]}" "LD_LIBRARY_PATH=$libraries/blas:$libraries/lapack" python3 -B -c "
import torvane
model = torvane.Model('3-1')
model['KP'] = 1.2
run = model.run(until=0.04, every=0.001)
for row in zip(run.time, run['Command'], run['Response']):
    print(*map(float.hex, map(float, row)))" >build/package/module
  build/unity/bin/torvane-cli run 3-1 --set KP=1.2 --until 0.04 --every 0.001 \
    --record Command,Response | python3 -c "
import sys
for row in list(sys.stdin)[1:]:
    print(*(float.hex(float(number)) for number in row.split(',')))" | diff - build/package/module
}

check_screen() {
  "${inside[@]}" QT_QPA_PLATFORM=offscreen torvane-cli scope "$example" --until 0.5 \
    --out /tmp/screen.csv --picture /tmp/screen.png
  [[ $(wc -c <"$root/tmp/screen.png") -gt 10000 ]]
}

wait_for_window() {
  local tries
  for ((tries = 0; tries < 300; ++tries)); do
    ! xdotool search --onlyvisible --name "$1" >/dev/null 2>&1 || return 0
    sleep 0.1
  done
  echo "No window has the title \"$1\"." >&2
  return 1
}

# A double click on a model file, which starts what the desktop entry says, while a window is open.
check_desktop() {
  local display=build/package/display
  rm -f "$display"
  Xvfb -displayfd 1 -screen 0 1280x800x24 -ac >"$display" 2>/dev/null &
  started+=($!)
  until [[ -s $display ]]; do sleep 0.1; done
  DISPLAY=:$(<"$display")
  export DISPLAY
  "${inside[@]}" "DISPLAY=$DISPLAY" torvane &
  started+=($!)
  wait_for_window "^2-1 PI. Controller - Torvane"
  # shellcheck disable=SC2046
  "${inside[@]}" "DISPLAY=$DISPLAY" $(sed -n "s|^Exec=\(.*\)%f|\1$example|p" \
    "$files/usr/share/applications/torvane.desktop") &
  started+=($!)
  wait_for_window "4-1-encoder-resolution"
  wait_for_window "^2-1 PI. Controller - Torvane"
}

# The display goes last, or the programs would complain of its loss.
end_started() {
  local at
  for ((at = ${#started[@]} - 1; at >= 0; --at)); do
    "${as_root[@]}" kill "${started[at]}" 2>/dev/null || true
    wait "${started[at]}" || true
  done
  started=()
}

# All but dpkg's own notes, caches and what a user's programs keep in the user's folder.
contents() {
  "${as_root[@]}" find "$root" \( -path "$root/var/lib/dpkg" -o -path "$root/var/cache" \
    -o -path "$root/var/log" -o -path "$root/root" -o -path "$root/tmp" \) -prune -o -print | sort
}

started=()
trap end_started EXIT

# Installs a package in a root of its own, tries it and removes it.
# usage: try PACKAGE 'FURTHER PACKAGES' CHECK...
try() {
  local package=$1 check
  # shellcheck disable=SC2086
  make_root "$package" $2
  contents >build/package/before
  "${as_root[@]}" dpkg --root="$root" --install "$(package_file "$package")"
  for check in "${@:3}"; do "$check"; done
  end_started
  "${as_root[@]}" dpkg --root="$root" --purge "$package"
  contents | diff build/package/before -
  "${as_root[@]}" rm -rf "$root"
}

check_files
check_options torvane ""
mapfile -t commands < <("$files/usr/bin/torvane-cli" --help |
  sed -n '/^Subcommands/,/^$/s/^  \([a-z]\+\) .*/\1/p')
check_options torvane-cli "" "${commands[@]}"
try torvane "" check_command_line check_screen check_desktop
try torvane-cli "" check_plain_command_line
try python3-torvane "" check_module
try libtorvane-dev "g++ cmake ninja-build" check_libraries
echo "The packages install, run and leave nothing behind."
