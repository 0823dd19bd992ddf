#!/bin/sh
# Builds the program, makes the sample company if there is none, works it out and prints the register
# of the current month. Where there is a display it then opens the launcher, from which the screens
# are started.
set -eu
cd "$(dirname "$0")"
. .ci/packages.sh
# shellcheck disable=SC2086
need_packages $build_packages

[ -f build/release/build.ninja ] || cmake --preset release -DBUILD_TESTING=OFF >/dev/null
cmake --build --preset release --target owbctl OWBLeaveMgmt OWBShell OWBFilter

owbctl=build/release/src/owbctl
data="${XDG_DATA_HOME:-$HOME/.local/share}/orvane-wagebook"
company="$data/sample.owb"
mkdir -p "$data"
if [ ! -e "$company" ]; then
    echo "Making the sample company in $company"
    rm -f "$company.new"*
    $owbctl sample "$company.new"
    mv "$company.new" "$company"
fi
$owbctl process "$company"
$owbctl register "$company"
month=$($owbctl register "$company" | sed -n 's/^Register of //p')

cat <<TRY

Three things to try:
  build/release/src/OWBShell $company
      the launcher: type "hol", Enter, and the holidays stand there
  $owbctl explain $company 6 EL $month
      why employee 6 has the earned leave that he has
  printf 'dump fpgHDetail\n' | $owbctl screen $company 1512 0
      the same screen by script, where there is no display
TRY
[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || exec build/release/src/OWBShell "$company"
