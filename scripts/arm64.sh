# SPDX-License-Identifier: BSD-3-Clause
# What building and running for arm64 needs; sourced after common.sh, not run.
source "$(dirname "${BASH_SOURCE[0]}")/debian.sh"

# What the machine itself needs. All else is in a chroot of our own, which the user's clones share.
arm64_machine_packages=(debootstrap)
arm64_cache=${XDG_CACHE_HOME:-$HOME/.cache}/glimmerblur
arm64_release=bookworm

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

# for_arm64 PACKAGE...: libraries to link become those of that architecture; programs, and headers without
# a library, stay the machine's own.
for_arm64() {
  local package
  for package in "$@"; do
    case $package in
      libcli11-dev | libtomlplusplus-dev | libxxhash-dev) ;;
      lib*-dev | qt6-base-dev) package+=:arm64 ;;
    esac
    echo "$package"
  done
}

# What cross-compiles and runs the tests. ffmpeg and GNU parallel are called by programs of ours, and need
# not be of their kind.
arm64_cross_packages() {
  for_arm64 "${build_packages[@]}" "${viewer_packages[@]}" "${door_packages[@]}"
  echo g++-aarch64-linux-gnu googletest binutils ccache dpkg-dev file qemu-user-static ffmpeg parallel
}

# debian_mirror: where the machine takes the release from.
debian_mirror() {
  apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(REPO_URI)' 'Created-By: Packages' |
    sed -n "s/^Debian $arm64_release //p" | sort -u | head -n 1
}

# bring_apt_settings CHROOT: the machine's lists and its ways to them, for every architecture.
bring_apt_settings() {
  local chroot=$1 key
  rm -f "$chroot/etc/apt/sources.list"
  debian_entries deb "$chroot/etc/apt/sources.list.d"
  sed -i -e '/^Architectures:/Id' -e 's/\barch=[^] ]*//' "$chroot"/etc/apt/sources.list.d/*
  sed -n 's/.*signed-by[=:] *\(\/[^] ]*\).*/\1/Ip' "$chroot"/etc/apt/sources.list.d/* |
    sort -u | while IFS= read -r key; do
    [ -e "$chroot$key" ] || install -D -m 644 "$key" "$chroot$key"
  done
  apt-config dump Acquire >"$chroot/etc/apt/apt.conf.d/99machine"
  [ ! -e /etc/resolv.conf ] || cp -L /etc/resolv.conf "$chroot/etc/resolv.conf"
}

# enter_chroot CHROOT USER:GROUP [FOLDER[=PLACE]...] -- COMMAND...: see arm64_enter.sh, which lives as long
# as something holds its input open: this shell, and nothing else.
enter_chroot() {
  local pipe hold input result=0
  pipe=$(mktemp -u)
  mkfifo -m 600 "$pipe"
  exec {hold}<>"$pipe" {input}<"$pipe"
  rm "$pipe"
  "${as_root[@]}" "$root/scripts/arm64_enter.sh" "$@" <&"$input" {input}<&- {hold}>&- ||
    result=$?
  exec {hold}>&- {input}<&-
  return "$result"
}

# bootstrap PLACE ARCHITECTURE OPTION...: Debian's tool mounts and unmounts, in a namespace of its own, so
# that nothing stays where it is interrupted.
bootstrap() {
  local place=$1 architecture=$2 mirror
  shift 2
  mirror=$(debian_mirror)
  if [ -z "$mirror" ]; then
    echo "None of the machine's package lists has Debian's $arm64_release; apt-get update may help."
    return 1
  fi
  unshare --mount --pid --fork --kill-child debootstrap --variant=minbase --arch="$architecture" "$@" \
    "$arm64_release" "$place" "$mirror"
  bring_apt_settings "$place"
}

# make_cross PLACE: the machine's kind of programs, with a compiler and libraries for the other.
make_cross() {
  bootstrap "$1" amd64
  dpkg --root="$1" --add-architecture arm64
  enter_chroot "$1" 0:0 -- apt-get update
  enter_chroot "$1" 0:0 -- env DEBIAN_FRONTEND=noninteractive apt-get install -y \
    --no-install-recommends $(arm64_cross_packages)
  rm -rf "$1"/var/cache/apt/archives/*.deb
}

# make_native PLACE CROSS: a system for arm64 alone, as it is before anything is installed. CROSS has the
# emulator that its own half of the work is done by. container=lxc: or else it would try whether it may
# make devices, which it did before.
make_native() {
  bootstrap "$1" arm64 --foreign
  enter_chroot "$2" 0:0 "$1=/arm64" -- sh -ec 'mount -t proc proc /arm64/proc
    container=lxc chroot /arm64 /debootstrap/debootstrap --second-stage'
}

# make_chroot KIND PLACE ARGUMENT...: by make_KIND, beside its place, and moved in, so that what stands
# there is whole. Clones that want the same at once make it once: the later one waits. As root.
make_chroot() {
  local kind=$1 place=$2
  shift 2
  exec 9>"$place.lock"
  flock 9
  [ ! -e "$place" ] || return 0
  beside=$(mktemp -d "$place.being-made-XXXXXX")
  trap 'rm -rf --one-file-system "$beside"' EXIT
  echo "Making a Debian chroot for arm64: $kind (some minutes, once)" >&3
  chmod 755 "$beside"
  "make_$kind" "$beside" "$@"
  mv -T "$beside" "$place"
  delete_old_chroots "$kind" "$place"
}

# delete_old_chroots KIND PLACE: those of this kind by other recipes, and those that were left half made,
# unless another script holds them: it would find them gone. Their locks stay, each an empty file: whoever
# waits for one must not get it while a third makes a new one of the same name.
delete_old_chroots() {
  local kind=$1 place=$2 old whole lock
  for old in "${place%/*}/arm64-$kind-"*; do
    [[ ${old##*/} =~ ^arm64-$kind-[0-9a-f]{16}(\.being-made-.{6})?$ ]] || continue
    [ -d "$old" ] && [ ! -L "$old" ] && [ -O "$old" ] && [ "$old" != "$place" ] || continue
    whole=${old%.being-made-*}
    lock=(flock --nonblock "$whole.lock")
    # That of its own place the caller has.
    [ "$whole" != "$place" ] || lock=()
    if ! is_free_of_mounts "$old" || ! "${lock[@]}" rm -rf --one-file-system "$old"; then
      echo "$old is in use, or cannot be deleted, and stays" >&3
    fi
  done
}

# is_free_of_mounts FOLDER: for every process. What is mounted there may be of the same file system, and
# deleting would go through it.
is_free_of_mounts() {
  local mounts place=${1// /\\040}
  mounts=$(all_mounts)
  [[ $mounts != *" $place "* && $mounts != *" $place/"* ]]
}

all_mounts() { cat /proc/[0-9]*/mountinfo 2>/dev/null || true; }

# keep_chroot KIND ARGUMENT...: sets chroot to the one of this kind and recipe that the user's clones share,
# and holds it until this script and all that it started have ended.
keep_chroot() {
  local recipe
  recipe=$(declare -f bootstrap bring_apt_settings "make_$1" && arm64_cross_packages)
  chroot=$arm64_cache/arm64-$1-$(echo "$recipe" | sha256sum | cut -c 1-16)
  mkdir -p "$arm64_cache"
  until hold_chroot; do
    # By a shell of its own: in a function whose failure is asked about, none of its commands' stops it.
    quietly "The chroot could not be made." "${as_root[@]}" bash -euo pipefail -c \
      'source "$0/common.sh"; source "$0/arm64.sh"; make_chroot "$@"' \
      "$root/scripts" "$1" "$chroot" "${@:2}"
  done
}

# hold_chroot: false if it is not there yet.
hold_chroot() {
  local held
  [ -e "$chroot.lock" ] || return
  exec {held}<"$chroot.lock"
  flock --shared "$held"
  [ ! -e "$chroot" ] || return 0
  exec {held}<&-
  return 1
}

# keep_cross_chroot: sets arm64_cross.
keep_cross_chroot() {
  local chroot
  install_missing "${arm64_machine_packages[@]}"
  keep_chroot cross
  arm64_cross=$chroot
}

# in_cross_chroot COMMAND...: as the caller, in this clone, with the caller's compiler cache if there is one.
in_cross_chroot() {
  local compiled=$arm64_cache/ccache size=5G
  if command -v ccache >/dev/null; then
    compiled=$(ccache -k cache_dir)
    size=$(ccache -k max_size)
  fi
  mkdir -p "$compiled"
  enter_chroot "$arm64_cross" "$(id -u):$(id -g)" "$root" "$compiled=/var/cache/ccache" -- \
    env -i --chdir="$root" PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/tmp LANG=C.UTF-8 \
    CCACHE_DIR=/var/cache/ccache CCACHE_MAXSIZE="$size" "$@"
}

# build_arm64 PRESET [TARGET...]: as build_preset, in there.
build_arm64() {
  in_cross_chroot bash -euo pipefail -c 'source scripts/common.sh; build_preset "$@"' build_arm64 "$@"
}
