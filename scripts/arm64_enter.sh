#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Runs a command in a Debian chroot where programs for arm64 start, too: those run under the emulator
# that is installed there. Needs root.
#
#   arm64_enter.sh CHROOT USER:GROUP [FOLDER[=PLACE]...] -- COMMAND...
#
# Each FOLDER of the machine is there in its own place, or in PLACE. The mounts, and what the kernel is told
# of the emulator, are in namespaces of the command's own: the machine has nothing of them, and all is gone
# with the command. That ends, however its caller ends, when nothing holds this script's input open.
set -euo pipefail

# begin_namespace: a user namespace for programs to come, in which every user is who they are. The kernel
# keeps one list of emulators for each such namespace. Sets HOLDER_PID, whose namespace it is.
begin_namespace() {
  local ids
  coproc HOLDER { exec unshare --user sh -c 'echo ready; read -r _ || true'; }
  read -r _ <&"${HOLDER[0]}"
  for ids in uid gid; do
    awk '{print $1, $1, $3}' "/proc/self/${ids}_map" >"/proc/$HOLDER_PID/${ids}_map"
  done
}

# furnish CHROOT FOLDER[=PLACE]...: what a program finds in a system that runs.
furnish() {
  local chroot=$1 folder place
  shift
  mount -t proc proc "$chroot/proc"
  for folder in /dev /sys; do
    mount --rbind "$folder" "$chroot$folder"
  done
  mount -t tmpfs -o mode=1777 tmpfs "$chroot/tmp"
  for folder in "$@"; do
    place=${folder#*=}
    folder=${folder%%=*}
    mkdir -p "$chroot$place"
    mount --rbind "$folder" "$chroot$place"
  done
  [ ! -e /etc/resolv.conf ] || cp -L /etc/resolv.conf "$chroot/etc/resolv.conf"
}

# register_emulator CHROOT: by the words of the emulator's own package. The kernel opens it here and now,
# and so finds it from any folder that a program may call its root.
register_emulator() {
  local words=/usr/lib/binfmt.d/qemu-aarch64.conf list=/proc/sys/fs/binfmt_misc
  [ -e "$1$words" ] || return 0
  if mount -t binfmt_misc binfmt_misc "$1$list" 2>/dev/null && [ -w "$1$list/register" ]; then
    chroot "$1" cp "$words" "$list/register"
  elif [ -e "$1/lib/ld-linux-aarch64.so.1" ] &&
    ! chroot "$1" /lib/ld-linux-aarch64.so.1 --version >/dev/null 2>&1; then
    echo "This kernel keeps no list of emulators apart from the machine's own (Linux does since 6.7)," >&2
    echo "and the machine starts no programs for arm64; it does with qemu-user-static installed." >&2
    exit 1
  fi
}

# The first process in there, with whose end the kernel ends all others.
if [ "$1" = --inside ]; then
  chroot=$2 user=$3
  shift 3
  folders=()
  while [ "$1" != -- ]; do
    folders+=("$1")
    shift
  done
  shift
  furnish "$chroot" "${folders[@]}"
  register_emulator "$chroot"
  exec {caller}<&0 </dev/null
  chroot --userspec="$user" --groups= "$chroot" "$@" {caller}<&- &
  command=$!
  { read -r _ <&"$caller" || true; kill -KILL "$command"; } 2>/dev/null &
  wait "$command"
  exit
fi

begin_namespace
exec nsenter --user --target "$HOLDER_PID" unshare --mount --pid --fork --kill-child \
  bash "$0" --inside "$@"
