#!/usr/bin/env bash
# Installs the Debian packages that are missing of those the project needs.
#   scripts/install-packages.sh [--qt 5|6] [PACKAGE...]
# The build's packages for the Qt chosen (default 5), plus any named ones.
set -euo pipefail

qt=5
extra=()
while [ $# -gt 0 ]; do
  case "$1" in
    --qt) qt=$2; shift 2 ;;
    --qt=*) qt=${1#--qt=}; shift ;;
    *) extra+=("$1"); shift ;;
  esac
done

# fonts-dejavu-core: the font the preview draws with and the GUI tests render
# with on the offscreen platform. pandoc: turns the manual page from Markdown
# into roff.
packages=(build-essential cmake pkg-config extra-cmake-modules zlib1g-dev libgtest-dev libgmock-dev libxml2-utils fonts-dejavu-core pandoc)
case "$qt" in
  5) packages+=(qtbase5-dev qttools5-dev-tools) ;;
  6) packages+=(qt6-base-dev qt6-l10n-tools) ;;
  *) echo "install-packages.sh: --qt takes 5 or 6" >&2; exit 2 ;;
esac
packages+=("${extra[@]}")

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
