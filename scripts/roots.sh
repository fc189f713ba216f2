# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by scripts that need a Debian that has nothing but its base system, whichever it is. They set
# top, suite, directory (for base system, packages, compiler cache and logs, which are kept) and checkout (a
# path in that system), and define everything, which in_namespaces runs.
# MIRROR in the environment says where Debian's packages are; if it is absent, where this system has
# its own from.
# shellcheck disable=SC2016 # the dollar signs in single quotes are for other programs
# shellcheck disable=SC2154 # see above

longest=3600 # seconds for one command

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
    mkdir -p "$root/var/cache/ccache" "$root$checkout"
    mount_root
    home=/root
    if [ "$1" != root ]; then
        home=/home/$1
        chroot "$root" useradd --create-home --shell /bin/bash "$1"
        echo "$1 ALL=(ALL) NOPASSWD: ALL" > "$root/etc/sudoers.d/$1"
    fi
    git -C "$top" archive HEAD | tar -x -C "$root$checkout"
    chroot "$root" chown -R "$1:" "$checkout"
}

mount_root() {
    mount -t proc proc "$root/proc"
    mount -t sysfs -o ro sysfs "$root/sys"
    mount --bind /dev "$root/dev"
    mount -t devpts devpts "$root/dev/pts"
    mount -t tmpfs tmpfs "$root/dev/shm"
    mount --bind "$directory/packages" "$root/var/cache/apt/archives"
    mount --bind "$directory/ccache" "$root/var/cache/ccache"
}

unmount_root() {
    local place
    for place in var/cache/apt/archives var/cache/ccache dev/shm dev/pts dev sys proc; do
        if mountpoint -q "$root/$place"; then umount --lazy "$root/$place"; fi
    done
}

remove_root() {
    unmount_root
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
        CCACHE_BASEDIR="$checkout" CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros \
        CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}" \
        bash -c 'cd "$0" && exec "$@"' "$checkout" "$@" < /dev/null
}

# in_namespaces: this script again in namespaces of its own, so that mounts and
# processes end with it whatever ends it; there it calls everything.
in_namespaces() {
    [ "$(id -u)" -eq 0 ] || fail "only root can make another system: sudo $0"
    mkdir -p "$directory"/{logs,packages/partial,ccache}
    chmod 777 "$directory/ccache"
    directory=$(cd "$directory" && pwd)
    root=$directory/root
    if [ -n "${FENNICK_NAMESPACES:-}" ]; then
        everything
        return
    fi
    need has_command debootstrap debootstrap
    need has_command unshare util-linux
    install_missing
    FENNICK_NAMESPACES=1 unshare --mount --pid --fork --mount-proc --kill-child \
        "$0" "$suite" "$directory" &
    namespaces=$!
    trap 'kill -KILL $namespaces 2> /dev/null || true; rm -rf --one-file-system "$root"' EXIT
    trap 'exit 130' INT TERM HUP
    wait $namespaces
}
