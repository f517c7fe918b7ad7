#!/usr/bin/env bash
# CI stage: the test suite of the normal build (the one scripts/run-tests.sh
# made) run under valgrind's memcheck. Every invalid access, use of an
# uninitialised value and definite or indirect leak makes the test fail.
# The consumer check is left out (it runs cmake and a compiler, not our code);
# tests that start other programs are checked in their own process only.
set -euo pipefail
cd "$(dirname "$0")/../.."

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
if ! command -v valgrind >/dev/null; then
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq valgrind >/dev/null
fi

BUILD_DIR=${BUILD_DIR:-build}
if [ ! -f "$BUILD_DIR/CTestTestfile.cmake" ]; then
  bash scripts/setup.sh
fi

# Noise of the platform, not of this project. Each entry was checked against
# valgrind's report of our own tests:
# - QProcess (Qt's forkfd) probes for pidfd support with a raw waitid()
#   whose info pointer is null, which the kernel allows and memcheck flags.
# - Qt 5's offscreen platform plug-in (the GUI tests' platform) never frees
#   the screen it creates with the platform integration.
suppressions="$BUILD_DIR/memcheck.supp"
cat >"$suppressions" <<'SUPP'
{
   qt5-forkfd-waitid-probe-with-null-infop
   Memcheck:Param
   waitid(infop)
   fun:syscall
   obj:*/libQt5Core.so.5*
}
{
   qt5-offscreen-platform-keeps-its-screen-at-exit
   Memcheck:Leak
   match-leak-kinds: definite,indirect
   ...
   fun:_ZN22QGuiApplicationPrivate25createPlatformIntegrationEv
}
SUPP

start=$(date +%s)
set +e
ctest --test-dir "$BUILD_DIR" -T memcheck -j"$(nproc)" --output-on-failure \
  -E '^consumer_' \
  --overwrite MemoryCheckCommand="$(command -v valgrind)" \
  --overwrite "MemoryCheckCommandOptions=--tool=memcheck --error-exitcode=1 --leak-check=full --show-leak-kinds=definite,indirect --errors-for-leak-kinds=definite,indirect --num-callers=30 --suppressions=$(realpath "$suppressions")" \
  2>&1 | tee "$BUILD_DIR/memcheck.log" | grep -vE '^ *Start +[0-9]+:'
status=${PIPESTATUS[0]}
set -e
echo "memcheck stage: $(($(date +%s) - start)) s"
if [ "$status" -ne 0 ]; then
  echo "memcheck found errors; valgrind's reports are in $BUILD_DIR/Testing/Temporary/MemoryChecker.*.log"
  for log in "$BUILD_DIR"/Testing/Temporary/MemoryChecker.*.log; do
    if grep -qE 'ERROR SUMMARY: [1-9]' "$log"; then
      echo "=== $log"
      head -n 80 "$log"
    fi
  done
fi
exit "$status"
