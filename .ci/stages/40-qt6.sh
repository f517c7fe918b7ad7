#!/usr/bin/env bash
# The library, the start-up stand-in, the tool, the catalogue and the whole
# test suite built and run against Qt 6 as well.
set -euo pipefail
cd "$(dirname "$0")/../.."
packages=(qt6-base-dev qt6-l10n-tools)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"
fi
BUILD_DIR=build-qt6
cmake -S . -B "$BUILD_DIR" -DTORVIXML_QT_MAJOR=6 -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVIXML_BUILD_EXAMPLES=OFF
cmake --build "$BUILD_DIR" -j"$(nproc)"
ctest --test-dir "$BUILD_DIR" --output-on-failure -j"$(nproc)"
