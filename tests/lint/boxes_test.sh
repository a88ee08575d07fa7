#!/usr/bin/env bash
# boxes_test.sh: each message box of the program has its row in the walk through everything, so that no box comes to
# be which the walk doesn't know. It goes by the sentences in the sources: boxes.py tells how.
set -euo pipefail
mapfile -t sources < <(git ls-files 'src/*.cpp' 'src/*.h' | grep -vE '^src/(cli|engine|manager)/')
python3 tests/lint/boxes.py tests/e2e/walk/Boxes.cpp tests/lint/said_elsewhere.txt "${sources[@]}"
