#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Loads the result database over loopback, on SQLite and on a PostgreSQL server of its own, and prints
# what it did. Needs the build of ./test.sh; takes some two minutes.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
programs=$PWD/build/test
load=$programs/benchmarks/load-server
for postgres in /usr/lib/postgresql/*/bin; do :; done # the newest
work=$(mktemp -d)
chmod 777 "$work"
server=
cleanup() {
    [ -z "$server" ] || kill "$server" 2> /dev/null || true
    as_user "$postgres/pg_ctl" -D "$work/pg" -m fast stop > /dev/null 2>&1 || true
    rm -rf "$work"
}
trap cleanup EXIT

# PostgreSQL refuses to be run by root.
as_user() {
    if [ "$(id -u)" -eq 0 ]; then (cd "$work" && runuser -u nobody -- "$@"); else "$@"; fi
}

# serve DATABASE: starts a server; sets port.
serve() {
    "$programs/fennick-server" serve --listen 127.0.0.1:0 --upload-limit 0/1 --read-limit 0/1 \
        --connections-per-address 20000 --database "$1" \
        > "$work/out" 2> "$work/err" &
    server=$!
    until grep -q Listening "$work/out"; do sleep 0.1; done
    port=$(sed 's/.*://' "$work/out")
}
# request ARGUMENTS...: loads the server; what it says is printed if a request failed.
request() { "$load" "$port" "$@" || cat "$work/err"; }
end() { kill "$server"; wait "$server" || true; server=; }
memory() { echo "memory: $(grep -E 'VmRSS' "/proc/$server/status" | tr -s '\t ' ' ')"; }

measure() {
    echo "== $1"
    serve "$2"
    request version 8 5s
    request list 8 5s
    request upload 32 5s
    memory
    request version 8 100000
    memory
    request version 4 15s 200
    memory
    end
}

measure SQLite "sqlite:$work/load.db"
as_user "$postgres/initdb" -D "$work/pg" -U fennick -A trust > /dev/null
as_user "$postgres/pg_ctl" -w -D "$work/pg" -l "$work/pg.log" \
    -o "-c listen_addresses='' -k $work" start > /dev/null
as_user "$postgres/createdb" -h "$work" -U fennick load
measure PostgreSQL "postgresql://fennick@/load?host=$work"

echo "== 100,000 uploads, on SQLite"
serve "sqlite:$work/many.db"
request upload 32 100000
end
stat -c %s "$work/many.db" | awk '{ print "size: " $1 / 1e6 " MB" }'
time "$programs/fennick-server" publish --database "sqlite:$work/many.db"
