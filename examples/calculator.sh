#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Runs the calculator's service and its clients on a device of their own.
#
#     examples/calculator.sh KELP-DEVICE CALCULATOR_SERVICE CALCULATOR_CLIENT
set -euo pipefail
device=$1
service=$2
client=$3

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

# Prints what the service says, up to and including the awaited line.
expect() {
    local line
    while IFS= read -r -t 20 -u "$said" line; do
        printf '    %s\n' "$line"
        case $line in "$1"*) return 0 ;; esac
    done
    fail "The service never said \"$1\"."
}

# Runs a client, which has to end with that code and say just that.
client_says() {
    local code=0 answers
    echo "$ calculator_client ${*:3}"
    answers=$("$client" "${@:3}" 2>&1) || code=$?
    printf '    %s\n' "$answers"
    [ "$code" = "$1" ] && [ "$answers" = "$2" ] || fail "The client ended with code $code."
}

"$device" start --trace "$work/trace.log" >/dev/null
client_says 1 'no calculator: No such file or directory' add
echo "$ calculator_service"
coproc SERVICE { exec "$service" 2>&1; }
pid=$SERVICE_PID
exec {said}<&"${SERVICE[0]}"
expect 'ready'

client_says 0 $'add: 13\nmultiply: 42' add multiply
expect '@calculator.1 came'
expect '@calculator.1 asked to multiply'
expect '@calculator.1 went'
client_says 1 $'divide: only add and multiply are served\nadd: 13' divide add
# A request needs no client of its own: whoever wants no answer just publishes it.
"$device" pps set /services/calculator msg=add
expect '@calculator.3 asked to add'

"$device" pps get /services/calculator && fail 'There is something to get from a service.'

"$device" stop
expect 'the device has gone'
wait "$pid"
