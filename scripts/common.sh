# SPDX-License-Identifier: BSD-3-Clause
# Shared by the commands in this folder; sourced, not run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Whoever ends a command by Ctrl-C knows why it ended. The system tells all its processes, and this one
# waits for the one that it runs: when it ends, all of them have.
end_by_interrupt() { trap 'exit 130' INT; }
end_by_interrupt

# quietly MESSAGE COMMAND...: runs the command, whose output is shown only if it fails, and then
# MESSAGE, and that is the end of it. Stream 3 is for what the command has to tell all the same.
quietly() {
  local message=$1 log written read
  shift
  # Without a name from the beginning, it is gone however this ends.
  log=$(mktemp)
  exec {written}>"$log" {read}<"$log"
  rm -f "$log"
  if ! "$@" 3>&2 >&"$written" 2>&1 {written}>&- {read}<&-; then
    cat <&"$read" >&2
    echo "$message" >&2
    exit 1
  fi
  exec {written}>&- {read}<&-
}

# stage NAME COMMAND...: runs the command, and notes for .ci/run how many seconds it took.
stage() {
  local name=$1 start=$SECONDS
  shift
  "$@"
  printf '%-18s %5d\n' "$name" $((SECONDS - start)) >>"${GLIMMERBLUR_STAGES:-/dev/null}"
}

# install_missing PACKAGE...: installs those Debian packages that are not there yet.
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${missing[*]}" >&2
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  quietly "The package lists could not be read." "${as_root[@]}" apt-get update
  quietly "The packages above could not be installed." \
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y \
    --no-install-recommends "${missing[@]}"
}

# What the program needs to be built.
build_packages=(g++ cmake ninja-build pkg-config libfftw3-dev libpng-dev libtiff-dev
  libdeflate-dev libopenimageio-dev libopencolorio-dev libcli11-dev libtomlplusplus-dev
  nlohmann-json3-dev libxxhash-dev)

# What the window is built with, and needs to be shown.
viewer_packages=(qt6-base-dev)

# What the doors into other programs are built against. None of it is needed for the program.
door_packages=(frei0r-plugins-dev libgegl-dev)

# What the tests and the benchmarks need beside it. Without ccache one of them compiles all once more.
test_packages=(libgtest-dev libbenchmark-dev binutils ccache ffmpeg parallel slurm-wlm munge
  gegl melt python3-numpy python3-setuptools python3-venv python3-wheel)

# tell_steps TEXT [at-once]: passes on what a build says, and tells on stream 3, behind TEXT, how far it
# is: on a terminal in one line, elsewhere now and then. Nothing where there is nothing to do, unless the
# text is wanted at once.
tell_steps() {
  local text=$1 line on_line=""
  # It lasts until the build has ended, and leaves the terminal at the beginning of a line.
  trap '' INT
  [ -z "${2:-}" ] || tell "$text" always
  while IFS= read -r line; do
    printf '%s\n' "$line"
    if [[ $line =~ ^"["([0-9]+)" of "([0-9]+)"] " ]]; then
      tell "$text: ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}" \
        "$((BASH_REMATCH[1] % 10 == 0 || BASH_REMATCH[1] == BASH_REMATCH[2]))"
    fi
  done
  [ -z "$on_line" ] || echo >&3
}

# tell WORDS MATTERS: tell_steps' own. Where lines stay, those alone that matter: 0 is for one that does
# not.
tell() {
  if [ -t 3 ]; then
    printf '\r%s\033[K' "$1" >&3
    on_line=yes
  elif [ "$2" != 0 ]; then
    echo "$1" >&3
  fi
}

# build_preset PRESET [TARGET...]: configures and builds; quiet unless it fails. With arguments of
# tell_steps in the list telling_steps it tells how far it is.
# In a shell of its own, so that the caller's folder stays what it was.
# A machine that has ccache compiles nothing twice, wherever the clone is.
build_preset() (
  end_by_interrupt
  preset=$1
  shift
  cd "$root"
  if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    # Without the slack nothing that uses a precompiled header would be found again.
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  build() {
    cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}
  }
  build_and_tell() {
    NINJA_STATUS="[%f of %t] " build "$@" 2>&1 | tell_steps "${telling_steps[@]}"
  }
  tells=${telling_steps:+_and_tell}
  quietly "The build of preset $preset failed." "build$tells" "$@"
)

# run_tests PRESET [OPTION...]: all tests of a build, with more options for CTest; what is told is kept
# in the build's folder, too. One more at once than there are processors: those of the farm mostly
# wait.
run_tests() (
  cd "$root"
  preset=$1
  shift
  ctest --preset "$preset" --parallel $(($(nproc) + 1)) --progress \
    --output-log "build/$preset/tests.log" "$@"
)
