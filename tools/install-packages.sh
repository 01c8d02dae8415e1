#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the window need, if
# any is missing. The one list of packages: .ci/run and the README's
# commands use it. Pass --fuzz to add clang for the fuzz targets.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev qt6-5compat-dev qt6-svg-dev libzip-dev
  pybind11-dev python3-dev python3-pytest mypy
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libgoogle-perftools-dev
  xvfb xauth zip unzip
  openbox xdotool x11-utils imagemagick
  fonts-dejavu-core
  gcovr
)
if [ "${1:-}" = "--fuzz" ]; then
  packages+=(clang)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
echo "== Installing: ${missing[*]}"
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
