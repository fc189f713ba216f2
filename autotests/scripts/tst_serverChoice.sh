#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Whether the result database is built, with its library there and missing. Nothing is built.
# usage: tst_serverChoice.sh CHECKOUT CMAKE CXX GENERATOR
set -euo pipefail

checkout=$1 cmake=$2 compiler=$3 generator=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

failures=0
# check NAME EXPECTED [OPTION...]: configures, in $place.
# EXPECTED is "built", "failed", or the reason why the server is left out.
check() {
    local name=$1 expected=$2 actual log="$work/log"
    shift 2
    if ! "$cmake" -S "$checkout" -B "$place" -G "$generator" \
        "-DCMAKE_CXX_COMPILER=$compiler" -DFENNICK_BUILD_TESTS=OFF "$@" > "$log" 2>&1; then
        actual=failed
    elif "$cmake" --build "$place" --target help | grep -w fennickserver > /dev/null; then
        actual=built
    else
        actual=$(sed -n 's/^-- fennick-server is left out: //p' "$log")
    fi
    if [ "$actual" = "$expected" ]; then
        echo "PASS: $name"
    else
        printf 'FAIL: %s\n  expected: %s\n  actual:   %s\n' "$name" "$expected" "$actual"
        cat "$log"
        failures=$((failures + 1))
    fi
}

missing=-DCMAKE_DISABLE_FIND_PACKAGE_ICU=ON
found=-DCMAKE_DISABLE_FIND_PACKAGE_ICU=OFF
place=$work/wanted
check "no library, but wanted" failed $missing -DFENNICK_BUILD_SERVER=ON
place=$work/build
check "no library" "ICU is missing" $missing
check "library, installed since" built $found
check "library, not wanted" "FENNICK_BUILD_SERVER is OFF" $found -DFENNICK_BUILD_SERVER=OFF

[ $failures -eq 0 ]
