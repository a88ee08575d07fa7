#!/bin/sh
# Wipes the files of a folder and keeps a record of each night on which there were any. For cron:
#
#   15 3 * * *  root  /usr/local/sbin/nightly.sh /srv/scans/done /var/lib/wiped
#
# Silent while all goes well; cron mails what zqwipe says of the files that it had to keep.
set -u
folder=$1
records=$2
zqwipe=${ZQWIPE:-zqwipe}

record=$records/$(hostname)-$(date -u +%Y%m%dT%H%M%SZ).json
"$zqwipe" --yes --json --mask '*' -- "$folder" >"$record.new"
status=$?
if grep -q '"outcome"' "$record.new" || [ "$status" -ne 0 ]; then
  mv -- "$record.new" "$record"
else
  rm -- "$record.new"
fi
exit "$status"
