#!/bin/bash
# Edits a shopping list step by step with “skerrow perform SKWModifyList”. Each step prints the
# command that it runs and shows the list that comes out. Run it from any folder.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
export PATH="$here/../build/release/bin:$PATH"
command -v skerrow >/dev/null || { echo 'Please run “make build” first.' >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$here/orders.json" "$work"
cd "$work"

show() { python3 "$here/show_list.py" "$1"; }

# step WHAT FROM TO ARGUMENTS: changes the list in the file FROM into the file TO.
step() {
  printf '\n%s\n\n' "$1"
  printf "  skerrow perform SKWModifyList --direct @%s \\\\\n    --arguments '%s' > %s\n\n" "$2" "$4" "$3"
  skerrow perform SKWModifyList --direct "@$2" --arguments "$4" > "$3"
  show "$3"
}

printf 'A shopping list, as it came (examples/orders.json): what, for whom, how many, price.\n\n'
show orders.json

step 'Remove the empty row and the repeated row.' orders.json clean.json \
  '{"removingBlanks": true, "makingUnique": true}'

step 'Make all rows equally long, and insert a column: the shop, in second place.' clean.json shops.json \
  '{"addingPadding": null, "beforeIndex": 2,
     "insertingInOrder": ["Corner", "Baker", "Market", "Corner", "Market"]}'

step 'Put a text in the place of every missing value, in each row.' shops.json full.json \
  '{"doSublists": true, "replacingNullsWith": "please ask"}'

step 'Delete the first row and the last.' full.json middle.json \
  '{"deletingIndexes": [1, -1]}'

step 'Make the columns rows.' middle.json columns.json \
  '{"swapColsAndRows": true}'

step 'All of it in one go: of the columns keep the first, two things a line.' full.json pairs.json \
  '{"swapColsAndRows": true, "deletingIndexes": [2, 3, 4, 5], "flattening": true,
     "groupingEvery": 2}'

cat <<'END'

What cannot be done is said, with a number that scripts can test for.

  skerrow perform SKWModifyList --direct @full.json --arguments '{"deletingIndexes": 12}'

END
skerrow perform SKWModifyList --direct @full.json --arguments '{"deletingIndexes": 12}' 2>&1 |
  sed 's/^/  /' || true
