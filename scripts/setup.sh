#!/usr/bin/env bash
# Installs what the project needs from Debian's packages (when missing) and
# builds it into ${BUILD_DIR:-build}. Extra CMake arguments are passed on.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(build-essential cmake pkg-config qtbase5-dev qttools5-dev-tools zlib1g-dev
          libgtest-dev libgmock-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi

BUILD_DIR=${BUILD_DIR:-build}
cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} "$@"
cmake --build "$BUILD_DIR" -j"$(nproc)"
