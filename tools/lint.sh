#!/bin/bash
# lint.sh BUILD JOBS ROOM...: runs clang-tidy over the sources of the rooms and the headers that
# they include. BUILD holds a compile_commands.json. Prints findings only.
set -euo pipefail

build=$1 jobs=$2
shift 2
rooms="^$PWD/($(IFS='|'; echo "$*"))/"

log="$build/lint.log"
run-clang-tidy-14 -quiet -p "$build" -j "$jobs" -header-filter="$rooms" "$rooms" \
  > "$log" 2>&1 && exit 0

# Leave out the colours, the commands and the counts of what was suppressed.
sed -E 's/\x1b\[[0-9;]*[mK]//g' "$log" |
  grep -vE '^(clang-tidy-14 |/usr/bin/clang-tidy|[0-9]+ warnings? )' || true
exit 1
