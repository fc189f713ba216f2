#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Whether the result database is built, with its library there, missing, and of another make. Nothing
# is built.
# usage: tst_serverChoice.sh CHECKOUT CMAKE CXX GENERATOR
set -euo pipefail

checkout=$1 cmake=$2 compiler=$3 generator=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A library of the same name in which the server finds nothing that it takes hold of.
mkdir -p "$work/other"
echo 'namespace httplib { class Server {}; }' > "$work/other/httplib.h"
printf '%s\n' 'Name: cpp-httplib' 'Description: another' 'Version: 99.1' "Cflags: -I$work/other" \
    > "$work/other/cpp-httplib.pc"

failures=0
# check NAME EXPECTED [VARIABLE=VALUE...] [OPTION...]: configures, in $place.
# EXPECTED is "built", "failed", or the reason why the server is left out.
check() {
    local name=$1 expected=$2 actual log="$work/log"
    shift 2
    local variables=()
    while [[ ${1:-} == PKG_CONFIG_* ]]; do variables+=("$1"); shift; done
    if ! env "${variables[@]}" "$cmake" -S "$checkout" -B "$place" -G "$generator" \
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

# pkg-config's answers are kept; these options make it a system where it was never asked.
forget=("-UPKG_CONFIG_*" "-U__pkg_config*" "-Uhttplib_*" "-Upkgcfg_*")

place=$work/wanted
check "no library, but wanted" failed "PKG_CONFIG_LIBDIR=$work" -DFENNICK_BUILD_SERVER=ON
place=$work/build
check "no library" "cpp-httplib is missing" "PKG_CONFIG_LIBDIR=$work"
check "library, installed since" built
check "other library" "it does not compile with cpp-httplib 99.1" \
    "PKG_CONFIG_LIBDIR=$work/other" "${forget[@]}"
check "library again" built "${forget[@]}"
check "library, not wanted" "FENNICK_BUILD_SERVER is OFF" -DFENNICK_BUILD_SERVER=OFF

[ $failures -eq 0 ]
