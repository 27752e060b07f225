#!/usr/bin/env bash
# All answers must be met, and the page must show what the replay prints.
# Usage: run_replay_test.sh PATH_TO_REPLAY_BRIDGES BRIDGES.CSV PAGE
set -euo pipefail
shown=$(sed -n '/^\$ scripts\/replay-bridges.sh$/,/^```$/{/^[$`]/!p}' "$3")
printed=$("$1" "$2") || { echo "$printed" && exit 1; }
diff <(echo "$shown") <(echo "$printed")
