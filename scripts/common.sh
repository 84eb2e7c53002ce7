# Shared by the commands in this folder; sourced, not run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# quietly MESSAGE COMMAND...: runs the command, whose output is shown only if it fails, and then
# MESSAGE, and that is the end of it. Stream 3 is for what the command has to tell all the same.
quietly() {
  local message=$1 log
  shift
  log=$(mktemp)
  if ! "$@" 3>&2 >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "$message" >&2
    exit 1
  fi
  rm -f "$log"
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
  libopenimageio-dev libopencolorio-dev libcli11-dev libtomlplusplus-dev nlohmann-json3-dev
  libxxhash-dev)

# What the tests and the benchmarks need beside it.
test_packages=(libgtest-dev libbenchmark-dev binutils ffmpeg parallel slurm-wlm munge)

# build_preset PRESET [TARGET...]: configures and builds; quiet unless it fails.
# In a shell of its own, so that the caller's folder stays what it was.
# A machine that has ccache compiles nothing twice, wherever the clone is.
build_preset() (
  preset=$1
  message="The build of preset $preset failed."
  shift
  cd "$root"
  if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    # Without the slack nothing that uses a precompiled header would be found again.
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  quietly "$message" cmake --preset "$preset"
  quietly "$message" cmake --build --preset "$preset" ${1:+--target "$@"}
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
