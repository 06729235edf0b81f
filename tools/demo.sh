#!/usr/bin/env bash
# Plays a session on a virtual phone and shows what it received.
#   tools/demo.sh BUILD_DIR [SESSION]     SESSION: a file, or - for standard input
set -euo pipefail

if [ $# -lt 1 ] || [ $# -gt 2 ]; then
    echo "usage: $0 BUILD_DIR [SESSION]" >&2
    exit 2
fi
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(cd "$1" && pwd)
session=${2:-$root/examples/sessions/hello.txt}
output=$root/build/demo
work=$(mktemp -d /tmp/orb-demo.XXXXXX) # short: a socket's path has little room
phone=
host=

fail() { printf 'demo: %s\n' "$*" >&2; exit 1; }

# Signals a process and waits for it.
end() {
    [ -n "$2" ] || return 0
    kill "-$1" "$2" 2>/dev/null || true
    wait "$2" 2>/dev/null || true
}

clean_up() {
    end INT "$host"
    end TERM "$phone"
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

start_phone() {
    "$build/bin/virtual_phone" --devices "$work/devices" --ready-file "$work/ready" \
        --acceleration android --control "$work/control" \
        --log "$output/phone.jsonl" --picture "$output/phone.svg" >/dev/null &
    phone=$!
    for _ in $(seq 200); do
        [ ! -e "$work/ready" ] || return 0
        kill -0 "$phone" 2>/dev/null || fail "the virtual phone did not start; its reason is above"
        sleep 0.05
    done
    fail "the virtual phone was not ready within 10 seconds"
}

# In the background, so that a signal to this script is not left waiting; with its own input, and
# with Ctrl-C as it was.
start_host() {
    local run=(mono "$build/host/mono/DemoHost.exe")
    [ ! -d "$build/host/dotnet" ] || run=(dotnet "$build/host/dotnet/DemoHost.dll")
    (
        trap - INT
        export LD_LIBRARY_PATH=$build/bin ORBELANTINE_DEVICE_DIR=$work/devices
        exec "${run[@]}" "$session" --phone-log "$output/phone.jsonl" \
            --phone-control "$work/control" --log-folder "$output"
    ) <&0 &
    host=$!
}

mkdir -p "$work/devices" "$output"
rm -f "$output/phone.jsonl" "$output/phone.svg"
start_phone
start_host
status=0
wait "$host" || status=$?
host=
end TERM "$phone"
phone=
# A session that could not be read (2) and a phone that nobody reached (3) have nothing to show.
[[ $status = [23] ]] || echo "picture: $output/phone.svg"
# The demo itself also shows how well the mouse hits in every position, on a phone of its own.
if [ $# -eq 1 ] && [ "$status" = 0 ]; then
    echo
    "$build/bin/aim_report" --picture "$output/aim.svg"
    echo "picture: $output/aim.svg"
fi
exit "$status"
