#!/usr/bin/env bash
# Configures and builds Tolv into build/ (or $TOLV_BUILD_DIR).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${TOLV_BUILD_DIR:-$top/build}
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$build" --parallel "$(nproc)"
