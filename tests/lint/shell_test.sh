#!/usr/bin/env bash
# Our shell scripts have none of the faults that shellcheck knows.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/files.sh
source scripts/files.sh
mapfile -d '' scripts < <(ours '*.sh' .ci/run)
((${#scripts[@]} > 5)) || { echo "the list of our scripts is not right"; exit 1; }
shellcheck --severity=warning --external-sources --source-path=SCRIPTDIR/.. --source-path=SCRIPTDIR "${scripts[@]}"
