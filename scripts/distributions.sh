#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs both commands in a Debian that has nothing but its base system: as an ordinary user with sudo,
# then as root, each in a fresh copy. Part of a release, not of every change: it downloads some 500 MB
# and builds Fennick five times. Takes the last commit, not what is changed since.
#
# usage: distributions.sh [SUITE [DIRECTORY]]
#   SUITE      a release that debootstrap knows: trixie (the default), bookworm, ...
#   DIRECTORY  for base system, packages, compiler cache and logs, which are kept:
#              build/distributions/SUITE if absent; its file system must not be mounted nosuid
# shellcheck disable=SC2016 # the dollar signs in single quotes are for dpkg-query
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$top/scripts/setup.sh"
. "$top/scripts/roots.sh"

suite=${1:-trixie}
directory=${2:-$top/build/distributions/$suite}
checkout=/srv/fennick

# try PERSON COMMAND...: runs it, and notes how it went. The log has the command's name.
report=()
failures=0
try() {
    local person=$1 result=passed log start=$SECONDS
    shift
    log="$directory/logs/$person-$(tr -cs 'a-z0-9\n' - <<< "$*").log"
    say "$suite, as $person: $*"
    if ! inside "$person" "$@" > "$log" 2>&1; then
        result=FAILED
        failures=$((failures + 1))
        tail -n 40 "$log"
        say "it failed, see $log"
    fi
    report+=("$(printf '%-10s %-8s %-20s %5d s  %s  %s' "$suite" "$person" "$*" \
        $((SECONDS - start)) $result "$(grep -o '[0-9]* tests failed out of [0-9]*' "$log" || true)")")
}

# All that happens in the namespaces.
everything() {
    make_base
    local person
    for person in somebody root; do
        remove_root
        fresh_root $person
        try $person ./run.sh --time 1
        try $person ./test.sh
        [ $person = root ] || try $person ./test.sh ci-clang
        [ $person = root ] || chroot "$root" dpkg-query -W -f '${Package} ${Version}\n' \
            g++ clang cmake qtbase5-dev libboost-dev || true
    done
    printf '%s\n' "${report[@]}"
    [ $failures -eq 0 ]
}

in_namespaces
