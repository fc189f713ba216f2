#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Which folder includes which: the arrows between the folders, from the #include lines of the sources.
#
# usage: folders.sh --check   print the arrows and the number of includes behind each. Ends with 1 if
#                             an include does not point to a lower floor, if files include each
#                             other in a circle, or if the picture shows other arrows.
#        folders.sh --draw    draw docs/pictures/folders.svg. Needs dot (Debian's graphviz).
# shellcheck disable=SC2016 # the dollar signs in single quotes are awk's
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
picture=docs/pictures/folders.svg

# FLOOR FOLDER PURPOSE: a floor includes only the floors below it.
floors='2 ui the windows
2 cli the console runner
2 server the result database
2 tools/artwork makes pictures and points
2 tools/reference makes the list of machines
1 tests the workloads
1 data records, store, exchange, ranking
1 console what programs for a terminal share
0 engine test interface, measurement, runner'

# FILE FOLDER: what may point up. The runner owns the suite and hands results to the data.
exceptions='engine/benchBase tests
engine/benchBase data'

# Prints FILE INCLUDED for every file that is included by its path from the top of the tree.
includes() {
    local folders
    mapfile -t folders < <(cut -d ' ' -f 2 <<< "$floors")
    find "${folders[@]}" -name '*.h' -o -name '*.cpp' | LC_ALL=C sort | xargs awk '
        /^[ \t]*#[ \t]*include[ \t]*"/ {
            split($0, parts, "\"")
            if (parts[2] !~ /^ui_[^\/]*$/) # generated from the forms
                print FILENAME, parts[2]
        }'
}

# Prints "FROM TO COUNT DIRECTION" for every arrow, and every include that is not allowed to stderr.
# Ends with 1 if there is one.
arrows() {
    includes | awk -v floors="$floors" -v exceptions="$exceptions" '
        function folder_of(path,   parts) {
            split(path, parts, "/")
            return parts[1] == "tools" ? parts[1] "/" parts[2] : parts[1]
        }
        function refuse(why) {
            print $1 ": #include \"" $2 "\" " why > "/dev/stderr"
            refused = 1
        }
        BEGIN {
            n = split(floors, lines, "\n")
            for (i = 1; i <= n; ++i) { split(lines[i], words, " "); floor[words[2]] = words[1] }
            n = split(exceptions, lines, "\n")
            for (i = 1; i <= n; ++i) allowed[lines[i]] = 1
        }
        {
            from = folder_of($1)
            to = folder_of($2)
            if (from == to) next
            if (!(to in floor)) { refuse("is in no folder of the program"); next }
            ++count[from " " to]
            name = $1
            sub(/\.[a-z]+$/, "", name)
            if (floor[to] >= floor[from] && !((name " " to) in allowed))
                refuse("points " (floor[to] > floor[from] ? "up" : "sideways"))
        }
        END {
            for (arrow in count) {
                split(arrow, ends, " ")
                print arrow, count[arrow], (floor[ends[2]] < floor[ends[1]] ? "down" : "up")
            }
            exit refused
        }' | LC_ALL=C sort
}

# What dot draws: a row for each floor, arrows down in grey, others in red.
graph() {
    echo 'digraph { node [shape=box fontname="sans-serif" fontsize=12 margin="0.15,0.1"]'
    echo 'edge [fontname="sans-serif" fontsize=11] nodesep=0.4 ranksep=0.9'
    awk '{
        name = $2; floor = $1; $1 = $2 = ""; sub(/^ */, "")
        printf "{ rank=same \"f%s\" [style=invis width=0 height=0 margin=0 label=\"\"] \"%s\" [label=<<b>%s/</b><br/>%s>] }\n", floor, name, name, $0
    }' <<< "$floors"
    echo '"f2" -> "f1" -> "f0" [style=invis]'
    # An arrow up is laid out as one down whose head is at the other end.
    awk '{
        up = $4 == "up"
        colour = up ? "#C62828" : "#607D8B"
        printf "\"%s\" -> \"%s\" [id=\"%s:%s\" label=\" %s \" color=\"%s\" fontcolor=\"%s\" dir=%s]\n", \
            (up ? $2 : $1), (up ? $1 : $2), $1, $2, $3, colour, colour, (up ? "back" : "forward")
    }'
    echo '}'
}

check() {
    local found status=0 drawn
    found=$(arrows) || status=1
    awk '{ printf "%-15s -> %-6s %3d%s\n", $1, $2, $3, ($4 == "up" ? " up" : "") }' <<< "$found"
    if ! includes | LC_ALL=C tsort > /dev/null; then
        echo 'files include each other in a circle' >&2
        status=1
    fi
    drawn=$(sed -n 's/^<g id="\([^"]*\):\([^"]*\)" class="edge">$/\1 \2/p' "$picture" | LC_ALL=C sort)
    if [ "$drawn" != "$(cut -d ' ' -f 1,2 <<< "$found")" ]; then
        echo "$picture shows other arrows: please run scripts/folders.sh --draw" >&2
        status=1
    fi
    return $status
}

case "${1:-}" in
    --check) check ;;
    --draw) arrows | graph | dot -Tsvg > "$picture" ;;
    *) sed -n 's/^# usage: /usage: /p' "$0" >&2; exit 2 ;;
esac
