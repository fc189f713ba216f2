#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds Fennick and starts it: the window where there is a display and
# nothing was asked for, else the console runner, which gets the arguments.
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$top/scripts/setup.sh"

program=fennick-cli
if [ $# -eq 0 ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    program=fennick
fi

need_build_tools
[ $program = fennick-cli ] || need_display_tools
install_missing
(
    cd "$top"
    build release
    reason=$(why_no_server release)
    [ -z "$reason" ] || say "fennick-server is left out: $reason (docs/server.md)"
)
say "starting $program"
exec "$top/build/release/$program" "$@"
