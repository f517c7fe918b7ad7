#!/usr/bin/env bash
# CI stage: the library and the test suite built with AddressSanitizer and
# UndefinedBehaviorSanitizer (TORVIXML_SANITIZE, gcc), then every test run.
# Any memory error, leak or undefined behaviour aborts the test that meets it.
# The consumer check is left out: it builds an outside program without
# sanitizers against the installed libraries, which cannot link them.
set -euo pipefail
cd "$(dirname "$0")/../.."

bash scripts/install-packages.sh

BUILD=${SANITIZE_BUILD_DIR:-build-sanitize}
start=$(date +%s)
cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVIXML_SANITIZE=ON \
  -DBUILD_TESTING=ON -DTORVIXML_BUILD_TOOLS=OFF -DTORVIXML_BUILD_EXAMPLES=OFF \
  -DTORVIXML_BUILD_BENCHMARKS=OFF -DTORVIXML_BUILD_FUZZERS=OFF >/dev/null
cmake --build "$BUILD" -j"$(nproc)" >/dev/null
built=$(date +%s)

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
# Qt 5's offscreen platform plug-in (the GUI tests' platform) never frees the
# screen it creates; nothing of ours is in those allocations.
suppressions="$(realpath "$BUILD")/lsan.supp"
echo "leak:libqoffscreen.so" >"$suppressions"
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$suppressions}
ctest --test-dir "$BUILD" --output-on-failure -j"$(nproc)" -E '^consumer_'
echo "sanitizer stage: build $((built - start)) s, tests $(($(date +%s) - built)) s"
