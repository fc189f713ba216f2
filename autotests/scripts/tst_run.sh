#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# What run.sh starts: a copy of it among programs that only say what they were called with.
# usage: tst_run.sh CHECKOUT
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/checkout/scripts" "$work/bin"
cp "$1/run.sh" "$work/checkout"
cp "$1/scripts/setup.sh" "$work/checkout/scripts"

# stub NAME: an executable from standard input.
stub() { cat > "$work/bin/$1"; chmod +x "$work/bin/$1"; }

stub program << 'END'
#!/bin/sh
printf '%s' "${0##*/}"
[ $# -eq 0 ] || printf ' [%s]' "$@"
echo " COMPUTERNAME=${COMPUTERNAME-unset}"
END
stub cmake << 'END'
#!/bin/sh
# Configures and builds at once.
mkdir -p build/release
echo "FENNICK_SERVER_LEFT_OUT:INTERNAL=$LEFT_OUT" > build/release/CMakeCache.txt
cp "$STUBS/program" build/release/fennick
cp "$STUBS/program" build/release/fennick-cli
END
stub apt-get << 'END'
#!/bin/sh
echo "$*" >> "$STUBS/installed"
END
stub sudo << 'END'
#!/bin/sh
exec "$@"
END

failures=0
# check NAME EXPECTED OUTPUT
check() {
    if [ "$2" != "$3" ]; then
        printf 'FAIL: %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    else
        echo "PASS: $1"
    fi
}

# run [VARIABLE=VALUE...] -- [ARGUMENT...]: what run.sh prints; its messages go to $work/messages.
run() {
    local variables=()
    while [ "$1" != -- ]; do variables+=("$1"); shift; done
    shift
    : > "$work/bin/installed"
    env -u DISPLAY -u WAYLAND_DISPLAY -u COMPUTERNAME LEFT_OUT= STUBS="$work/bin" \
        PATH="$work/bin:$PATH" "${variables[@]}" \
        "$work/checkout/run.sh" "$@" 2> "$work/messages" || cat "$work/messages"
}

check "the window where there is a display" \
    "fennick COMPUTERNAME=unset" "$(run DISPLAY=:7 --)"
check "the window where there is Wayland" \
    "fennick COMPUTERNAME=unset" "$(run WAYLAND_DISPLAY=wayland-0 --)"
check "the console runner without a display" \
    "fennick-cli COMPUTERNAME=unset" "$(run --)"
check "arguments mean the console runner" \
    "fennick-cli [--help] COMPUTERNAME=unset" "$(run DISPLAY=:7 WAYLAND_DISPLAY=wayland-0 -- --help)"
check "arguments without a display" \
    "fennick-cli [--list] COMPUTERNAME=unset" "$(run -- --list)"
check "arguments as they are" \
    "fennick-cli [--test] [a  b] [] [*] COMPUTERNAME=unset" "$(run DISPLAY=:7 -- --test 'a  b' '' '*')"
check "a machine's name that is set stays" \
    "fennick-cli COMPUTERNAME=LAB7" "$(run COMPUTERNAME=LAB7 --)"

run WAYLAND_DISPLAY=wayland-0 -- --list > /dev/null
check "nothing for a window is installed for the console runner" \
    0 "$(grep -c qtwayland5 "$work/bin/installed" || true)"

run -- > /dev/null
check "no word of the server where it is built" 0 "$(grep -c fennick-server "$work/messages" || true)"
run LEFT_OUT="ICU is missing" -- > /dev/null
check "one line where the server is left out" \
    "run.sh: fennick-server is left out: ICU is missing (docs/server.md)" \
    "$(grep fennick-server "$work/messages")"

[ $failures -eq 0 ]
