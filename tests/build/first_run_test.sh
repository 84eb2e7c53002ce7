#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# What a person sees who starts scripts/glimmerhost or scripts/glimmerview in a fresh clone, with a build
# of 25 steps in place of ours: CMake is a stand-in that calls ninja, and all packages are installed.
#
#   first_run_test.sh SOURCE FOLDER CASE
#
#   FOLDER  is made anew: a clone that has the scripts alone
#   CASE    the name of a function below
set -euo pipefail

source_folder=$1
clone=$2
rm -rf "$clone"
mkdir -p "$clone/scripts" "$clone/stand-ins"
cp "$source_folder"/scripts/{common.sh,glimmerhost,glimmerview} "$clone/scripts"
cd "$clone"
export PATH=$clone/stand-ins:$PATH

# stand_in NAME TEXT: a program that is found before the machine's.
stand_in() {
  printf '#!/usr/bin/env bash\n%s\n' "$2" >"stand-ins/$1"
  chmod +x "stand-ins/$1"
}
stand_in dpkg-query 'echo install ok installed'
stand_in cmake '[[ $1 == --preset ]] && echo configured || exec ninja -C stand-ins'

# steps COMMAND: 25 steps, of which the last makes the program and 13 is this command.
steps() {
  local i
  {
    printf 'rule make\n  command = touch $out\nrule special\n  command = %s\n' "$1"
    printf 'rule program\n  command = mkdir -p ../build/program/bin && '
    printf 'printf "#!/bin/sh\\necho ran \\$$*\\n" >$out && chmod +x $out\n'
    for ((i = 1; i < 25; ++i)); do
      [ "$i" -eq 13 ] && echo "build $i: special $((i - 1))" ||
        echo "build $i: make$([ "$i" -eq 1 ] || echo " $((i - 1))")"
    done
    echo "build ../build/program/bin/${program:-glimmerhost}: program 24"
  } >stand-ins/build.ninja
}

# expect WHAT GOT WANTED
expect() {
  [ "$2" == "$3" ] && return
  printf '%s:\n%s\nwanted:\n%s\n' "$1" "$2" "$3" >&2
  exit 1
}

text="Building glimmerhost (about 2 minutes, once)"

SaysNowAndThenHowFarItIs() {
  steps 'touch $out'
  expect "it prints" "$(scripts/glimmerhost a b 2>errors)" "ran a b"
  expect "it says" "$(cat errors)" "$text
$text: 10 of 25
$text: 20 of 25
$text: 25 of 25"
}

BuildsTheWindowInTheSameWay() {
  local program=glimmerview words
  steps 'touch $out'
  expect "it prints" "$(scripts/glimmerview "a b" 2>errors)" "ran a b"
  words="Building glimmerview (about 4 minutes, once)"
  expect "it says" "$(cat errors)" "$words
$words: 10 of 25
$words: 20 of 25
$words: 25 of 25"
}

RewritesOneLineOnATerminal() {
  local i wanted
  steps 'touch $out'
  wanted=$'\r'$text$'\033[K'
  for ((i = 1; i <= 25; ++i)); do
    wanted+=$'\r'"$text: $i of 25"$'\033[K'
  done
  # The terminal turns each end of a line into two characters.
  expect "it says" "$(script -qec 'scripts/glimmerhost a' /dev/null)" "$wanted"$'\r\nran a\r'
}

SaysNothingWhereNothingIsBuilt() {
  steps 'touch $out'
  scripts/glimmerhost 2>/dev/null >&2
  expect "it says" "$(scripts/glimmerhost again 2>&1)" "ran again"
}

PromisesNoTimeWhereLittleIsBuilt() {
  steps 'touch $out'
  scripts/glimmerhost 2>/dev/null >&2
  rm stand-ins/24
  expect "it says" "$(scripts/glimmerhost again 2>&1)" "Building glimmerhost: 2 of 2
ran again"
}

ShowsAllThatAFailingBuildSays() {
  local said status=0
  steps 'echo first fault; echo second fault >&2; false'
  said=$(scripts/glimmerhost 2>&1) || status=$?
  expect "it ends with" "$status" 1
  for line in configured "[12 of 25] touch 12" "first fault" "second fault" \
    "ninja: build stopped: subcommand failed."; do
    grep -qxF "$line" <<<"$said" || expect "it says" "$said" "... $line ..."
  done
  expect "its last line" "$(tail -n 1 <<<"$said")" "The build of preset program failed."
}

BlamesNobodyWhenItIsInterrupted() {
  local step status=0
  mkfifo begun never
  # One process, so that there is no moment at which only the shell would hear of it.
  steps 'echo $$$$ >../begun && exec cat ../never'
  # A job of its own has its own group of processes, as one that a person starts in a terminal.
  set -m
  scripts/glimmerhost 2>errors &
  set +m
  read -r step <begun
  kill -INT -- -$!
  wait $! || status=$?
  expect "it ends with" "$status" 130
  expect "it says" "$(cat errors)" "$text
$text: 10 of 25"
  ! kill -0 "$step" 2>/dev/null || expect "step 13" "lasts" "has ended"
}

"$3"
