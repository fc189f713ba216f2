#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# What mutants.sh says of faults in a project of one file, whose build and tests only look for words
# in it.
# usage: tst_mutants.sh CHECKOUT
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
project=$work/project
mkdir -p "$project/scripts" "$work/bin"
cp "$1/scripts/mutants.sh" "$1/scripts/setup.sh" "$project/scripts"
printf 'one\ttwo\nthree three\nfour\n' > "$project/source"
git -C "$project" init -q
git -C "$project" add -A
git -C "$project" -c user.name=test -c user.email=test@localhost commit -q -m all

cat > "$work/bin/cmake" << 'END'
#!/bin/sh
case "$*" in
    *help*) echo "tst_a: phony"; echo "tst_a/something: phony"; echo "tst_b: phony" ;;
    *--build*) echo "$*" >> "$STUBS/calls"; ! grep "syntax error" source ;;
esac
END
# a fails on "red", b on "blue"; names that match go before what they find.
cat > "$work/bin/ctest" << 'END'
#!/bin/bash
regex=${*: -1}
status=0
for test in x/a:red x/b:blue; do
    name=${test%:*}
    [[ $name =~ $regex ]] || continue
    case "$*" in
        *' -N '*) echo "  Test #1: $name" ;;
        *) if grep -q "${test#*:}" source; then
               echo "1/1 Test #1: $name ....***Failed  0.01 sec"
               status=8
           fi ;;
    esac
done
exit $status
END
chmod +x "$work/bin/"*

failures=0
# check NAME EXPECTED OUTPUT
check() {
    if [ "$2" != "$3" ]; then
        printf 'FAIL: %s\n--- expected:\n%s\n--- actual:\n%s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    else
        echo "PASS: $1"
    fi
}

# mutants ARGUMENT...: the table that it prints, and its exit code.
mutants() {
    local code=0
    : > "$work/calls"
    STUBS=$work PATH="$work/bin:$PATH" "$project/scripts/mutants.sh" "$@" 2> "$work/messages" || code=$?
    echo "exit $code"
}

# row COLUMN...: a line of the table.
row() { local IFS=$'\t'; echo "$*" >> "$work/table"; }

echo '# a comment' > "$work/table"
row noticed source four red '^x/a$'
row elsewhere source four blue '^x/a$'
row escapes source 'one\ttwo\nthree' 'red\n\\n' '^x/a$'
check "faults that are noticed" "\
noticed                                  killed
elsewhere                                killed
escapes                                  killed

3 killed, 0 survived (0 of them explained), 0 could not be tried
100 % of those that could be tried were killed
exit 0" "$(mutants "$work/table")"
check "who noticed" "\
mutants.sh: noticed: killed (x/a)
mutants.sh: elsewhere: killed (not by its own tests but by x/b)
mutants.sh: escapes: killed (x/a)" "$(grep ': killed' "$work/messages")"
check "only the targets of its tests are built" "--build --preset test --target tst_a" \
    "$(grep -m 1 -e --target "$work/calls")"
check "the checkout stays as it was" "" "$(git -C "$project" status --porcelain source)"

: > "$work/table"
row explained source four vier '^x/a$' 'the same in German'
check "a survivor that is explained" "\
explained                                survived: the same in German

0 killed, 1 survived (1 of them explained), 0 could not be tried
0 % of those that could be tried were killed
exit 0" "$(mutants "$work/table")"

row quiet source four vier '^x/a$'
row twice source three red '^x/a$'
row never source five red '^x/a$'
row nothing source four four '^x/a$'
row broken source four 'syntax error' '^x/a$'
check "survivors, and faults that cannot be tried" "\
quiet                                    survived
twice                                    does not apply
never                                    does not apply
nothing                                  does not apply
broken                                   does not build

0 killed, 1 survived (0 of them explained), 4 could not be tried
0 % of those that could be tried were killed
exit 1" "$(mutants -f '^[^e]' "$work/table")"

: > "$work/table"
row first source four red '^x/a$'
mutants -r "$work/results" "$work/table" > /dev/null
row second source four red '^x/a$'
check "a run that goes on" "\
first                                    killed
second                                   killed

2 killed, 0 survived (0 of them explained), 0 could not be tried
100 % of those that could be tried were killed
exit 0" "$(mutants -r "$work/results" "$work/table")"
check "what has a result is not tried again" "mutants.sh: second: killed (x/a)" \
    "$(grep ': killed' "$work/messages")"

row unknown source four red '^x/c$'
check "tests that do not exist" "exit 1" "$(mutants "$work/table")"

[ $failures -eq 0 ]
