#!/usr/bin/env bash
# Draws every tab and the log window, light and dark, into docs/screenshots.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
# shellcheck disable=SC2086
ensure_packages $BUILD_PACKAGES $TEST_PACKAGES
[ -f build/dev/build.ninja ] || cmake --preset dev >/dev/null
cmake --build --preset dev --target brindle_screenshots
mkdir -p docs/screenshots
QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=1 build/dev/tools/screenshots/brindle_screenshots docs/screenshots
