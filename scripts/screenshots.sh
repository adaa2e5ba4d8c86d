#!/usr/bin/env bash
# Draws the pictures of the query panel in docs/images anew, on a screen that is not there.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_packages "${BUILD_PACKAGES[@]}" fonts-dejavu-core

build=build/release
cmake --preset release >/dev/null
cmake --build "$build" --target lumora_screenshots

XDG_RUNTIME_DIR=$(mktemp -d)
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
export XDG_RUNTIME_DIR QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES='*.debug=false'
mkdir -p docs/images
"$build/bin/lumora_screenshots" samples/orders.model docs/images
# As on a screen of twice the resolution.
QT_SCALE_FACTOR=2 "$build/bin/lumora_screenshots" samples/orders.model docs/images scaled
