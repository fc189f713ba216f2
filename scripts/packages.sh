#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes the packages in a Debian that has nothing but its base system, and installs, starts, upgrades,
# removes and purges them in another such one. Part of a release, like distributions.sh. Takes the last
# commit.
#
# usage: packages.sh [SUITE [DIRECTORY]]
#   SUITE      a release that debootstrap knows: trixie (the default), bookworm, ...
#   DIRECTORY  for base system, packages, compiler cache and logs, which are kept, and the packages made:
#              build/distributions/SUITE if absent; its file system must not be mounted nosuid
# shellcheck disable=SC2016 # the dollar signs in single quotes are for a shell in the root
set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$top/scripts/setup.sh"
. "$top/scripts/roots.sh"

suite=${1:-trixie}
directory=${2:-$top/build/distributions/$suite}
checkout=/srv/fennick

failures=0
# check WHAT COMMAND...: runs it in the root, as root.
check() {
    local what=$1 log
    shift
    log="$directory/logs/packages-$(tr -cs 'a-z0-9\n' - <<< "$what").log"
    if inside root "$@" > "$log" 2>&1; then
        say "$suite: $what: well"
    else
        say "$suite: $what: FAILED, see $log"
        tail -n 20 "$log"
        failures=$((failures + 1))
    fi
}

make_packages() {
    remove_root
    fresh_root root
    check "packages are made, and lintian has nothing to say" bash -ec '
        . scripts/setup.sh
        need_build_tools
        need_server_tools
        missing+=(dpkg-dev file lintian)
        install_missing
        build release
        cd build/release
        cpack -G DEB
        lintian --allow-root --fail-on error,warning *.deb'
    rm -f "$directory"/made/*.deb
    mkdir -p "$directory/made"
    cp "$root$checkout"/build/release/*.deb "$directory/made/"
}

# older_packages: the same with a lower version, which stand in for what is out there.
older_packages() {
    local package tree=$directory/older
    for package in "$directory"/made/fennick_* "$directory"/made/fennick-server_*; do
        rm -rf "$tree"
        dpkg-deb -R "$package" "$tree"
        sed -i 's/^Version: .*/Version: 0.1-1/' "$tree/DEBIAN/control"
        dpkg-deb --root-owner-group -b "$tree" "$root/made/older-${package##*/}" > /dev/null
    done
    rm -rf "$tree"
}

# The service by a real systemd, which runs the checks and ends.
boot() {
    need has_command systemd-nspawn systemd-container
    install_missing
    cat > "$root/check.sh" <<- 'END'
		#!/bin/bash
		set -x
		for _ in {1..50}; do
		    exec 3<> /dev/tcp/127.0.0.1/8426 && break
		    sleep 0.2
		done
		printf 'GET /health HTTP/1.1\r\nHost: localhost\r\n\r\n' >&3
		answer=$(head -n 1 <&3)
		[[ $answer == *" 200 "* ]] && systemctl is-active fennick-server.service fennick-publish.timer \
		    && systemctl start fennick-publish.service && [ "$(stat -c %U:%a /var/lib/fennick-server)" = fennick-server:700 ] \
		    && systemctl stop fennick-server.service && ! systemctl is-failed fennick-server.service \
		    && touch /well
		systemctl status fennick-server.service fennick-publish.service
		systemctl poweroff --force
	END
    cat > "$root/etc/systemd/system/check.service" <<- 'END'
		[Service]
		Type=oneshot
		ExecStart=/bin/bash /check.sh
		StandardOutput=file:/check.log
		StandardError=file:/check.log
		[Install]
		WantedBy=multi-user.target
	END
    chroot "$root" systemctl enable -q check.service
    rm -f "$root/well"
    unmount_root # it has mounts of its own
    # A namespace of the network of its own: the port may be taken here.
    timeout --kill-after=10 180 systemd-nspawn -q -D "$root" --register=no --keep-unit --private-network \
        --boot > "$directory/logs/packages-boot.log" 2>&1 < /dev/null || true
    mount_root
    cat "$root/check.log" >> "$directory/logs/packages-boot.log" 2> /dev/null || true
    if [ -e "$root/well" ]; then
        say "$suite: a real systemd starts the service and its timer: well"
    elif [ ! -e "$root/check.log" ]; then
        say "$suite: systemd does not start in a container here: skipped, see $directory/logs/packages-boot.log"
    else
        say "$suite: a real systemd starts the service: FAILED, see $directory/logs/packages-boot.log"
        failures=$((failures + 1))
    fi
}

use_packages() {
    remove_root
    fresh_root root
    rm "$root/usr/sbin/policy-rc.d" # nothing runs here that could be started
    mkdir "$root/made"
    cp "$directory"/made/*.deb "$root/made/"
    older_packages
    check "older packages are installed" bash -ec '
        apt-get update -qq
        DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends /made/older-*.deb
        id fennick-server'
    check "and upgraded" bash -ec '
        DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends /made/fennick[_-]*.deb
        dpkg-query -W -f "\${Version} \${Status}\n" fennick fennick-server | grep -vc "^0.1" | grep -qx 2'
    check "the console runner verifies" fennick-cli verify
    check "the window opens" bash -c '
        QT_QPA_PLATFORM=offscreen timeout 5 fennick
        [ $? -eq 124 ]'
    check "the manual pages are found" bash -ec '
        for page in man1/fennick.1 man1/fennick-cli.1 man8/fennick-server.8; do
            test -s "/usr/share/man/$page.gz"
        done'
    # As the unit does it.
    check "the server works as its user" bash -ec '
        install -d -o fennick-server -g fennick-server -m 700 /var/lib/fennick-server
        line=$(sed -n "s/^ExecStart=//p" /usr/lib/systemd/system/fennick-server.service)
        setpriv --reuid fennick-server --regid fennick-server --clear-groups $line &
        server=$!
        for try in $(seq 50); do
            if exec 3<> /dev/tcp/127.0.0.1/8426; then break; fi
            sleep 0.2
        done
        printf "GET /health HTTP/1.1\r\nHost: localhost\r\n\r\n" >&3
        head -n 1 <&3 | grep " 200 "
        kill $server
        wait $server
        test -s /var/lib/fennick-server/results.sqlite'
    boot
    check "packages are removed, results stay" bash -ec '
        DEBIAN_FRONTEND=noninteractive apt-get remove -y fennick fennick-server
        ! command -v fennick fennick-cli fennick-server
        test -s /var/lib/fennick-server/results.sqlite'
    check "and purged" bash -ec '
        dpkg --purge fennick fennick-server
        ! dpkg-query -W fennick fennick-server
        test -s /var/lib/fennick-server/results.sqlite
        find / -xdev -name "*fennick*" -not -path "/var/lib/fennick-server*" -not -path "$HOME/*" -not -path "/srv/*" \
            -not -path "/made/*" -not -path "/proc/*" -not -path "/var/cache/*" | tee /dev/stderr | grep -c . | grep -qx 0'
    check "the libraries are used by another program" bash -ec '
        DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends cmake g++ make /made/libfennick-dev*.deb
        cmake -S autotests/foreign -B /tmp/foreign
        cmake --build /tmp/foreign
        cd /tmp/foreign && ctest --output-on-failure'
}

everything() {
    make_base
    make_packages
    use_packages
    remove_root
    [ $failures -eq 0 ]
}

in_namespaces
