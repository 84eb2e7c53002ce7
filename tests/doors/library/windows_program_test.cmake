# SPDX-License-Identifier: BSD-3-Clause
# Installs the library and the frei0r plug-ins as the zip for Windows has them, and builds the program
# of docs/library.md against it. It runs with the library beside it and nothing else at hand, not even
# the compiler's runtimes.
#
#   cmake -D PAGE=FILE -D BUILD=FOLDER -D FOLDER=FOLDER -D COMPILER=PROGRAM -D WINE=SCRIPT -P windows_program_test.cmake
#
#   FOLDER  receives all of it
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/docs_program.cmake)

file(REMOVE_RECURSE ${FOLDER})
set(prefix ${FOLDER}/zip)
foreach(component library library_development frei0r)
  run(said ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --component ${component})
endforeach()
file(GLOB_RECURSE files RELATIVE ${prefix} ${prefix}/*.dll ${prefix}/*.a ${prefix}/*.h ${prefix}/*.hpp)
list(SORT files)
set(expected
    frei0r-1/glimmerblur.dll frei0r-1/glimmerblur_aperture.dll libglimmerblur/bin/libglimmerblur-0.dll
    libglimmerblur/include/glimmerblur.h libglimmerblur/include/glimmerblur.hpp
    libglimmerblur/lib/libglimmerblur.dll.a)
if(NOT files STREQUAL expected)
  message(FATAL_ERROR "The zip holds ${files}, not ${expected}")
endif()

write_program(${PAGE} ${FOLDER}/example.c)
set(library ${prefix}/libglimmerblur)
run(said ${COMPILER} -std=c11 -Wall -Wextra -Wpedantic -Werror ${FOLDER}/example.c -I${library}/include
    -L${library}/lib -lglimmerblur -o ${library}/bin/example.exe)
run(said ${CMAKE_COMMAND} -E env WITHOUT_RUNTIMES=1 ${WINE} ${library}/bin/example.exe)
check("${said}")
