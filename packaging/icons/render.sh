#!/usr/bin/env bash
# Renders quillet.svg to the PNG sizes that are installed (needs rsvg-convert,
# package librsvg2-bin). The PNGs are checked in, so a build needs neither.
set -euo pipefail
cd "$(dirname "$0")"
for size in 16 22 24 32 48 64 128 256; do
    rsvg-convert --width "$size" --height "$size" quillet.svg --output "quillet-$size.png"
done
