#!/bin/sh
# SPDX-License-Identifier: BSD-3-Clause
# Runs a program built for Windows, with the compiler's shared runtimes at hand.
#
#   wine.sh program [argument...]
#
# Wine keeps its registry and drives in WINEPREFIX, a folder of the build's own unless it is set.
set -eu

: "${WINEPREFIX:=$(realpath "$(dirname "$0")/..")/build/wine}"
# In the plain locale names of files could only be ASCII.
export WINEPREFIX WINEDEBUG=-all LC_ALL=C.UTF-8

# WITHOUT_RUNTIMES is for programs that must do without.
triple=x86_64-w64-mingw32
runtimes=$(dirname "$($triple-g++-posix -print-file-name=libstdc++-6.dll)")
[ -n "${WITHOUT_RUNTIMES:-}" ] || export WINEPATH="Z:$runtimes;Z:/usr/$triple/lib"

# Once, by whoever comes first. Without a display only the driver that draws nothing has windows,
# and a console needs one. A program that crashes is not to wait for somebody to close a window.
mkdir -p "$WINEPREFIX"
if [ ! -e "$WINEPREFIX/ready" ]; then
  (
    flock 9
    if [ ! -e "$WINEPREFIX/ready" ]; then
      wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
      wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
      wineserver -w
      touch "$WINEPREFIX/ready"
    fi
  ) 9>"$WINEPREFIX/lock" >/dev/null 2>&1 </dev/null
fi

exec wine "$@"
