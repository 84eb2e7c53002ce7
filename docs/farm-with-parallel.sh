#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Renders a shot in chunks by GNU parallel, and checks it. Takes the arguments of glimmerhost render:
#
#   farm-with-parallel.sh shot.####.exr -o out.####.exr --frames 1001-1100 --radius 20px
#
# From the environment:
#
#   CHUNKS       how many parts the shot is cut into; 4
#   JOBS         how many of them run at once on each machine; 1, as one takes all processors
#   MANIFEST     how the names of the chunks' manifests begin; glimmerhost.manifest
#   GLIMMERHOST  the program; glimmerhost
#   PARALLEL     options of parallel's own: --sshlogin one,two --workdir . spreads the chunks
#
# Frames that are there are left out, so the same command goes on where a run ended.
set -euo pipefail

chunks=${CHUNKS:-4}
program=${GLIMMERHOST:-glimmerhost}

# What the check must find, if the arguments say it.
frames=()
expected=no
for argument in "$@"; do
  [ "$expected" = no ] || frames=("--frames=$argument")
  expected=no
  case $argument in
    --frames) expected=yes ;;
    --frames=*) frames=("$argument") ;;
  esac
done

# Whole command lines, one for each chunk: in a command of parallel's own, braces would have a meaning.
manifests=()
lines=()
for ((k = 1; k <= chunks; ++k)); do
  manifests+=("${MANIFEST:-glimmerhost.manifest}.$k-of-$chunks.jsonl")
  lines+=("$(printf '%q ' "$program" render --skip-existing "--chunk=$k/$chunks" \
    "--manifest=${manifests[-1]}" "$@")")
done

# The quotes above are bash's.
status=0
printf '%s\n' "${lines[@]}" |
  PARALLEL_SHELL=$(command -v bash) parallel --line-buffer --jobs "${JOBS:-1}" || status=1
"$program" check "${frames[@]}" -- "${manifests[@]}" || status=1
exit $status
