#!/usr/bin/env bash
# Sets everything up, builds, and runs the whole test suite through CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
ctest --test-dir "${BUILD_DIR:-build}" --output-on-failure -j"$(nproc)"
