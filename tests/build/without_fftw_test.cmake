# SPDX-License-Identifier: BSD-3-Clause
# Builds modules and program without FFTW, and looks for anything of it that came in all the same.
#
#   cmake -D SOURCE=FOLDER -D BUILD=FOLDER -D LAUNCHER=PROGRAM -P without_fftw_test.cmake
#
#   BUILD     stays, so that the next run builds only what has changed
#   LAUNCHER  of compilers; a cache finds what the release build has compiled, if BUILD is as deep in
#             the tree as that. Empty for none: nothing is optimised then, as that takes minutes.
cmake_minimum_required(VERSION 3.25)

# run(OUTPUT COMMAND...): what it says on both streams. Its failure is the test's.
function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}: ${result}\n${said}")
  endif()
  set(${output} "${said}" PARENT_SCOPE)
endfunction()

# A machine that has no FFTW: whoever asks for it finds one that cannot be had.
set(hiding ${BUILD}/hiding)
file(WRITE ${hiding}/fftw3.pc "Name: fftw3\nDescription: hidden\nVersion: 3\nRequires: hidden\n")
set(ENV{PKG_CONFIG_PATH} ${hiding})
run(said ${CMAKE_COMMAND} -E env bash -c "! pkg-config --exists fftw3")

set(flags -O0)
if(LAUNCHER)
  set(ENV{CCACHE_BASEDIR} ${SOURCE})
  set(ENV{CCACHE_NOHASHDIR} 1)
  set(ENV{CCACHE_SLOPPINESS} pch_defines,time_macros)
  set(flags "-O3 -DNDEBUG")
endif()
run(said ${CMAKE_COMMAND} -G Ninja -S ${SOURCE} -B ${BUILD} -D CMAKE_BUILD_TYPE=Release -D
    LX_WITH_FFTW=OFF -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -D CMAKE_C_COMPILER_LAUNCHER=${LAUNCHER}
    "-DCMAKE_CXX_FLAGS_RELEASE=${flags}")
run(said ${CMAKE_COMMAND} --build ${BUILD} --target glimmerhost)

# No header of it was read, and none of its libraries linked.
run(dependencies ninja -C ${BUILD} -t deps)
if(NOT dependencies MATCHES "fast_backend" OR dependencies MATCHES "fftw3[^/\n]*\\.h")
  message(SEND_ERROR "A header of FFTW was read, or none at all: ${CMAKE_MATCH_0}")
endif()
file(GLOB_RECURSE files ${BUILD}/LXTorvane_GlimmerBlur.so ${BUILD}/glimmerhost_pictures.so)
list(LENGTH files count)
if(NOT count EQUAL 4)
  message(SEND_ERROR "Three modules and the plug-in were expected: ${files}")
endif()
foreach(file IN LISTS files ITEMS ${BUILD}/bin/glimmerhost)
  run(needed readelf --wide --dynamic ${file})
  run(symbols nm --dynamic ${file})
  if(NOT needed MATCHES "NEEDED" OR needed MATCHES "\\(NEEDED\\)[^\n]*fftw" OR symbols MATCHES "fftw_")
    message(SEND_ERROR "${file} has something of FFTW:\n${needed}")
  endif()
endforeach()

# Whoever asks for what is not there is told why.
execute_process(COMMAND ${BUILD}/bin/glimmerhost info --engine exact ERROR_VARIABLE said
                RESULT_VARIABLE result)
if(result EQUAL 0 OR NOT said MATCHES "--engine must be fast, double or single .this build has no FFTW., not exact\n")
  message(SEND_ERROR "info --engine exact ends with ${result} and says: ${said}")
endif()
run(said ${BUILD}/bin/glimmerhost info)
if(NOT said MATCHES "engine fast\n" OR NOT said MATCHES "exact [^\n]*; not in this build, which has no FFTW\n")
  message(SEND_ERROR "info says: ${said}")
endif()
run(said ${BUILD}/bin/glimmerhost render ${SOURCE}/examples/night.png -o ${BUILD}/night.png --overwrite --radius
    9px)
