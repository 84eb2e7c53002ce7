# SPDX-License-Identifier: BSD-3-Clause
# Builds the example of a host as its author would, against an installation, and has it render.
#
#   cmake -D INSTALLED=FOLDER -D BUILD=FOLDER -P host_example_test.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${BUILD})
set(commands
    "${CMAKE_COMMAND} -G Ninja -S ${INSTALLED}/share/doc/glimmerblur-dev/examples/host -B ${BUILD} -DCMAKE_PREFIX_PATH=${INSTALLED} -DCMAKE_CXX_FLAGS=-Wall -DCMAKE_COMPILE_WARNING_AS_ERROR=ON"
    "${CMAKE_COMMAND} --build ${BUILD}"
    "${BUILD}/minimal_host ${INSTALLED}/lib/no-such-module.so"
    "${CMAKE_CTEST_COMMAND} --test-dir ${BUILD} --verbose --no-tests=error")
set(ends 0 0 2 0)
foreach(command end IN ZIP_LISTS commands ends)
  separate_arguments(words UNIX_COMMAND "${command}")
  execute_process(COMMAND ${words} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
  if(NOT result EQUAL end)
    message(FATAL_ERROR "${command}: ${result}\n${said}")
  endif()
endforeach()
if(NOT said MATCHES "One pixel became [4-7][0-9], with (0\\.9[89]|1\\.0[01]|1 )")
  message(FATAL_ERROR "The example says: ${said}")
endif()
