#!/bin/bash
# setup.sh [GROUP...]: installs the Debian packages of these groups (all without any) that are
# not installed yet. Says nothing when there is nothing to do.
set -euo pipefail

list="$(dirname "$0")/../packaging/debian-packages.txt"

# The packages of the wanted groups, one a line.
packages() {
  awk -v wanted=" $* " '
    { sub(/#.*/, "") }
    /^\[/ { group = substr($1, 2, length($1) - 2); next }
    NF && (wanted ~ /^ *$/ || index(wanted, " " group " ")) { print $1 }' "$list"
}

isInstalled() {
  [ "$(dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | head -n 1)" = installed ]
}

if ! command -v dpkg-query >/dev/null; then
  echo "setup: this is no Debian system; if the build stops, install what $list names." >&2
  exit 0
fi

missing=()
for package in $(packages "$@"); do
  isInstalled "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

asRoot=()
if [ "$(id -u)" -ne 0 ]; then
  asRoot=(sudo)
  [ -t 0 ] || asRoot+=(-n)  # nobody there to type a password
fi

giveUp() {
  echo "setup: could not install what is missing. Please run this as an administrator:" >&2
  echo "  apt-get install ${missing[*]}" >&2
  exit 1
}

echo "setup: installing ${missing[*]}"
if [ ${#asRoot[@]} -gt 0 ] && ! command -v sudo >/dev/null; then giveUp; fi
"${asRoot[@]}" apt-get update -qq || giveUp
"${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -qq -y --no-install-recommends "${missing[@]}" >/dev/null || giveUp
