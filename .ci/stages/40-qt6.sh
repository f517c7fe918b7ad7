#!/usr/bin/env bash
# The library, the start-up stand-in, the tool, the catalogue and the whole
# test suite built and run against Qt 6 as well. The Qt 6 build's consumer
# check installs the Qt 5 build (from scripts/run-tests.sh) into the same
# prefix, and runs an application and the tool of each.
set -euo pipefail
cd "$(dirname "$0")/../.."
bash scripts/install-packages.sh --qt 6
BUILD_DIR=build-qt6
QT5_BUILD_DIR=${BUILD_DIR_QT5:-build}
also=()
[ -f "$QT5_BUILD_DIR/CMakeCache.txt" ] && also=("-DTORVIXML_CONSUMER_ALSO_INSTALL=$(realpath "$QT5_BUILD_DIR")")
cmake -S . -B "$BUILD_DIR" -DTORVIXML_QT_MAJOR=6 -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVIXML_BUILD_EXAMPLES=OFF "${also[@]}"
cmake --build "$BUILD_DIR" -j"$(nproc)"
ctest --test-dir "$BUILD_DIR" --output-on-failure -j"$(nproc)"
