#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the pictures of the documents from the real program in a virtual display.
# Needs Xvfb, xdotool and ImageMagick's import, and a build (./run.sh makes one). The first time it does
# a full run, so that there are results to show; they stay in build/screenshots-data.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
program=build/release/fennick
pictures=docs/pictures
export DISPLAY=:87 COMPUTERNAME=LAB7 XDG_DATA_HOME="$PWD/build/screenshots-data"
mkdir -p "$pictures"

[ -e "$XDG_DATA_HOME/fennick/user_data.xml" ] || build/release/fennick-cli > /dev/null

Xvfb "$DISPLAY" -screen 0 2400x1000x24 > /dev/null 2>&1 &
server=$!
trap 'kill $server' EXIT
sleep 1
"$program" > /dev/null 2>&1 &
sleep 2
window=$(xdotool search --onlyvisible --name 'Fennick CPU bench' | tail -n 1)

# click X Y [BUTTON [TIMES]]: at a place in the window, with button 1 if not named; 5 is the wheel.
click() {
    xdotool mousemove --window "$window" "$1" "$2" click --repeat "${4:-1}" --delay 60 "${3:-1}"
    sleep 0.6
}
picture() { import -window "$window" "$pictures/$1.png"; }

picture tab-benchmark
click 230 35
picture tab-single-test
click 400 35
picture tab-options
click 230 35
click 300 298
sleep 3
picture running
xdotool key --window "$window" ctrl+l
sleep 1.5
picture running-without-log

# The single test has measured something; its result is marked in the charts.
sleep 12
xdotool key --window "$window" ctrl+l
click 80 35
main=$window
click 344 345
sleep 1
window=$(xdotool search --onlyvisible --name 'compare window' | tail -n 1)
xdotool windowmove "$window" 700 0 windowsize --sync "$window" 1000 640
sleep 1
picture compare-single-core
click 450 106 5 1 # top devices
click 500 151 5 1 # all cores
click 899 41      # processors
picture compare-multi-core
click 500 151 5 2 # one test
picture compare-one-test
click 500 151 4 1 # all tests
click 450 106 5 3 # all devices
click 817 41      # not merged
click 899 41 1 2  # short names
picture compare-all

window=$main
click 400 35
click 36 252 # per clock
click 185 352
sleep 1
window=$(xdotool search --onlyvisible --name '^results$' | tail -n 1)
xdotool windowmove --sync "$window" 1800 0
sleep 0.5
picture results-as-text
window=$main
click 80 35
click 344 345
sleep 1
window=$(xdotool search --onlyvisible --name 'compare window' | tail -n 1)
xdotool windowmove "$window" 700 0 windowsize --sync "$window" 1000 640
sleep 1
click 838 41
click 899 41 1 2 # all details
picture compare-per-clock
