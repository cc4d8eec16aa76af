#!/bin/sh
# page_links.sh FOLDER...: every link of the pages (*.md) in these folders leads to a file that is there.
set -eu
start=$PWD
for folder in "$@"; do
  cd "$start"
  cd "$folder"
  links=$(grep -oHE '\]\([^)#:]+[^):]*\)' ./*.md | sed 's/\](//; s/)$//; s/#.*//' | sort -u)
  [ -n "$links" ] || { echo "FAIL  no link in $folder"; exit 1; }
  broken=$(echo "$links" | while IFS=: read -r page link; do [ -e "$link" ] || echo "$page: $link"; done)
  [ -z "$broken" ] || { echo "FAIL  links of $folder to what is not there: $broken"; exit 1; }
  echo "ok    $(echo "$links" | wc -l) links of $folder lead somewhere"
done
