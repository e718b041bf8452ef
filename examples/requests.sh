#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Walks the requests example through all that it asks of the navigator, on a device of its own, with assets for two themes.
#
#     examples/requests.sh KELP-DEVICE REQUESTS
set -euo pipefail
device=$1
requests=$2
here=$(cd "$(dirname "$0")" && pwd)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
assets=$work/app/native/assets
mkdir -p "$work/data" "$assets/bright" "$assets/dark"
touch "$assets/image.txt" "$assets/bright/image.txt" "$assets/dark/image.txt"

unset MARIGOLD_THEME
HOME=$work/data "$device" run --screen 768x1280 --theme bright --scenario "$here/requests.scenario" -- "$requests" |
    tee "$work/said"

for line in 'time for the first window: done' 'start of swipes: done' 'lock: done' 'badge: done' \
    'asset: bright/image.txt' 'unlock: done' 'minimise: done' 'may turn: done' 'size: 1280x768' 'turned: done' \
    'orientation: 90' 'no badge: done' 'asset: dark/image.txt' 'end: done' 'more time: done'; do
    grep -qxF "$line" "$work/said" || {
        echo "The application never said \"$line\"." >&2
        exit 1
    }
done
