#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Which of the chroots that scripts/arm64.sh made it deletes when it has made another one. Folders with a
# file stand in for them.
#
#   old_chroots_test.sh SOURCE FOLDER CASE
#
#   FOLDER  is made anew
#   CASE    the name of a function below
set -euo pipefail

source "$1/scripts/common.sh"
source "$1/scripts/arm64.sh"
export LC_ALL=C
folder="$2/with a space"
rm -rf "$2"
mkdir -p "$folder"

old=$folder/arm64-tried_out-0123456789abcdef
new=$folder/arm64-tried_out-fedcba9876543210

make_tried_out() { echo "$2" >"$1/made"; }

# expect WHAT GOT WANTED
expect() {
  [ "$2" == "$3" ] && return
  printf '%s:\n%s\nwanted:\n%s\n' "$1" "$2" "$3" >&2
  exit 1
}

# make PLACE: in a shell of its own, as each script does. Says what it tells a person.
make() { (make_chroot tried_out "$1" all 3>&1); }

# expect_folders NAME...: beside their locks, in the order of the alphabet.
expect_folders() {
  expect "there are" "$(ls "$folder" | grep -v '\.lock$')" "$(printf '%s\n' "$@")"
}

GoWhenAnotherOneIsWhole() {
  make "$old" >/dev/null

  make "$new" >/dev/null

  expect_folders "${new##*/}"
  expect "it holds" "$(cat "$new/made")" all
}

StayWhereAnotherOneCouldNotBeMade() {
  make "$old" >/dev/null
  make_tried_out() { false; }

  # Where its failure is asked about, none of its commands' would stop it.
  set +e
  (set -e; make "$new" >/dev/null)
  expect "it ends with" "$?" 1
  set -e

  expect_folders "${old##*/}"
}

StayWhereAScriptHoldsThem() {
  local chroot=$old
  make "$old" >/dev/null
  hold_chroot

  expect "it says" "$(make "$new" | tail -n +2)" "$old is in use, or cannot be deleted, and stays"

  expect_folders "${old##*/}" "${new##*/}"
}

StayWhereSomethingIsMountedInThem() {
  make "$old" >/dev/null
  all_mounts() { echo "36 35 98:0 / ${old// /\\040}/proc rw,noatime shared:1 - ext3 /dev/root rw"; }

  expect "it says" "$(make "$new" | tail -n +2)" "$old is in use, or cannot be deleted, and stays"

  expect_folders "${old##*/}" "${new##*/}"
}

GoWithWhatWasLeftHalfMade() {
  mkdir "$old.being-made-abcdef" "$new.being-made-abcdef"

  make "$new" >/dev/null

  expect_folders "${new##*/}"
}

AreNoFoldersOfOtherKindsOrNames() {
  local other=(arm64-other-0123456789abcdef arm64-tried_out-0123456789abcdef.kept arm64-tried_out-mine)
  (cd "$folder" && mkdir "${other[@]}" && ln -s arm64-tried_out-mine "$old")

  make "$new" >/dev/null

  expect_folders "${other[0]}" "${old##*/}" "${other[@]:1:1}" "${new##*/}" "${other[2]}"
}

"$3"
