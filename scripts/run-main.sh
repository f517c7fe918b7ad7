#!/usr/bin/env bash
# Sets everything up, builds, and runs the main job.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
BUILD_DIR=${BUILD_DIR:-build}
if [ -x "$BUILD_DIR/tools/torvixml" ]; then
  "$BUILD_DIR/tools/torvixml" demo "$BUILD_DIR/torvixml-demo"
else
  "$BUILD_DIR/examples/torvixml_example"
fi
