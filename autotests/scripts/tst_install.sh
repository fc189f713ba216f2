#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# What is installed of the server, and what systemd says of its units.
# usage: tst_install.sh BUILD CMAKE
# Ends with 77 where systemd-analyze is missing, after the rest.
set -euo pipefail

build=$1 cmake=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
most=13 # tenths of a point of exposure; 100 is no protection

failures=0
# check NAME EXPECTED ACTUAL
check() {
    if [ "$2" = "$3" ]; then
        echo "PASS: $1"
    else
        printf 'FAIL: %s\n--- expected:\n%s\n--- actual:\n%s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

DESTDIR=$work/installed "$cmake" --install "$build" --prefix /usr --component server > "$work/log"
check "files" "./usr/bin/fennick-server
./usr/lib/systemd/system/fennick-publish.service
./usr/lib/systemd/system/fennick-publish.timer
./usr/lib/systemd/system/fennick-server.service
./usr/share/doc/fennick/examples/haproxy.cfg
./usr/share/doc/fennick/examples/nginx.conf" "$(cd "$work/installed" && find . ! -type d | LC_ALL=C sort)"
check "the program is one" 0 "$("$work/installed/usr/bin/fennick-server" --version > /dev/null; echo $?)"

command -v systemd-analyze > /dev/null || {
    echo "SKIP: systemd-analyze is missing, so nobody looked at the units"
    [ $failures -eq 0 ] || exit 1
    exit 77
}
# systemd looks for the program where programs are; here it is elsewhere.
units=$work/units
mkdir "$units"
for unit in "$work"/installed/usr/lib/systemd/system/*; do
    sed "s|^ExecStart=fennick-server |ExecStart=$work/installed/usr/bin/fennick-server |" "$unit" \
        > "$units/${unit##*/}"
done
check "all services start the program" 2 "$(grep -lF "ExecStart=$work/installed" "$units"/* | wc -l)"
for unit in "$units"/*; do
    check "${unit##*/} is right" "" "$(systemd-analyze verify "$unit" 2>&1 || echo "it ended with $?")"
done
for unit in "$units"/*.service; do
    looked=0
    systemd-analyze security --offline=true --no-pager --threshold=$most "$unit" > "$work/log" 2>&1 || looked=$?
    check "${unit##*/} is shut in: $(tail -n 1 "$work/log")" 0 $looked
done

[ $failures -eq 0 ]
