# SPDX-License-Identifier: BSD-3-Clause
# Installs the library and its development files, and builds the program of docs/library.md with them
# as its author would: by the compiler and pkg-config, and by CMake. It runs both times.
#
#   cmake -D PAGE=FILE -D BUILD=FOLDER -D LIBRARIES=lib -D VERSION=5.13 -D FOLDER=FOLDER -P docs_program_test.cmake
#
#   LIBRARIES  the folder of libraries in an installation
#   FOLDER     receives all of it
cmake_minimum_required(VERSION 3.25)

# run(OUTPUT COMMAND...): what it says. Its failure is the test's.
function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}: ${result}\n${said}")
  endif()
  set(${output} "${said}" PARENT_SCOPE)
endfunction()

# check(WORDS): an impulse of 1000 keeps its sum, give or take what floats round.
function(check said)
  if(NOT said MATCHES "(^|[^0-9])(1000\\.[0-4]|999\\.[5-9])[0-9]*$")
    message(FATAL_ERROR "The program says: ${said}")
  endif()
endfunction()

file(REMOVE_RECURSE ${FOLDER})
set(prefix ${FOLDER}/prefix)
foreach(component library library_development)
  run(said ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --component ${component})
endforeach()

# Between the fences of the page's first block of C.
file(READ ${PAGE} text)
string(FIND "${text}" "```c\n" start)
if(start EQUAL -1)
  message(FATAL_ERROR "${PAGE} has no program.")
endif()
math(EXPR start "${start} + 5")
string(SUBSTRING "${text}" ${start} -1 text)
string(FIND "${text}" "\n```" end)
string(SUBSTRING "${text}" 0 ${end} text)
file(WRITE ${FOLDER}/example.c "${text}\n")

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBRARIES}/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBRARIES})
run(version pkg-config --modversion glimmerblur)
if(NOT version STREQUAL VERSION)
  message(FATAL_ERROR "pkg-config tells of ${version}.")
endif()
run(flags pkg-config --cflags --libs glimmerblur)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(said cc -std=c11 -Wall -Wextra -Wpedantic -Werror ${FOLDER}/example.c ${flags} -o ${FOLDER}/by_pkg_config)
run(said ${FOLDER}/by_pkg_config)
check("${said}")

# A version that is older than wanted is none.
file(
  WRITE ${FOLDER}/CMakeLists.txt
  "cmake_minimum_required(VERSION 3.25)
project(Example VERSION 1 LANGUAGES C)
find_package(libglimmerblur 99 QUIET)
if(libglimmerblur_FOUND)
  message(FATAL_ERROR \"There is no 99.\")
endif()
find_package(libglimmerblur ${VERSION} REQUIRED)
add_executable(example example.c)
target_link_libraries(example libglimmerblur::libglimmerblur)
")
# Without the way to the library that the compiler was told of: the program knows it by itself.
set(ENV{LD_LIBRARY_PATH} "")
run(said ${CMAKE_COMMAND} -G Ninja -S ${FOLDER} -B ${FOLDER}/build -D CMAKE_PREFIX_PATH=${prefix})
run(said ${CMAKE_COMMAND} --build ${FOLDER}/build)
run(said ${FOLDER}/build/example)
check("${said}")
