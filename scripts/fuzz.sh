#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the fuzzers and runs each for some seconds, from the corpus in fuzz/corpus. What they find is
# left in build/fuzz/found.
# usage: fuzz.sh [SECONDS], 60 if absent
set -euo pipefail

seconds=${1:-60}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh

need_build_tools
need_server_tools
need_clang
need_fuzzers
install_missing
build fuzz
for kind in connection request run xml; do
    say "fuzzing for $seconds s: $kind"
    mkdir -p "build/fuzz/corpus-$kind" build/fuzz/found
    # Qt 5's JSON reader forgets the containers that are open where a document is refused.
    leaks=$([[ $kind == run ]] && echo 0 || echo 1)
    ASAN_OPTIONS=detect_leaks=$leaks "build/fuzz/fuzz/fuzz-$kind" -max_total_time="$seconds" \
        -max_len=65536 -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="build/fuzz/found/$kind-" \
        "build/fuzz/corpus-$kind" "fuzz/corpus/$kind" 2>&1 | grep -v '^$'
done
