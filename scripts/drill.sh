#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Does to the result database what the open internet and bad days do: hostile requests and connections,
# floods, forged addresses behind real proxies, databases that are locked, silent, damaged or gone, kills
# under load, and uploads that are to poison the lists. All of it belongs to the tests too; this runs
# nothing else, and says how long each drill took. Takes some three minutes once it is built.
# usage: drill.sh [PRESET], test if absent
set -euo pipefail

preset=${1:-test}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

drills=(
    server/http/hostileRequests # each shape of a request that is refused, cut anywhere
    server/http/proxies         # hidden and forged requests through haproxy and nginx
    server/serverFloods         # crowds of slow clients, and databases that hang
    server/serverTroubles       # signals, kills under load, databases that go and come back
    server/operatorCommands     # damaged and mistyped databases
    server/importExport         # damaged exports
    server/poisoning            # made-up machines, and what was published
)

need_build_tools
need_server_tools
need_test_tools
install_missing
cmake --preset "$preset" > /dev/null
say "building (preset $preset)"
targets=()
for drill in "${drills[@]}"; do targets+=("tst_${drill##*/}"); done
cmake --build --preset "$preset" --target "${targets[@]}" > /dev/null
pattern=$(IFS='|'; printf '%s' "${drills[*]}")
exec ctest --preset "$preset" -j1 -R "^($pattern)\$"
