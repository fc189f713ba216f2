#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The includes between the folders of this tree, and what scripts/folders.sh says about wrong ones.
# usage: tst_folders.sh CHECKOUT
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/tree"
cp -r "$1"/{engine,tests,data,console,ui,cli,server,tools,scripts} "$work/tree"
mkdir -p "$work/tree/docs/pictures"
cp "$1/docs/pictures/folders.svg" "$work/tree/docs/pictures"
cp -r "$work/tree" "$work/original"

failures=0
# check NAME STATUS REGEX...: how --check ends, and what its output must match.
check() {
    local name=$1 expected=$2 status=0 regex
    shift 2
    "$work/tree/scripts/folders.sh" --check > "$work/output" 2>&1 || status=$?
    [ "$status" -eq "$expected" ] || name="$name: status $status"
    for regex in "$@"; do
        grep -qE -- "$regex" "$work/output" || name="$name: no '$regex'"
    done
    if [ "$name" = "${name%%: *}" ]; then
        echo "PASS: $name"
    else
        echo "FAIL: $name"
        sed 's/^/    /' "$work/output"
        failures=$((failures + 1))
    fi
}

# include FILE INCLUDED: one more include in a fresh copy of the tree.
include() {
    rm -rf "$work/tree"
    cp -r "$work/original" "$work/tree"
    echo "#include \"$2\"" >> "$work/tree/$1"
}

check 'this tree' 0 '^engine +-> tests +[0-9]+ up$' '^tests +-> engine +[0-9]+$'

include engine/clock.h data/ranking.h
check 'up' 1 '^engine/clock.h: #include "data/ranking.h" points up$'
include engine/machineProbe.cpp tests/suite.h
check 'up from a file that is not the runner' 1 '^engine/machineProbe.cpp: .* points up$'
include engine/benchBase.cpp ui/mainwindow.h
check 'up from the runner to a window' 1 '^engine/benchBase.cpp: .* points up$'
include tests/lines.cpp data/estimate.h
check 'sideways' 1 '^tests/lines.cpp: .* points sideways$'
include cli/consoleRunner.cpp ui/plainText.h
check 'from one program to another' 1 '^cli/consoleRunner.cpp: .* points sideways$'
include data/ranking.cpp autotests/engine/fakeClock.h
check 'a helper of the tests' 1 '^data/ranking.cpp: .* is in no folder of the program$'
include data/ranking.cpp estimate.h
check 'a path from the folder' 1 '^data/ranking.cpp: .* is in no folder of the program$'

include engine/hooks.h engine/stopwatch.h
echo '#include "engine/hooks.h"' >> "$work/tree/engine/stopwatch.h"
check 'a circle' 1 '^files include each other in a circle$' 'engine/hooks.h$' 'engine/stopwatch.h$'

include ui/main.cpp console/options.h
check 'an arrow that the picture lacks' 1 'folders.svg shows other arrows' '^ui +-> console +1$'

[ $failures -eq 0 ]
