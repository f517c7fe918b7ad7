#!/usr/bin/env bash
# Installs what the project needs from Debian's packages (when missing) and
# builds it into ${BUILD_DIR:-build}. Extra CMake arguments are passed on;
# with -DTORVIXML_QT_MAJOR=6 the Qt 6 packages are installed and used.
set -euo pipefail
cd "$(dirname "$0")/.."

qt=5
for arg in "$@"; do
  case "$arg" in
    -DTORVIXML_QT_MAJOR=6 | -DTORVIXML_QT_MAJOR:STRING=6) qt=6 ;;
    -DTORVIXML_QT_MAJOR=5 | -DTORVIXML_QT_MAJOR:STRING=5) qt=5 ;;
  esac
done
bash scripts/install-packages.sh --qt "$qt"

BUILD_DIR=${BUILD_DIR:-build}
cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} "$@"
cmake --build "$BUILD_DIR" -j"$(nproc)"
