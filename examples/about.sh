#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Runs the about example on a device of its own, and checks what it prints against what the kernel says.
#
#     examples/about.sh KELP-DEVICE ABOUT
set -euo pipefail
export LC_ALL=C
device=$1
about=$(realpath "$2") # it starts in another directory
here=$(cd "$(dirname "$0")" && pwd)

work=$(mktemp -d)
export KELP_DEVICE=$work/device
unset DISK_ALIMIT
finish() {
    "$device" stop >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap finish EXIT

fail() {
    echo "$1" >&2
    exit 1
}

# What the application has said of something.
said() {
    sed -n "s|^$1: ||p" "$work/said"
}

is() {
    [ "$(said "$1")" = "$2" ] || fail "The application says of \"$1\": \"$(said "$1")\". It should be \"$2\"."
}

# is_between WHAT A B SLACK: no further than SLACK outside of A and B, whichever is the larger.
is_between() {
    local value low=$2 high=$3
    value=$(said "$1")
    [ "$low" -le "$high" ] || low=$3 high=$2
    [ "$value" -ge $((low - $4)) ] && [ "$value" -le $((high + $4)) ] ||
        fail "The application says of \"$1\": $value. It should be about $low to $high."
}

# Until the application has said a line of this kind.
expect() {
    local line
    while IFS= read -r -t 20 -u "$output" line; do
        printf '%s\n' "$line" | tee -a "$work/said"
        [[ $line == "$1"* ]] && return 0
    done
    fail "The application never said \"$1\"."
}

meminfo() {
    awk -v name="$1:" '$1 == name { printf "%.0f\n", $2 * 1024 }' /proc/meminfo
}

# The smallest memory limit among this process's control group and those above it, where it is below the machine's.
memory_limit() {
    local smallest group folder limit
    smallest=$(meminfo MemTotal)
    while IFS=: read -r _ controllers group; do
        case ",$controllers," in
        *,memory,*) folder=/sys/fs/cgroup/memory$group ;;
        ,,) folder=/sys/fs/cgroup$group ;;
        *) continue ;;
        esac
        while [[ $folder/ == /sys/fs/cgroup/* ]]; do
            for limit in $(cat "$folder/memory.max" "$folder/memory.limit_in_bytes" 2>/dev/null); do
                [ "$limit" != max ] && [ "$limit" -lt "$smallest" ] && smallest=$limit
            done
            folder=${folder%/*}
        done
    done </proc/self/cgroup
    echo "$smallest"
}

# The nominal size in bytes: whole gigabytes, rounded to a power of two.
nominal() {
    awk -v bytes="$1" 'BEGIN {
        size = int((bytes + 500000000) / 1000000000)
        for (power = 1; power * 1.5 <= size; power *= 2) { }
        printf "%.0f\n", size ? power * 1000000000 : 0
    }'
}

start_about() {
    coproc ABOUT { cd "$here/about" && exec "$about"; }
    pid=$ABOUT_PID
    exec {output}<&"${ABOUT[0]}"
    : >"$work/said"
    expect 'process'
}

"$device" start --trace "$work/trace.log" >/dev/null
available=$(meminfo MemAvailable)
read -r block fragment blocks free < <(stat -f -c '%s %S %b %f' /)
start_about

is 'package' 'org.kelp-project.about'
is 'install id' 'org.kelp.project.about.e5f6.a7b8'
is 'description' 'Shows what an application can know of itself, and of the device that it runs on.'
is 'languages' 'English, German'
is 'needs system' '1.0.0.0'
is 'title' 'About this device'
is 'version' '1.2.3.5'

total=$(memory_limit)
is 'device memory' "$total"
[ "$total" = "$(meminfo MemTotal)" ] && is_between 'available memory' "$available" "$(meminfo MemAvailable)" $((total / 10))
is 'process' "$pid"
resident=$(awk '$1 == "VmRSS:" { printf "%.0f\n", $2 * 1024 }' "/proc/$pid/status")
is_between 'memory of this process' "$resident" "$resident" $((resident / 4))

is 'storage' "$(nominal $((fragment * blocks)))"
is 'capacity of /' $((fragment * blocks))
is_between 'free on /' $((block * free)) $((block * $(stat -f -c %f /))) 1000000000
is 'capacity of /no such place' 'No such file or directory'
is 'first pixel' 0
is 'first pixel inverted' 255

"$device" state --json | grep -q '"title":"About this device","version":"1.2.3.5"' ||
    fail "The device does not know the application's title and version."
"$device" event low-memory 2
expect 'low memory: HighPriority'
"$device" event low-memory 0
expect 'low memory: Clear'
"$device" event exit
wait "$pid"

# A reserve on the root file system, in blocks.
DISK_ALIMIT=1000 start_about
is 'capacity of /' $((fragment * blocks - 1000 * block))
is 'storage' "$(nominal $((fragment * blocks)))"
"$device" event exit
wait "$pid"
"$device" stop
