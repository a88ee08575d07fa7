#!/usr/bin/env bash
# failures.sh LOG: of CTest's log, the names of the tests that failed, each with the last lines that it wrote. A log of
# thousands of lines is looked at from its end.
set -euo pipefail
(($# == 1)) || { sed -n '2,3s/^# //p' "${BASH_SOURCE[0]}" >&2; exit 2; }
awk -v kept=40 '
  /^[0-9]+\/[0-9]+ Testing: / { name = substr($0, index($0, ": ") + 2) }
  /^<end of output>$/ { inside = 0 }
  inside { line[count++] = $0 }
  # The line under this one is a rule.
  /^Output:$/ { getline; inside = 1; count = 0 }
  !inside && /^Test Failed\.$/ {
    print "failed: " name
    for (i = count > kept ? count - kept : 0; i < count; i++) print "  " line[i]
  }' "$1"
