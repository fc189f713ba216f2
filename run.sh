#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds Fennick and starts it: the window where there is a display, the
# console runner where there is none. Arguments go on to the program.
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$top/scripts/setup.sh"

need_build_tools
need_display_tools
install_missing
(
    cd "$top"
    build release
    reason=$(why_no_server release)
    [ -z "$reason" ] || say "fennick-server is left out: $reason (docs/server.md)"
)

# Results carry the machine's name.
export COMPUTERNAME="${COMPUTERNAME:-$(uname -n)}"

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    program=fennick
else
    program=fennick-cli
fi
say "starting $program"
exec "$top/build/release/$program" "$@"
