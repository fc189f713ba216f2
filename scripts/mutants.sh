#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Puts one deliberate fault after the other into a copy of the last commit and says which of them the
# tests notice. Takes hours for the whole table; not part of CI.
#
# usage: mutants.sh [-f REGEX] [-r FILE] [TABLE]
#   -f REGEX  only the rows whose name matches
#   -r FILE   results go to FILE, and rows that have one there already are not tried again
#             (build/mutants/results.tsv, made anew, if absent)
#   TABLE     autotests/mutants.tsv if absent
#
# The columns of the table, between tabs; \n, \t and \\ in a text stand for what they do in C:
#   name         of the fault
#   file         it goes into
#   find         text that occurs there exactly once
#   replacement  of that text
#   tests        regular expression of the tests that are to notice, as for ctest -R
#   explanation  why no test can notice; absent for a fault that must be noticed
# Empty lines and those that begin with # are passed over.
#
# A fault is killed when one of its tests fails, or any other test if those pass; "survived" has seen all
# tests pass. Ends with 1 if a fault survived that is not explained, or could not be tried.
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$top/scripts/setup.sh"

filter=.
results=''
while getopts f:r: option; do
    case $option in
        f) filter=$OPTARG ;;
        r) results=$(realpath -m "$OPTARG") ;;
        *) exit 2 ;;
    esac
done
shift $((OPTIND - 1))
table=$(realpath "${1:-$top/autotests/mutants.tsv}")
work=$top/build/mutants
copy=$work/checkout
log=$work/log
mkdir -p "$work"
if [ -z "$results" ]; then
    results=$work/results.tsv
    rm -f "$results"
fi
touch "$results"

# Brings the copy to the last commit. Git writes changed files only, so little is built again.
update_copy() {
    [ -d "$copy/.git" ] || git clone -q --shared --no-checkout "$top" "$copy"
    git -C "$copy" fetch -q "$top" HEAD
    git -C "$copy" checkout -q --force --detach FETCH_HEAD
    cd "$copy"
}

restore() { git -C "$copy" checkout -q --force -- "$1"; }

# mutate FILE FIND REPLACEMENT: edits FILE if FIND occurs in it once.
mutate() {
    perl -e '
        my ($file, $find, $replacement) = @ARGV;
        my %escapes = (n => "\n", t => "\t", "\\" => "\\");
        s/\\([nt\\])/$escapes{$1}/g for $find, $replacement;
        open my $in, "<:raw", $file or die "$file: $!\n";
        my $text = do { local $/; <$in> };
        my $count = () = $text =~ /\Q$find\E/g;
        die "$file has the text $count times\n" if $count != 1;
        die "the replacement is the text\n" if $find eq $replacement;
        substr($text, index($text, $find), length $find) = $replacement;
        open my $out, ">:raw", $file or die "$file: $!\n";
        print $out $text;
        close $out or die "$file: $!\n";
    ' "$1" "$2" "$3" 2> "$log"
}

# tests_of REGEX: the names of the tests.
tests_of() { ctest --preset test -N -R "$1" | sed -n 's/^ *Test *#[0-9]*: //p'; }

# build_tests REGEX: builds the targets of the tests; some tests are scripts and have none.
build_tests() {
    local name targets=()
    for name in $(tests_of "$1"); do
        name=tst_${name##*/}
        if grep -qx "$name" "$work/targets"; then targets+=("$name"); fi
    done
    [ ${#targets[@]} -eq 0 ] \
        || cmake --build --preset test --target "${targets[@]}" > "$log" 2>&1
}

# run_tests REGEX: 0 if all pass. Else failing has the names of those that failed first.
run_tests() {
    failing=''
    ctest --preset test --stop-on-failure -R "$1" > "$log" 2>&1 && return
    failing=$(sed -nE 's/^.*Test +#[0-9]+: ([^ ]+) .*(Failed|\*\*\*|Timeout).*/\1/p' "$log" \
        | sort -u | paste -s -d ' ')
    return 1
}

# What fails without a fault would seem to kill all of them.
check_unchanged() {
    say "building and running the tests without a fault: $1"
    build_tests "$1" || { tail -n 30 "$log"; fail "the copy does not build"; }
    run_tests "$1" || fail "without a fault there fail already: $failing"
}

# try_all FILE FIND REPLACEMENT: all tests on a fault that its own tests have passed.
all_checked=false
try_all() {
    if ! $all_checked; then
        restore "$1"
        check_unchanged .
        all_checked=true
        mutate "$@"
    fi
    cmake --build --preset test > "$log" 2>&1 || { outcome="does not build"; return; }
    outcome=survived
    run_tests . || outcome=killed
}

# try FILE FIND REPLACEMENT TESTS: sets outcome, and detail.
try() {
    outcome='' detail=''
    if ! mutate "$1" "$2" "$3"; then
        outcome="does not apply" detail=$(head -n 1 "$log")
    elif ! build_tests "$4"; then
        outcome="does not build" detail=$(grep -m 1 'error' "$log" || true)
    elif run_tests "$4"; then
        try_all "$1" "$2" "$3"
        detail=${failing:+not by its own tests but by $failing}
    else
        outcome=killed detail=$failing
    fi
    restore "$1"
}

# rows FUNCTION: calls it with the columns of each row that is asked for.
rows() {
    local line name file find replacement tests explanation
    while IFS= read -r line <&3 || [ -n "$line" ]; do
        if [ -z "$line" ] || [ "${line:0:1}" = "#" ]; then continue; fi
        # Empty columns count, so tabs must not be white space to read.
        IFS=$'\x1f' read -r name file find replacement tests explanation <<< "${line//$'\t'/$'\x1f'}"
        [[ $name =~ $filter ]] || continue
        "$1" "$name" "$file" "$find" "$replacement" "$tests" "$explanation"
    done 3< "$table"
}

# result_of NAME: its outcome, if it has one.
result_of() { awk -F '\t' -v name="$1" '$1 == name { print $2 }' "$results" | tail -n 1; }

collect_tests() {
    [ -n "$(result_of "$1")" ] && return
    [ -n "$(tests_of "$5")" ] || fail "$1: no test is called $5"
    wanted+="${wanted:+|}$5"
}

try_row() {
    [ -n "$(result_of "$1")" ] && return
    try "$2" "$3" "$4" "$5"
    say "$1: $outcome${detail:+ ($detail)}"
    printf '%s\t%s\t%s\n' "$1" "$outcome" "${detail//$'\t'/ }" >> "$results"
}

killed=0 survived=0 explained=0 untried=0
show_row() {
    local outcome
    outcome=$(result_of "$1")
    case $outcome in
        killed) killed=$((killed + 1)) ;;
        survived)
            survived=$((survived + 1))
            if [ -n "$6" ]; then
                explained=$((explained + 1))
                outcome="survived: $6"
            fi
            ;;
        *) untried=$((untried + 1)) ;;
    esac
    printf '%-40s %s\n' "$1" "$outcome"
}

update_copy
say "configuring"
cmake --preset test > "$log" 2>&1 || { cat "$log"; fail "the configuration failed"; }
cmake --build --preset test --target help | sed -n 's/^\(tst_[^:/]*\): .*/\1/p' > "$work/targets"
wanted=''
rows collect_tests
[ -z "$wanted" ] || check_unchanged "$wanted"
rows try_row

rows show_row
tried=$((killed + survived))
printf '\n%d killed, %d survived (%d of them explained), %d could not be tried\n' \
    $killed $survived $explained $untried
[ $tried -eq 0 ] || printf '%d %% of those that could be tried were killed\n' $((100 * killed / tried))
[ $survived -eq $explained ] && [ $untried -eq 0 ]
