#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs both commands in a Debian that has nothing but its base system: as an ordinary user with sudo,
# then as root, each in a fresh copy. Part of a release, not of every change: it downloads some 500 MB
# and builds Fennick five times. Takes the last commit, not what is changed since.
#
# usage: distributions.sh [SUITE [DIRECTORY]]
#   SUITE      a release that debootstrap knows: trixie (the default), bookworm, ...
#   DIRECTORY  for base system, packages, compiler cache and logs, which are kept:
#              build/distributions/SUITE if absent; its file system must not be mounted nosuid
# MIRROR in the environment says where Debian's packages are; if it is absent, where this system has
# its own from.
# shellcheck disable=SC2016 # the dollar signs in single quotes are for other programs
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$top/scripts/setup.sh"

longest=3600 # seconds for one command
suite=${1:-trixie}
directory=${2:-$top/build/distributions/$suite}
checkout=/srv/fennick

# The mirror of this system's own packages.
own_mirror() {
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Label: Debian' | sed -n 1p
}

# What apt is told here about its way to a mirror.
apt_settings() {
    apt-config dump | grep -E '^Acquire::(Check-|Retries|https?::(Proxy|Timeout|No-Cache))' || true
    [ -z "${http_proxy:-}" ] || printf 'Acquire::http::Proxy "%s";\n' "$http_proxy"
}

make_base() {
    [ -d "$directory/base" ] && return
    local mirror=${MIRROR:-$(own_mirror)}
    [ -n "$mirror" ] || fail "where are Debian's packages? Please say it with MIRROR=URL"
    say "making the base system of $suite"
    rm -rf "$directory/base.new"
    debootstrap --variant=minbase --include=sudo,ca-certificates,ccache "$suite" "$directory/base.new" \
        "$mirror" > "$directory/logs/debootstrap.log" 2>&1 \
        || fail "debootstrap failed, see $directory/logs/debootstrap.log"
    mv "$directory/base.new" "$directory/base"
}

# fresh_root PERSON: a copy of the base system with the person, and a checkout of theirs. All have it
# at the same place, so that the compiler's work for one is found in the cache for the next.
fresh_root() {
    rm -rf --one-file-system "$root"
    cp -a "$directory/base" "$root"
    cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
    apt_settings > "$root/etc/apt/apt.conf.d/90host"
    printf '#!/bin/sh\nexit 101\n' > "$root/usr/sbin/policy-rc.d" # nothing that is installed starts
    chmod +x "$root/usr/sbin/policy-rc.d"
    mount -t proc proc "$root/proc"
    mount -t sysfs -o ro sysfs "$root/sys"
    mount --bind /dev "$root/dev"
    mount -t devpts devpts "$root/dev/pts"
    mount -t tmpfs tmpfs "$root/dev/shm"
    mount --bind "$directory/packages" "$root/var/cache/apt/archives"
    mkdir -p "$root/var/cache/ccache" "$root$checkout"
    mount --bind "$directory/ccache" "$root/var/cache/ccache"
    home=/root
    if [ "$1" != root ]; then
        home=/home/$1
        chroot "$root" useradd --create-home --shell /bin/bash "$1"
        echo "$1 ALL=(ALL) NOPASSWD: ALL" > "$root/etc/sudoers.d/$1"
    fi
    git -C "$top" archive HEAD | tar -x -C "$root$checkout"
    chroot "$root" chown -R "$1:" "$checkout"
}

remove_root() {
    local place
    for place in var/cache/apt/archives var/cache/ccache dev/shm dev/pts dev sys proc; do
        if mountpoint -q "$root/$place"; then umount --lazy "$root/$place"; fi
    done
    rm -rf --one-file-system "$root"
}

# inside PERSON COMMAND...: runs it in the person's checkout, for a limited time.
inside() {
    local person=$1
    shift
    timeout --kill-after=10 "$longest" chroot --userspec="$person:$person" "$root" \
        env -i HOME="$home" USER="$person" LANG=C.UTF-8 \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_DIR=/var/cache/ccache CCACHE_UMASK=000 \
        CCACHE_BASEDIR=$checkout CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros \
        CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}" \
        bash -c 'cd "$0" && exec "$@"' "$checkout" "$@" < /dev/null
}

# try PERSON COMMAND...: runs it, and notes how it went. The log has the command's name.
report=()
failures=0
try() {
    local person=$1 result=passed log start=$SECONDS
    shift
    log="$directory/logs/$person-$(tr -cs 'a-z0-9\n' - <<< "$*").log"
    say "$suite, as $person: $*"
    if ! inside "$person" "$@" > "$log" 2>&1; then
        result=FAILED
        failures=$((failures + 1))
        tail -n 40 "$log"
        say "it failed, see $log"
    fi
    report+=("$(printf '%-10s %-8s %-20s %5d s  %s  %s' "$suite" "$person" "$*" \
        $((SECONDS - start)) $result "$(grep -o '[0-9]* tests failed out of [0-9]*' "$log" || true)")")
}

# All that happens in the namespaces.
everything() {
    make_base
    local person
    for person in somebody root; do
        remove_root
        fresh_root $person
        try $person ./run.sh --time 1
        try $person ./test.sh
        [ $person = root ] || try $person ./test.sh ci-clang
        [ $person = root ] || chroot "$root" dpkg-query -W -f '${Package} ${Version}\n' \
            g++ clang cmake qtbase5-dev libboost-dev || true
    done
    printf '%s\n' "${report[@]}"
    [ $failures -eq 0 ]
}

[ "$(id -u)" -eq 0 ] || fail "only root can make another system: sudo $0 $*"
mkdir -p "$directory"/{logs,packages/partial,ccache}
chmod 777 "$directory/ccache"
directory=$(cd "$directory" && pwd)
root=$directory/root

if [ -z "${FENNICK_NAMESPACES:-}" ]; then
    need has_command debootstrap debootstrap
    need has_command unshare util-linux
    install_missing
    # In namespaces of their own, mounts and processes end with this script whatever ends it.
    FENNICK_NAMESPACES=1 unshare --mount --pid --fork --mount-proc --kill-child \
        "$0" "$suite" "$directory" &
    namespaces=$!
    trap 'kill -KILL $namespaces 2> /dev/null || true; rm -rf --one-file-system "$root"' EXIT
    trap 'exit 130' INT TERM HUP
    wait $namespaces
else
    everything
fi
