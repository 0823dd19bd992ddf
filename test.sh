#!/bin/sh
# Builds everything and runs every test. Arguments go to ctest (./test.sh -R recordset).
set -eu
cd "$(dirname "$0")"
. .ci/packages.sh
# shellcheck disable=SC2086
need_packages $build_packages

[ -f build/dev/build.ninja ] || cmake --preset dev >/dev/null
cmake --build --preset dev
ctest --preset dev -j "$(nproc)" "$@"
