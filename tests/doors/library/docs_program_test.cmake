# SPDX-License-Identifier: BSD-3-Clause
# Installs the library and its development files, and builds the program of docs/library.md with them
# as its author would: by the compiler and pkg-config, and by CMake. It runs both times.
#
#   cmake -D PAGE=FILE -D BUILD=FOLDER -D LIBRARIES=lib -D VERSION=5.13 -D FOLDER=FOLDER -P docs_program_test.cmake
#
#   LIBRARIES  the folder of libraries in an installation
#   FOLDER     receives all of it
cmake_minimum_required(VERSION 3.25)

include(${CMAKE_CURRENT_LIST_DIR}/docs_program.cmake)

file(REMOVE_RECURSE ${FOLDER})
set(prefix ${FOLDER}/prefix)
foreach(component library library_development)
  run(said ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --component ${component})
endforeach()

write_program(${PAGE} ${FOLDER}/example.c)
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

# A library of another major version than was wanted is none.
file(
  WRITE ${FOLDER}/CMakeLists.txt
  "cmake_minimum_required(VERSION 3.25)
project(Example VERSION 1 LANGUAGES C)
foreach(version 4 99)
  find_package(libglimmerblur \${version} QUIET)
  if(libglimmerblur_FOUND)
    message(FATAL_ERROR \"This is no \${version}.\")
  endif()
endforeach()
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
