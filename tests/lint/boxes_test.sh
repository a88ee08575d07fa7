#!/usr/bin/env bash
# boxes_test.sh: each message box of the program has its row in the walk through everything, so that no box comes to
# be which the walk doesn't know. It goes by the sentences in the sources: boxes.py tells how.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/files.sh
source scripts/files.sh

mapfile -d '' sources < <(ours 'src/*.cpp' 'src/*.h' '!src/cli/*' '!src/engine/*' '!src/manager/*')
python3 tests/lint/boxes.py tests/e2e/walk/Boxes.cpp tests/lint/said_elsewhere.txt "${sources[@]}"
