#!/usr/bin/env bash
# Source-level coverage of the fuzz corpora: builds the fuzz targets with
# clang's coverage instrumentation (no sanitizers), replays every input of
# the given corpus folders and of the seed corpora once and prints
# llvm-cov's report for the reading code (base/, representation/).
#
#   fuzz/coverage.sh [CORPUS_ROOT]
#
# CORPUS_ROOT holds binary/ and xml/ (default: the seeds in fuzz/corpus);
# pass the WORK_DIR/corpus of a fuzz/run.sh run to measure what it reached
# together with the seeds it started from.
# Environment: COVERAGE_BUILD_DIR (default build-fuzz-coverage).
set -euo pipefail
cd "$(dirname "$0")/.."

CORPUS_ROOT=${1:-fuzz/corpus}
BUILD_DIR=${COVERAGE_BUILD_DIR:-build-fuzz-coverage}
flags="-fprofile-instr-generate -fcoverage-mapping"
if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
  CC=clang CXX=clang++ cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DTORVIXML_BUILD_FUZZERS=ON -DTORVIXML_SANITIZE=OFF \
    -DBUILD_TESTING=OFF -DTORVIXML_BUILD_TOOLS=OFF -DTORVIXML_BUILD_EXAMPLES=OFF \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" -DCMAKE_SHARED_LINKER_FLAGS="$flags" \
    >/dev/null 2>&1
fi
cmake --build "$BUILD_DIR" -j"$(nproc)" --target fuzz_binary fuzz_xml >/dev/null

profiles="$BUILD_DIR/profiles"
rm -rf "$profiles"
mkdir -p "$profiles"
for name in binary xml; do
  folders=("$CORPUS_ROOT/$name")
  [ "$(realpath "$CORPUS_ROOT/$name")" != "$(realpath "fuzz/corpus/$name")" ] && folders+=("fuzz/corpus/$name")
  LLVM_PROFILE_FILE="$profiles/$name-%p.profraw" \
    "$BUILD_DIR/bin/fuzz_$name" -runs=0 -rss_limit_mb=2048 -timeout=30 "${folders[@]}" \
    >"$profiles/$name.log" 2>&1
  echo "fuzz_$name: $(find "${folders[@]}" -type f | wc -l) inputs replayed"
done
llvm-profdata merge -sparse "$profiles"/*.profraw -o "$profiles/all.profdata"
libraries=(-object "$BUILD_DIR/lib/libTorviXML.so" -object "$BUILD_DIR/lib/libTorviRGBase.so")
llvm-cov report "$BUILD_DIR/bin/fuzz_binary" "${libraries[@]}" -instr-profile="$profiles/all.profdata" \
  base/ representation/
