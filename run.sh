#!/bin/sh
# Builds the program, makes the sample company if there is none, runs the full recalculation on it
# through the program's own start-up and prints the register of the current month. Where there is a
# display it then opens the launcher, from which the screens are started.
set -eu
cd "$(dirname "$0")"
. .ci/packages.sh
# shellcheck disable=SC2086
need_packages $build_packages

[ -f build/release/build.ninja ] || cmake --preset release -DBUILD_TESTING=OFF >/dev/null
cmake --build --preset release --target owbctl OWBLeaveMgmt OWBShell OWBFilter

data="${XDG_DATA_HOME:-$HOME/.local/share}/orvane-wagebook"
company="$data/sample.owb"
mkdir -p "$data"
if [ ! -e "$company" ]; then
    echo "Making the sample company in $company"
    rm -f "$company.new"*
    build/release/src/owbctl sample "$company.new"
    mv "$company.new" "$company"
fi

# <ignored>:<server>:<database>:<user>:<password>; without user and password.
link="$data/sample.owblink"
printf 'OWB:(embedded):%s::\n' "$company" >"$link"
OWB_SCRIPT=1 build/release/src/OWBLeaveMgmt "1600#False#0#0#$link" </dev/null

build/release/src/owbctl register "$company"
[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || exec build/release/src/OWBShell "$company"
