#!/usr/bin/env bash
# Builds the libFuzzer targets (when needed) and runs them.
#
#   fuzz/run.sh [SECONDS] [binary|xml|all]
#
# SECONDS is the time per fuzzer (default 60); with "all" (the default) both
# fuzzers run at the same time when the machine has two cores or more.
# Environment: BUILD_DIR (default build-fuzz) is the clang build, WORK_DIR
# (default $BUILD_DIR/fuzz-work) receives the growing corpora, the logs and
# the findings; the seed corpora in fuzz/corpus/ are only read.
# Prints executions, coverage and findings per fuzzer; exits with 1 when a
# fuzzer found something.
set -euo pipefail
cd "$(dirname "$0")/.."

SECONDS_PER_FUZZER=${1:-60}
WHICH=${2:-all}
BUILD_DIR=${BUILD_DIR:-build-fuzz}
WORK_DIR=${WORK_DIR:-$BUILD_DIR/fuzz-work}
case "$WHICH" in
  all) FUZZERS=(binary xml) ;;
  binary | xml) FUZZERS=("$WHICH") ;;
  *) echo "usage: $0 [SECONDS] [binary|xml|all]" >&2; exit 2 ;;
esac

# clang with its runtimes (libFuzzer, sanitizers), besides the packages of
# the normal build.
bash scripts/install-packages.sh clang libclang-rt-dev

if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
  CC=clang CXX=clang++ cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DTORVIXML_BUILD_FUZZERS=ON -DTORVIXML_SANITIZE=ON \
    -DBUILD_TESTING=OFF -DTORVIXML_BUILD_TOOLS=OFF -DTORVIXML_BUILD_EXAMPLES=OFF >/dev/null
fi
cmake --build "$BUILD_DIR" -j"$(nproc)" --target $(printf 'fuzz_%s ' "${FUZZERS[@]}") >/dev/null

# A smaller quarantine than ASan's default (256 MB) keeps the resident size
# well below the 512 MB limit, so that the limit stands for the library's
# own memory use.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=64:detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}

run_one() {
  local name=$1
  mkdir -p "$WORK_DIR/corpus/$name" "$WORK_DIR/findings/$name"
  "$BUILD_DIR/bin/fuzz_$name" -max_total_time="$SECONDS_PER_FUZZER" -rss_limit_mb=512 -timeout=5 \
    -print_final_stats=1 -dict="fuzz/$name.dict" -artifact_prefix="$WORK_DIR/findings/$name/" \
    "$WORK_DIR/corpus/$name" "fuzz/corpus/$name" >"$WORK_DIR/$name.log" 2>&1
}

mkdir -p "$WORK_DIR"
pids=()
parallel=1
[ "$(nproc)" -lt 2 ] && parallel=0
for name in "${FUZZERS[@]}"; do
  echo "fuzz_$name: ${SECONDS_PER_FUZZER}s, log $WORK_DIR/$name.log"
  if [ "$parallel" = 1 ]; then
    run_one "$name" &
    pids+=($!)
  else
    run_one "$name" || true
  fi
done
for pid in "${pids[@]}"; do
  wait "$pid" || true
done

status=0
for name in "${FUZZERS[@]}"; do
  log="$WORK_DIR/$name.log"
  total_pcs=$(sed -n 's/^INFO: Loaded [0-9]* PC tables (\([0-9]*\) PCs).*/\1/p' "$log" | head -1)
  last=$(grep -E '^#[0-9]+' "$log" | grep -E 'cov: ' | tail -1 || true)
  cov=$(sed -n 's/.*cov: \([0-9]*\).*/\1/p' <<<"$last")
  ft=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$last")
  corp=$(sed -n 's/.* corp: \([^ ]*\).*/\1/p' <<<"$last")
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rss=$(sed -n 's/^stat::peak_rss_mb: *//p' "$log" | tail -1)
  done_line=$(grep -E '^Done [0-9]+ runs' "$log" | tail -1 || true)
  findings=$(find "$WORK_DIR/findings/$name" -type f | sort)
  echo "== fuzz_$name"
  echo "   executions: ${execs:-?} ${done_line:+($done_line)}"
  echo "   coverage:   ${cov:-?} of ${total_pcs:-?} instrumented PCs, ${ft:-?} features, corpus ${corp:-?}"
  echo "   peak RSS:   ${rss:-?} MB"
  if [ -n "$findings" ]; then
    status=1
    echo "   FINDINGS:"
    sed 's/^/     /' <<<"$findings"
    grep -E 'ERROR: |ORACLE FAILURE|SUMMARY: ' "$log" | head -5 | sed 's/^/     /'
  else
    echo "   findings:   none"
  fi
done
exit $status
