#!/usr/bin/env bash
# Builds the Debian package in build/package.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
# shellcheck disable=SC2086
ensure_packages $BUILD_PACKAGES dpkg-dev
cmake -S . -B build/package -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF \
    -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build build/package
(cd build/package && cpack -G DEB >/dev/null)
ls build/package/*.deb
