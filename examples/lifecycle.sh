#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Drives the lifecycle example through all that can happen to it, on a device of its own.
#
#     examples/lifecycle.sh KELP-DEVICE LIFECYCLE
#
# Each step waits for the application's own word that it has happened, and the script fails if that does not come.
set -euo pipefail
device=$1
application=$2

work=$(mktemp -d)
export KELP_DEVICE=$work/device
finish() {
    "$device" stop >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap finish EXIT

# Prints what the application says, up to and including the awaited line.
expect() {
    local line
    while IFS= read -r -t 20 -u "$said" line; do
        printf '    %s\n' "$line"
        case $line in *"$1"*) return 0 ;; esac
    done
    echo "The application never said \"$1\"." >&2
    exit 1
}

person() {
    printf '$ kelp-device %s\n' "$*"
    "$device" "$@"
}

person start --trace "$work/trace.log" >/dev/null
echo "$ lifecycle"
coproc APPLICATION { exec "$application" 2>&1; }
said=${APPLICATION[0]}
pid=$APPLICATION_PID
exec {said}<&"${APPLICATION[0]}"
expect 'awake'
expect 'awake'

person event thumbnail
expect 'process state: Background'
person event fullscreen
expect 'awake'
expect 'awake'
person event invisible
expect 'process state: Background'
person event pool
expect 'pooling'
person event low-memory 1
expect 'received low memory signal'
person state
person event exit
expect 'leaving the event loop'
code=0
wait "$pid" || code=$?
echo "The application ended with code $code."
person stop
exit "$code"
