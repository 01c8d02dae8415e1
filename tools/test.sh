#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh
ctest --test-dir build --output-on-failure -j2
