#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Runs the publisher and the subscriber on a device of their own, and looks at what they publish from outside.
#
#     examples/publish.sh KELP-DEVICE PUBLISHER SUBSCRIBER
set -euo pipefail
device=$1
publisher=$2
subscriber=$3
battery=/services/power/battery

work=$(mktemp -d)
export KELP_DEVICE=$work/device
finish() {
    "$device" stop >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap finish EXIT

fail() {
    echo "$1" >&2
    exit 1
}

person() {
    printf '$ kelp-device %s\n' "$*"
    "$device" "$@"
}

# Prints what the subscriber says, up to and including the awaited line.
expect() {
    local line
    while IFS= read -r -t 20 -u "$said" line; do
        printf '    %s\n' "$line"
        [ "$line" = "$1" ] && return 0
    done
    fail "The subscriber never said \"$1\"."
}

start_subscriber() {
    echo "$ subscriber"
    coproc SUBSCRIBER { exec "$subscriber" 2>&1; }
    pid=$SUBSCRIBER_PID
    exec {said}<&"${SUBSCRIBER[0]}"
}

ends_with() {
    local code=0
    wait "$pid" || code=$?
    [ "$code" = "$1" ] || fail "The subscriber ended with code $code."
}

person start --trace "$work/trace.log" >/dev/null
person pps set $battery level=0 charging=true
start_subscriber
expect 'level 0, charging'
echo "$ publisher"
"$publisher"
expect 'level 100, full'
ends_with 0

[ "$("$device" pps get $battery level)" = 100 ] || fail "The level that was published last is not there."
person pps watch --timeout 20 --count 1 --json $battery

person pps set $battery level=50 charging=true
start_subscriber
expect 'level 50, charging'
person pps rm $battery
expect 'deleted'
ends_with 1
person stop
