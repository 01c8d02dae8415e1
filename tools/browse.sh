#!/usr/bin/env bash
# The main job: install what is missing, build, and open the library browser
# on the bundled example libraries; closing its window ends the script.
# Without a display the window is rendered offscreen to build/browser.png.
# Extra arguments go to 'tdlb browse' (see 'build/app/tdlb browse --help').
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh
tdlb=(./build/app/tdlb --root build/examples/root --prefdir build/prefs browse)
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec "${tdlb[@]}" "$@"
fi
echo "== No display: rendering the window to build/browser.png"
"${tdlb[@]}" --screenshot build/browser.png "$@"
echo "Wrote build/browser.png"
