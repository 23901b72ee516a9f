#!/usr/bin/env bash
# Draws every tab, the log window and what pops up, light and dark, into build/screenshots: as usual,
# on a fine screen (fine/) and with text half as large again (large/). Those that the documentation
# shows go to docs/screenshots.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
# shellcheck disable=SC2086
ensure_packages $BUILD_PACKAGES $TEST_PACKAGES
[ -f build/dev/build.ninja ] || cmake --preset dev >/dev/null
cmake --build --preset dev --target brindle_screenshots
mkdir -p build/screenshots/{usual,fine,large} docs/screenshots
# The toolkit's own pretended screen is too small for the larger ones.
echo '{"screens": [{"name": "s", "x": 0, "y": 0, "width": 2600, "height": 1800, "dpr": 1,
    "logicalDpi": 96, "logicalBaseDpi": 96}]}' >build/screenshots/screen.json
export QT_QPA_PLATFORM="offscreen:configfile=$PWD/build/screenshots/screen.json"
draw=build/dev/tools/screenshots/brindle_screenshots
QT_SCALE_FACTOR=1 $draw build/screenshots/usual
QT_SCALE_FACTOR=2 $draw build/screenshots/fine
QT_SCALE_FACTOR=1 QT_FONT_DPI=176 $draw build/screenshots/large
cp build/screenshots/usual/{general,jira,confluence,id-links,connection,log}-*.png docs/screenshots
cp build/screenshots/usual/placeholders-light.png docs/screenshots
cp build/screenshots/fine/tooltip-dark.png docs/screenshots/tooltip-dark-fine.png
cp build/screenshots/large/connection-light.png docs/screenshots/connection-light-large.png
