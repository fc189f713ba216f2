#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the pictures of the documents from the real program in a virtual display.
# Needs Xvfb, xdotool and ImageMagick's import, and a build (./run.sh makes one).
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
program=build/release/fennick
pictures=docs/pictures
export DISPLAY=:87 COMPUTERNAME=LAB7 XDG_DATA_HOME="$PWD/build/screenshots-data"
mkdir -p "$pictures"

Xvfb "$DISPLAY" -screen 0 1280x1000x24 > /dev/null 2>&1 &
server=$!
trap 'kill $server' EXIT
sleep 1
"$program" > /dev/null 2>&1 &
sleep 2
window=$(xdotool search --onlyvisible --name 'Fennick CPU bench' | tail -n 1)

# click X Y: at a place in the main window.
click() { xdotool mousemove --window "$window" "$1" "$2" click 1; sleep 0.6; }
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
