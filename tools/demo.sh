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
stack=
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
    end TERM "$stack"
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# ready FILE PROCESS NAME: waits for the file that says so.
ready() {
    for _ in $(seq 200); do
        [ ! -e "$1" ] || return 0
        kill -0 "$2" 2>/dev/null || fail "the virtual $3 did not start; its reason is above"
        sleep 0.05
    done
    fail "the virtual $3 was not ready within 10 seconds"
}

start_phone() {
    "$build/bin/virtual_phone" --devices "$work/devices" --ready-file "$work/ready" \
        --acceleration android --control "$work/control" \
        --log "$output/phone.jsonl" --picture "$output/phone.svg" >/dev/null &
    phone=$!
}

# The computer's radio and what is around it.
start_stack() {
    "$build/bin/virtual_stack" --ready-file "$work/bus" --control "$work/stack" --log "$output/stack.jsonl" \
        --device "00:11:22:33:44:55=Virtual phone=phone" --device "00:11:22:33:44:66=Kitchen speaker=headset" \
        --device "00:11:22:33:44:77=Desk keyboard=keyboard" --device "00:11:22:33:44:88=Old tablet=tablet" >/dev/null &
    stack=$!
}

has_peers() {
    [ "$session" != - ] && grep -qE '^[[:space:]]*(discover|pair|approve|unpair|radio)\>' "$session"
}

# In the background, so that a signal to this script is not left waiting; with its own input, and
# with Ctrl-C as it was.
start_host() {
    local run=(mono "$build/host/mono/DemoHost.exe")
    [ ! -d "$build/host/dotnet" ] || run=(dotnet "$build/host/dotnet/DemoHost.dll")
    (
        trap - INT
        export LD_LIBRARY_PATH=$build/bin ORBELANTINE_DEVICE_DIR=$work/devices
        options=(--phone-log "$output/phone.jsonl" --phone-control "$work/control" --log-folder "$output")
        if [ -n "$stack" ]; then
            export DBUS_SYSTEM_BUS_ADDRESS
            DBUS_SYSTEM_BUS_ADDRESS=$(<"$work/bus")
            options+=(--stack-control "$work/stack")
        fi
        exec "${run[@]}" "$session" "${options[@]}"
    ) <&0 &
    host=$!
}

mkdir -p "$work/devices" "$output"
rm -f "$output/phone.jsonl" "$output/phone.svg"
start_phone
if command -v dbus-daemon >/dev/null; then
    start_stack
    ready "$work/bus" "$stack" stack
elif has_peers; then
    printf 'demo: a session with peers needs dbus-daemon: install the package dbus\n' >&2
    exit 77
fi
ready "$work/ready" "$phone" phone
start_host
status=0
wait "$host" || status=$?
host=
end TERM "$phone"
phone=
end TERM "$stack"
stack=
# A session that could not be read (2), a phone that nobody reached (3) and peers that failed (4) have
# nothing to show.
[[ $status = [234] ]] || echo "picture: $output/phone.svg"
# The demo itself also shows how well the mouse hits in every position, on a phone of its own.
if [ $# -eq 1 ] && [ "$status" = 0 ]; then
    echo
    "$build/bin/aim_report" --picture "$output/aim.svg"
    echo "picture: $output/aim.svg"
fi
exit "$status"
