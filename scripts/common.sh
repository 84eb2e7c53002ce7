# Shared by the commands in this folder; sourced, not run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

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
  # One log, shown only if something goes wrong: apt says a lot when all is well.
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y \
      --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "The packages above could not be installed." >&2
    exit 1
  fi
  rm -f "$log"
}

# What the program needs to be built.
build_packages=(g++ cmake ninja-build pkg-config libfftw3-dev libopenimageio-dev libcli11-dev
  libtomlplusplus-dev)

# What the tests and the benchmarks need beside it.
test_packages=(libgtest-dev libbenchmark-dev binutils libpng-dev libtiff-dev)

# build_preset PRESET [TARGET...]: configures and builds; quiet unless it fails.
build_preset() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! (cd "$root" && cmake --preset "$preset" && cmake --build --preset "$preset" \
    ${1:+--target "$@"}) >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "The build of preset $preset failed." >&2
    exit 1
  fi
  rm -f "$log"
}
