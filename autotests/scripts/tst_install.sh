#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# What is installed, whether it works from where it is, and what those say who read it: systemd, man, the
# desktop and its software centre.
# usage: tst_install.sh BUILD CMAKE COMPILER FOREIGN
#   FOREIGN  a project that is built with what is installed
# Ends with 77 where somebody is missing who should look at it, after the rest.
set -euo pipefail

build=$1 cmake=$2 compiler=$3 foreign=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
most=13 # tenths of a point of exposure; 100 is no protection

failures=0
# check NAME EXPECTED ACTUAL
check() {
    if [ "$2" = "$3" ]; then
        echo "PASS: $1"
    else
        printf 'FAIL: %s\n--- expected:\n%s\n--- actual:\n%s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

installed() { (cd "$work/$1" && find . ! -type d | LC_ALL=C sort); }
skipped=0
# looks PROGRAM: whether it is there to look at something.
looks() {
    command -v "$1" > /dev/null && return
    echo "SKIP: $1 is missing, so it did not look"
    skipped=1
    return 1
}

DESTDIR=$work/server "$cmake" --install "$build" --prefix /usr --component server > "$work/log"
check "files of the server" "./usr/bin/fennick-server
./usr/lib/systemd/system/fennick-publish.service
./usr/lib/systemd/system/fennick-publish.timer
./usr/lib/systemd/system/fennick-server.service
./usr/lib/sysusers.d/fennick-server.conf
./usr/share/doc/fennick-server/examples/haproxy.cfg
./usr/share/doc/fennick-server/examples/nginx.conf
./usr/share/doc/fennick-server/server.md
./usr/share/man/man8/fennick-server.8" "$(installed server)"
server=$work/server/usr/bin/fennick-server
check "the server is one" 0 "$("$server" --version > /dev/null; echo $?)"
said=$("$server" --help | grep -o -e '^  *-[-a-z]*\|, --[a-z-]*\|^[a-z]*  ' | tr -d ' ,' | sort -u)
for word in $said; do
    grep -qF -e "${word//-/\\-}" "$work/server/usr/share/man/man8/fennick-server.8" \
        || check "the manual page knows $word" yes no
done

DESTDIR=$work/benchmark "$cmake" --install "$build" --prefix /usr --component benchmark > "$work/log"
check "files of the benchmark" "./usr/bin/fennick
./usr/bin/fennick-cli
./usr/share/applications/fennick.desktop
./usr/share/bash-completion/completions/fennick-cli
./usr/share/doc/fennick/LICENSE
./usr/share/fish/vendor_completions.d/fennick-cli.fish
./usr/share/icons/hicolor/128x128/apps/fennick.png
./usr/share/icons/hicolor/16x16/apps/fennick.png
./usr/share/icons/hicolor/22x22/apps/fennick.png
./usr/share/icons/hicolor/24x24/apps/fennick.png
./usr/share/icons/hicolor/256x256/apps/fennick.png
./usr/share/icons/hicolor/32x32/apps/fennick.png
./usr/share/icons/hicolor/48x48/apps/fennick.png
./usr/share/icons/hicolor/512x512/apps/fennick.png
./usr/share/icons/hicolor/64x64/apps/fennick.png
./usr/share/icons/hicolor/scalable/apps/fennick.svg
./usr/share/man/man1/fennick-cli.1
./usr/share/man/man1/fennick.1
./usr/share/metainfo/org.fennick.fennick.metainfo.xml
./usr/share/zsh/vendor-completions/_fennick-cli" "$(installed benchmark)"
share=$work/benchmark/usr/share
cli=$work/benchmark/usr/bin/fennick-cli
# All that it embeds is there, wherever it is.
check "the console runner verifies" "0" "$(cd / && "$cli" verify > "$work/log" 2>&1; echo $?)"
check "its manual page is its own" "$("$cli" manual)" "$(cat "$share/man/man1/fennick-cli.1")"
check "its completion is its own" "$("$cli" completion bash)" "$(cat "$share/bash-completion/completions/fennick-cli")"
for size in 16 22 24 32 48 64 128 256 512; do
    # The width and height stand at bytes 16 to 23 of a PNG.
    check "icon of $size" "$(printf '%08x%08x' $size $size)" \
        "$(od -An -tx1 -j16 -N8 "$share/icons/hicolor/${size}x$size/apps/fennick.png" | tr -d ' ')"
done
if looks man; then
    for page in "$share"/man/man1/* "$work"/server/usr/share/man/man8/*; do
        check "${page##*/} is right" "" "$(LC_ALL=C.UTF-8 man --warnings -l "$page" 2>&1 > /dev/null)"
    done
fi
if looks desktop-file-validate; then
    check "desktop file" "" "$(desktop-file-validate "$share/applications/fennick.desktop" 2>&1)"
fi
if looks appstreamcli; then
    # As for somebody who has a page of their own: without one, newer programs warn.
    sed 's|^  <content_rating|  <url type="homepage">https://fennick.example</url>\n&|' \
        "$share"/metainfo/org.fennick.fennick.metainfo.xml > "$work/org.fennick.fennick.metainfo.xml"
    appstreamResult=0
    appstreamcli validate --no-net "$work/org.fennick.fennick.metainfo.xml" > "$work/log" 2>&1 || appstreamResult=$?
    [ $appstreamResult -eq 0 ] || cat "$work/log"
    check "metainfo" 0 $appstreamResult
fi

# What others build with: in a prefix of its own, which no system searches.
"$cmake" --install "$build" --prefix "$work/development" --component development > "$work/log"
check "no folder of the build is told" "" "$(grep -rlF "$build" "$work/development/include" \
    "$work"/development/lib*/cmake || true)"
mkdir "$work/foreign"
foreignResult=0
(cd "$work/foreign" && "$cmake" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$work/development" "$foreign" \
    && "$cmake" --build . && XDG_DATA_HOME="$work/data" ctest --output-on-failure) > "$work/log" 2>&1 \
    || foreignResult=$?
[ $foreignResult -eq 0 ] || tail -n 30 "$work/log"
check "a foreign project is built with it and runs" 0 $foreignResult

looks systemd-analyze || {
    [ $failures -eq 0 ] || exit 1
    exit 77
}
# systemd looks for the program where programs are; here it is elsewhere.
units=$work/units
mkdir "$units"
for unit in "$work"/server/usr/lib/systemd/system/*; do
    sed "s|^ExecStart=fennick-server |ExecStart=$work/server/usr/bin/fennick-server |" "$unit" \
        > "$units/${unit##*/}"
done
check "all services start the program" 2 "$(grep -lF "ExecStart=$work/server" "$units"/* | wc -l)"
for unit in "$units"/*; do
    check "${unit##*/} is right" "" "$(systemd-analyze verify "$unit" 2>&1 || echo "it ended with $?")"
done
for unit in "$units"/*.service; do
    looked=0
    systemd-analyze security --offline=true --no-pager --threshold=$most "$unit" > "$work/log" 2>&1 || looked=$?
    check "${unit##*/} is shut in: $(tail -n 1 "$work/log")" 0 $looked
done

[ $failures -eq 0 ] || exit 1
[ $skipped -eq 0 ] || exit 77
