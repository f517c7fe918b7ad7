#!/usr/bin/env bash
# Sets everything up, builds, and runs the main job: the tool's demo, which
# writes the example settings in both forms and reads them back.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
BUILD_DIR=${BUILD_DIR:-build}
"$BUILD_DIR/bin/torvixml" demo "$BUILD_DIR/torvixml-demo"
