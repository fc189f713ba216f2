#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Checks the style: clang-format over all sources, shellcheck over all scripts, and clang-tidy over the
# sources that have changed. Ends with 1 if one of them finds anything. Needs the build of ./test.sh.
#
# usage: style.sh [--all | BASE]
#   --all  clang-tidy looks at all sources, which takes long
#   BASE   clang-tidy looks at what differs from this commit: HEAD for what is not committed yet
# Without either, clang-tidy looks at what has changed since the branch left main; on main itself, since
# 5 commits ago; and at all sources where history does not go back so far.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

build=build/test
commits=5

# Versions disagree on a few lines and rules; where those of Debian 12 are installed, they decide.
export clang_format=clang-format clang_tidy=clang-tidy
if has_command clang-format-14; then clang_format=clang-format-14; fi
if has_command clang-tidy-14; then clang_tidy=clang-tidy-14; fi

# existing: passes those of the names on that are files.
existing() {
    local name
    while IFS= read -r name; do [ ! -f "$name" ] || printf '%s\n' "$name"; done
}

# files PATTERN...: those under version control, and new ones.
files() { git ls-files --cached --others --exclude-standard -- "$@" | sort -u | existing; }

is_commit() { git rev-parse -q --verify "$1^{commit}" > /dev/null; }

# default_base: the commit to compare with; empty if there is none.
default_base() {
    local main fork
    for main in origin/main main; do
        is_commit "$main" || continue
        fork=$(git merge-base "$main" HEAD) || continue
        [ "$fork" = "$(git rev-parse HEAD)" ] || { printf '%s\n' "$fork"; return; }
    done
    git rev-parse -q --verify "HEAD~$commits" || true
}

# changed_files BASE: sources that differ from the commit, and new ones.
changed_files() {
    {
        git diff --name-only --diff-filter=d "$1" -- '*.cpp' '*.h'
        git ls-files --others --exclude-standard -- '*.cpp' '*.h'
    } | sort -u | existing
}

# units: the sources that the build compiles, from the top of the checkout.
units() {
    sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' $build/compile_commands.json \
        | sed -n "s|^$PWD/||p" | grep -v '^build/' | sort -u
}

# units_of FILE...: the sources to look at. A header is looked at with a source that includes it, its
# own one if it has one.
units_of() {
    local file unit
    for file in "$@"; do
        unit=$file
        if [ "${file##*.}" = h ]; then
            unit=${file%.h}.cpp
            grep -qxF "$unit" <<< "$all_units" || unit=$(including "$file")
        fi
        if [ -n "$unit" ] && grep -qxF "$unit" <<< "$all_units"; then
            printf '%s\n' "$unit"
        else
            say "$file is in no source of this build, so clang-tidy does not see it"
        fi
    done | sort -u
}

# including HEADER: a source that includes it; paths start at the top, at autotests or beside the source.
including() {
    # Each name is a file of ours without white space.
    # shellcheck disable=SC2086
    grep -lF -e "#include \"$1\"" -e "#include \"${1#autotests/}\"" -e "#include \"${1##*/}\"" $all_units | head -n 1 || true
}

# our_headers: the configuration's expression for them, without those that the build has made.
our_headers() {
    # shellcheck disable=SC2001 # no pattern of bash can put a backslash before what it finds
    printf '^%s/' "$(sed 's/[][\.*^$+?(){}|]/\\&/g' <<< "$PWD")"
    sed -n "s/^HeaderFilterRegex: '\(.*\)'/\1/p" .clang-tidy
}

# without_precompiled: the build's commands for those who have another compiler than the build, and cannot
# read its precompiled headers. A source that includes too little is found by the way.
without_precompiled() {
    sed -E -e 's/ -Winvalid-pch -include [^ ]*cmake_pch\.hxx//g' \
        -e 's/ -Xclang -include(-pch)? -Xclang [^ ]*cmake_pch\.hxx(\.pch)?//g' $build/compile_commands.json
}

# tidy SOURCE: prints what clang-tidy finds.
tidy() {
    local output
    output=$("$clang_tidy" -p "$database" --quiet --warnings-as-errors='*' \
        --header-filter="$headers" "$1" 2>&1) && return
    printf '%s\n' "$output" | grep -vE '^[0-9]+ (warning|error).* generated\.$'
    return 1
}
export -f tidy

found=()

check_format() {
    local sources
    mapfile -t sources < <(files '*.cpp' '*.h')
    say "clang-format: ${#sources[@]} files"
    "$clang_format" --dry-run -Werror --ferror-limit=1 "${sources[@]}" \
        || found+=("clang-format, which mends it itself: clang-format -i FILE")
}

check_scripts() {
    local scripts
    mapfile -t scripts < <(files '*.sh' .ci/run)
    say "shellcheck: ${#scripts[@]} scripts"
    shellcheck -x "${scripts[@]}" || found+=(shellcheck)
}

# check_code [BASE]
check_code() {
    local changed sources all_units
    [ -f $build/compile_commands.json ] || fail "clang-tidy needs the build of ./test.sh"
    all_units=$(units)
    if [ -n "${1:-}" ]; then
        mapfile -t changed < <(changed_files "$1")
        mapfile -t sources < <(units_of "${changed[@]}")
        say "clang-tidy: ${#sources[@]} sources, for what has changed since $(git rev-parse --short "$1")"
    else
        mapfile -t sources <<< "$all_units"
        say "clang-tidy: all ${#sources[@]} sources"
    fi
    [ ${#sources[@]} -gt 0 ] || return 0
    headers=$(our_headers)
    database=$(mktemp -d)
    without_precompiled > "$database/compile_commands.json"
    export headers database
    # shellcheck disable=SC2016 # the dollar sign is for the shell that xargs starts
    printf '%s\0' "${sources[@]}" \
        | xargs -0 -n 1 -P "${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}" bash -c 'tidy "$1"' tidy \
        || found+=(clang-tidy)
    rm -r "$database"
}

base=${1:-$(default_base)}
[ "$base" != --all ] || base=''
[ -z "$base" ] || is_commit "$base" || fail "$base is no commit"
need_style_tools
install_missing
check_format
check_scripts
check_code "$base"
[ ${#found[@]} -eq 0 ] || fail "something was found by $(printf '%s; ' "${found[@]}" | sed 's/; $//')"
say "nothing was found"
