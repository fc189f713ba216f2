#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds Fennick with its tests and runs them all.
# usage: test.sh [PRESET], one of test (the default), dev, sanitizers, ci-clang, or
# thread-sanitizer, which has the server's tests alone
set -euo pipefail

preset=${1:-test}
cd "$(dirname "${BASH_SOURCE[0]}")"
. scripts/setup.sh

need_build_tools
need_server_tools
need_test_tools
[ "$preset" = ci-clang ] && need_clang
install_missing
build "$preset"
say "running the tests (preset $preset)"
exec ctest --preset "$preset"
