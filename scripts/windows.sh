# SPDX-License-Identifier: BSD-3-Clause
# What building and running for Windows needs; sourced after common.sh, not run.
source "$(dirname "${BASH_SOURCE[0]}")/debian.sh"

windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev cmake ninja-build pkg-config make
  dpkg-dev libcli11-dev libtomlplusplus-dev nlohmann-json3-dev libxxhash-dev frei0r-plugins-dev wine wine64)

# A link to where the user's clones share them.
windows_libraries=$root/build/windows-libraries

# What our programs link is static and runs on any processor of the family. GCC keeps the stack at
# 16 bytes for this system, so wider spills must not ask for their alignment.
windows_flags="-O2 -fomit-frame-pointer -fno-strict-aliasing -ffp-contract=off \
-Wa,-muse-unaligned-vector-move"

# What FFTW's factors are made of, so that they are those of Debian's own FFTW to the last bit.
windows_angles=$root/packaging/windows/fftw_angles.h

# fetch_source PACKAGE OPTION...: unpacks the newest version that can be had, with these options of
# apt. A mirror may list one that it has not; whoever builds is told, as it may mend something.
fetch_source() {
  local package=$1 version
  shift
  for version in $(apt-cache "$@" showsrc --only-source "$package" | sed -n 's/^Version: //p' |
    sort -rVu); do
    ! apt-get "$@" source "$package=$version" || return 0
    echo "The source of $package $version cannot be had; trying an older one." >&3
  done
  return 1
}

# fetch_sources FOLDER PACKAGE...: unpacks Debian's source packages in FOLDER, each in a folder named
# without its version, and writes FOLDER/versions. Lists of sources are kept in FOLDER as well: the
# machine may have none, and its configuration is not ours to change.
fetch_sources() {
  local folder=$1 package
  shift
  mkdir -p "$folder/entries" "$folder/lists/partial"
  debian_entries deb-src "$folder/entries"
  # As the caller: apt's own user may not be allowed into the folder.
  local options=(-o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$folder/entries"
    -o "Dir::State::Lists=$folder/lists" -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=
    -o APT::Sandbox::User=root)
  apt-get "${options[@]}" update
  cd "$folder"
  for package in "$@"; do
    fetch_source "$package" "${options[@]}"
    mv "$package"-*/ "$package"
    echo "$package $(dpkg-parsechangelog -l "$package/debian/changelog" -S Version)" >>versions
  done
}

# without_place SOURCE: the option by which files compiled from there name no folder of this machine, as
# their checks would where they fail.
without_place() { echo "-ffile-prefix-map=$1=${1##*/}"; }

# build_fftw SOURCE BUILD PREFIX OPTION...: not by its CMake files, which let the compiler use every
# wanted instruction set throughout, so that no processor could do without. Nor as a whole: its tests
# and tools take a third of the time. What configure is told stands in the library, as a text, and so
# the option with the folder comes later. Angles come first: what stands there already is not compiled
# again with all else.
build_fftw() {
  local source=$1 build=$2 prefix=$3 part flags
  shift 3
  flags="$windows_flags $(without_place "$source")"
  mkdir -p "$build"
  cd "$build"
  "$source/configure" --host=x86_64-w64-mingw32 --prefix="$prefix" --disable-shared \
    --enable-static --enable-threads --with-our-malloc --disable-fortran --disable-doc \
    --disable-dependency-tracking CC=x86_64-w64-mingw32-gcc-posix CFLAGS="$windows_flags" "$@"
  make -C kernel CFLAGS="$flags -include $windows_angles" trig.lo
  for part in support kernel simd-support dft rdft reodft api; do
    make -j "$(nproc)" -C "$part" CFLAGS="$flags"
  done
  make install-libLTLIBRARIES install-pkgconfigDATA CFLAGS="$flags"
  make -j "$(nproc)" -C threads install-libLTLIBRARIES CFLAGS="$flags"
  make -C api install-includeHEADERS
}

# build_by_cmake SOURCE BUILD PREFIX OPTION...
build_by_cmake() {
  local source=$1 build=$2 prefix=$3
  shift 3
  cmake -G Ninja -S "$source" -B "$build" --toolchain "$root/cmake/windows.cmake" \
    -DLX_TARGET_PREFIX="$prefix" -DCMAKE_INSTALL_PREFIX="$prefix" \
    -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_C_FLAGS_RELEASE="$windows_flags $(without_place "$source")" "$@"
  cmake --build "$build" --target install
}

# make_windows_libraries SOURCE PREFIX: the double-precision FFTW has the instruction sets of
# Debian's own for this machine, so that both plan alike, and its factors, so that both give the same
# bits. The other one is there for tests to compare errors with.
make_windows_libraries() {
  local source=$1 prefix=$2 package
  (build_fftw "$source/fftw3" "$source/fftw3-double" "$prefix" --enable-sse2 --enable-avx)
  (build_fftw "$source/fftw3" "$source/fftw3-single" "$prefix" --enable-float)
  build_by_cmake "$source/libpng1.6" "$source/libpng1.6-build" "$prefix" -DPNG_SHARED=OFF \
    -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF
  build_by_cmake "$source/tiff" "$source/tiff-build" "$prefix" -DBUILD_SHARED_LIBS=OFF -Djpeg=OFF \
    -Dlzma=OFF -Dzstd=OFF -Dwebp=OFF -Dlerc=OFF -Djbig=OFF -Dlibdeflate=OFF -Dcxx=OFF \
    -Dtiff-tools=OFF -Dtiff-tests=OFF -Dtiff-contrib=OFF -Dtiff-docs=OFF
  rm -rf "$prefix"/{bin,share,lib/*.la}
  # They are used elsewhere than they were installed.
  sed -i "s|$prefix|\${pcfiledir}/../..|g" "$prefix"/lib/pkgconfig/*.pc
  for package in fftw3 libpng1.6 tiff; do
    install -D -m 644 "$source/$package/debian/copyright" "$prefix/share/licences/$package.txt"
  done
  cp "$source/versions" "$prefix/share/licences/sources.txt"
}

# keep_windows_libraries RECIPE: finds or makes the libraries of this recipe and of the sources'
# newest versions among those that the user's clones share, and lets this clone's name lead there.
# They are built beside their place and moved in, so what stands there is whole. Clones that want
# the same at once build it once: the later one waits.
keep_windows_libraries() {
  local recipe=$1 cache=${XDG_CACHE_HOME:-$HOME/.cache}/glimmerblur kept
  mkdir -p "$cache"
  beside=$(mktemp -d "$cache/being-built-XXXXXX")
  trap 'rm -rf "$beside"' EXIT
  (fetch_sources "$beside/source" fftw3 libpng1.6 tiff)
  kept=$({ echo "$recipe"; cat "$beside/source/versions"; } | sha256sum | cut -c 1-16)
  kept=$cache/windows-libraries-$kept
  exec 9>"$kept.lock"
  flock 9
  if [ ! -e "$kept" ]; then
    echo "Building libraries for Windows" >&3
    make_windows_libraries "$beside/source" "$beside/made"
    echo "$recipe" >"$beside/made/recipe"
    mv -T "$beside/made" "$kept"
  fi
  ln -sfn "$kept" "$windows_libraries"
}

# build_windows_libraries: FFTW, libpng and libtiff for Windows, from Debian's source packages, once
# for a compiler, a zlib, this recipe and the versions of the sources. A clone that has them asks
# for no newer ones.
build_windows_libraries() {
  local recipe
  recipe=$(dpkg-query -W g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev libz-mingw-w64-dev &&
    { declare -f make_windows_libraries build_fftw build_by_cmake without_place; echo "$windows_flags"
      cat "$windows_angles"; } | sha256sum)
  [ "$recipe" != "$(cat "$windows_libraries/recipe" 2>/dev/null)" ] || return 0
  rm -rf "$windows_libraries"
  mkdir -p "$root/build"
  # By a shell of its own: in a function whose failure is asked about, none of its commands' stops it.
  quietly "The libraries for Windows could not be built." bash -euo pipefail -c \
    'source "$0/common.sh"; source "$0/windows.sh"; keep_windows_libraries "$1"' "$root/scripts" "$recipe"
}

# start_wine: keeps Wine's server running until the script ends; each program starts the faster.
start_wine() {
  export WINEPREFIX=$root/build/wine
  local try
  # Some one in three thousand programs ends as Wine starts it, and a server that is being ended may
  # be there again for one of its own programs.
  for try in 1 2 3; do
    ! start_wine_once || return 0
    echo "Wine did not start (try $try of 3)." >&2
  done
  return 1
}

start_wine_once() {
  # The first program sets the prefix up, and waits for its server to end.
  "$root/cmake/wine.sh" cmd /c exit || return
  # A server lingers after its last program, and takes no order to stay.
  wineserver -k || true
  trap 'wineserver -k || true' EXIT
  wineserver -p || return
  # The system's own programs start with the first one and stay, holding on to its outputs: whoever
  # read these to their end would wait for ever.
  "$root/cmake/wine.sh" cmd /c exit >/dev/null 2>&1 </dev/null
}
