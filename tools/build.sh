#!/usr/bin/env bash
# Installs what is missing, configures and builds into ./build with Ninja.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-packages.sh
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B build -G Ninja -DPython_EXECUTABLE=/usr/bin/python3 "${launcher[@]}"
cmake --build build -j2
