# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by run.sh and test.sh: finds what is missing to build Fennick, and installs it.

# say TEXT: one line about what happens next.
say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

fail() { say "$*"; exit 1; }

has_command() { command -v "$1" > /dev/null 2>&1; }

# has_file PATTERN: whether a file below a usual library directory matches.
has_file() {
    local prefix file
    for prefix in /usr/lib /usr/lib64 /usr/lib/*-linux-gnu* /usr/local/lib /usr/local/lib64; do
        for file in "$prefix"/$1; do
            [ -e "$file" ] && return 0
        done
    done
    return 1
}

# Where a system's own services are, which is not on everybody's path.
has_program() { has_command "$1" || [ -x "/usr/sbin/$1" ]; }

has_header() { [ -e "/usr/include/$1" ] || [ -e "/usr/local/include/$1" ]; }

has_cmake_package() { has_file "cmake/$1/$1Config.cmake" || has_file "cmake/$1/${1,,}-config.cmake"; }

# need CHECK ARGUMENT PACKAGE: notes the Debian package if the check fails.
missing=()
need() { "$1" "$2" || missing+=("$3"); }

need_build_tools() {
    need has_command "${CXX:-g++}" g++
    need has_command cmake cmake
    need has_command ninja ninja-build
    need has_cmake_package Qt5Widgets qtbase5-dev
    need has_cmake_package Qt5Charts libqt5charts5-dev
    need has_cmake_package Qt5Svg libqt5svg5-dev
    need has_header zlib.h zlib1g-dev
    need has_header tl/expected.hpp libexpected-dev
    need has_header boost/version.hpp libboost-dev
}

# The result database's; the benchmark does without.
need_server_tools() {
    need has_header unicode/uspoof.h libicu-dev
    need has_cmake_package prometheus-cpp prometheus-cpp-dev
    need has_file qt5/plugins/sqldrivers/libqsqlite.so libqt5sql5-sqlite
}

# The window needs a plug-in for Wayland where there is no X server.
need_display_tools() {
    if [ -n "${WAYLAND_DISPLAY:-}" ] && [ -z "${DISPLAY:-}" ]; then
        need has_file 'qt5/plugins/platforms/libqwayland-generic.so' qtwayland5
    fi
}

need_test_tools() {
    need has_command objdump binutils
    need has_command python3 python3
    need has_file python3/dist-packages/jsonschema/__init__.py python3-jsonschema
    need has_cmake_package benchmark libbenchmark-dev
    need has_file qt5/plugins/sqldrivers/libqsqlpsql.so libqt5sql5-psql
    need has_file 'postgresql/*/bin/initdb' postgresql
    need has_program haproxy haproxy
    need has_program nginx nginx-light
    need has_command openssl openssl
    need has_command man man-db
    need has_command desktop-file-validate desktop-file-utils
    need has_command appstreamcli appstream
    need_style_tools
}

need_openmp_of_clang() { need has_file 'llvm-*/lib/libomp.so' libomp-dev; }

need_clang() {
    need has_command clang++ clang
    need_openmp_of_clang
}

need_style_tools() {
    need has_command clang-format clang-format
    need has_command clang-tidy clang-tidy
    need_openmp_of_clang
    need has_command git git
    need has_command shellcheck shellcheck
}

need_fuzzers() {
    need has_file 'llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a' libclang-rt-dev
}

# Installs what need has noted, or says what to install and stops.
install_missing() {
    [ ${#missing[@]} -eq 0 ] && return
    local as_root=()
    if ! has_command apt-get; then
        fail "please install the equivalents of these Debian packages, then try again: ${missing[*]}"
    fi
    if [ "$(id -u)" -ne 0 ]; then
        has_command sudo || fail "please install as root, then try again: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    { "${as_root[@]}" apt-get update -qq \
        && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}"; } > /dev/null \
        || fail "apt-get could not install: ${missing[*]}"
}

# build PRESET: configures, because what is installed may have changed, and builds.
build() {
    say "building (preset $1)"
    cmake --preset "$1" > /dev/null || fail "the configuration failed"
    cmake --build --preset "$1" >&2 || fail "the build failed"
}

# why_no_server PRESET: prints the reason why this build has no server, if it has none.
why_no_server() { sed -n 's/^FENNICK_SERVER_LEFT_OUT:INTERNAL=//p' "build/$1/CMakeCache.txt"; }
