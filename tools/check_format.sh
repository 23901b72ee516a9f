#!/usr/bin/env bash
# Fails on a C++ file that clang-format would change.
set -euo pipefail
cd "$(dirname "$0")/.."
find src stage demo tests bench fuzz hardening tools -name '*.cpp' -o -name '*.h' |
    xargs clang-format --dry-run --Werror
