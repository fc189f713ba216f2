#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# What style.sh finds in a small project, with the real tools.
# usage: tst_style.sh CHECKOUT
# Ends with 77 where one of the tools is missing.
set -euo pipefail

for tool in clang-format clang-tidy shellcheck git; do
    command -v $tool > /dev/null || { echo "SKIP: $tool is missing"; exit 77; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
project=$work/project
mkdir -p "$project/scripts" "$project/.ci" "$project/build/test" "$project/tests"
cp "$1/scripts/style.sh" "$1/scripts/setup.sh" "$project/scripts"
cp "$1/.clang-format" "$1/.clang-tidy" "$project"
cd "$project"

git() { command git -c user.name=test -c user.email=test@localhost -c init.defaultBranch=main "$@"; }
commit() { git add -A && git commit -q -m "$1"; }

# write NAME: a file from standard input; write_unit also puts it into the build.
write() { cat > "$1"; }
write_unit() {
    write "$1"
    printf '{\n  "directory": "%s",\n  "command": "c++ -I%s -c %s",\n  "file": "%s"\n},\n' \
        "$project" "$project" "$project/$1" "$project/$1" >> "$work/units"
    { echo '['; sed '$s/},/}/' "$work/units"; echo ']'; } > build/test/compile_commands.json
}

failures=0
# check NAME EXPECTED OUTPUT
check() {
    if [ "$2" != "$3" ]; then
        printf 'FAIL: %s\n--- expected:\n%s\n--- actual:\n%s\n' "$1" "$2" "$3"
        cat "$work/messages"
        failures=$((failures + 1))
    else
        echo "PASS: $1"
    fi
}

# style ARGUMENT...: its last line and its exit code.
style() {
    local code=0
    scripts/style.sh "$@" > "$work/messages" 2>&1 || code=$?
    printf '%s\nexit %d\n' "$(tail -n 1 "$work/messages")" $code
}
# findings PATTERN: those of the last call.
findings() { grep -oE "$1" "$work/messages" | sort -u; }

clean="style.sh: nothing was found
exit 0"
# Of a kind that the configuration asks for, and no compiler warns about.
fault='int *nowhere()
{
    return 0;
}'

echo build > .gitignore
printf '#!/bin/sh\necho all\n' | write .ci/run
write_unit tests/good.cpp <<< 'int good()
{
    return 1;
}'
write_unit tests/old.cpp <<< "$fault"
git init -q
commit first
write_unit tests/later.cpp <<< 'int later()
{
    return 2;
}'
commit second

check "a clean change" "$clean" "$(style HEAD~1)"
check "only what has changed is looked at" "clang-tidy: 1 sources" "$(findings 'clang-tidy: [0-9]* sources')"
check "all sources" "style.sh: something was found by clang-tidy
exit 1" "$(style --all)"
check "what it is" "tests/old.cpp:3:12: error" "$(findings 'tests/[a-z.]*:[0-9:]* error')"
check "a history that is too short" "style.sh: something was found by clang-tidy
exit 1" "$(style)"

git checkout -q -b branch
write tests/good.cpp <<< "$fault"
check "a change that is not committed" "style.sh: something was found by clang-tidy
exit 1" "$(style HEAD)"
commit third
check "a branch is compared with main" "style.sh: something was found by clang-tidy
exit 1" "$(style)"
check "and nothing else" "tests/good.cpp:3:12: error" "$(findings 'tests/[a-z.]*:[0-9:]* error')"
check "nothing has changed" "$clean" "$(style HEAD)"

write tests/user.h <<< "#pragma once

inline $fault"
write_unit tests/caller.cpp <<< '#include "tests/user.h"

int user()
{
    return nowhere() == nullptr ? 1 : 0;
}'
commit fourth
sed -i '$a\\n// changed' tests/user.h
check "a header is looked at with a source that includes it" "style.sh: something was found by clang-tidy
exit 1" "$(style HEAD)"
check "where the fault is" "tests/user.h:5:12: error" "$(findings 'tests/[a-z.]*:[0-9:]* error')"
git checkout -q tests/user.h
mkdir build/test/tests
write build/test/tests/made.h <<< "inline $fault"
write_unit tests/maker.cpp <<< '#include "build/test/tests/made.h"'
check "what the build has made is not looked at" "$clean" "$(style HEAD)"
rm tests/maker.cpp
write tests/alone.h <<< '#pragma once'
check "a header of no source" "$clean" "$(style HEAD)"
check "is named" "tests/alone.h is in no source" "$(findings 'tests/alone.h is in no source')"

write tests/alone.h <<< '#pragma   once
int  badly( );'
check "another format" \
    "style.sh: something was found by clang-format, which mends it itself: clang-format -i FILE
exit 1" "$(style HEAD)"
rm tests/alone.h
# shellcheck disable=SC2016 # the script is not for this shell
printf '#!/bin/sh\necho $1\n' | write scripts/new.sh
check "a new script" "style.sh: something was found by shellcheck
exit 1" "$(style HEAD)"
rm scripts/new.sh
# shellcheck disable=SC2016
printf '#!/bin/sh\necho $1\n' | write .ci/run
check "a script without an ending" "style.sh: something was found by shellcheck
exit 1" "$(style HEAD)"
git checkout -q .ci/run

check "no commit" "style.sh: nothing-like-this is no commit
exit 1" "$(style nothing-like-this)"
mv build/test/compile_commands.json "$work"
check "no build" "style.sh: clang-tidy needs the build of ./test.sh
exit 1" "$(style HEAD)"

mkdir "$work/bin"
for tool in bash dirname git clang-format clang-tidy; do
    ln -s "$(type -P $tool)" "$work/bin/$tool"
done
check "no tool, and nothing to install it with" "style.sh: please install the equivalents of these \
Debian packages, then try again: shellcheck
exit 1" "$(PATH=$work/bin; "$work/bin/bash" scripts/style.sh HEAD 2>&1; echo "exit $?")"

[ $failures -eq 0 ]
