# SPDX-License-Identifier: BSD-3-Clause
# GoogleTest: the machine's own, or built from its package's source where what we build does not
# run on the machine itself.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)

# Makes each test of a program a test of CTest, and under a sanitizer each suite: a start takes as
# long there as many tests do. With LX_TEST_WHOLE_PROGRAMS the program is one test, which leaves its
# account in test_results: an emulator would compile the program anew for each test, and for the list.
#   lx_discover_tests(program [SUITES] [PREFIX text] [ENVIRONMENT assignment] [APART pattern])
#     SUITES  each suite in every build, of a program that takes long to start
#     PREFIX  is put before names
#     APART   of suites whose tests stay apart under a sanitizer, too, because each takes long
function(lx_discover_tests program)
  cmake_parse_arguments(ARG "SUITES" "PREFIX;ENVIRONMENT;APART" "" ${ARGN})
  set(properties TIMEOUT 300)
  if(LX_TEST_WHOLE_PROGRAMS)
    set(account xml:${PROJECT_BINARY_DIR}/test_results/${ARG_PREFIX}${program}.xml)
    add_test(NAME ${ARG_PREFIX}${program} COMMAND ${program})
    set_tests_properties(${ARG_PREFIX}${program} PROPERTIES TIMEOUT 1800 ENVIRONMENT
                                                            "GTEST_OUTPUT=${account};${ARG_ENVIRONMENT}")
    return()
  endif()
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    set(properties TIMEOUT 1200)
  endif()
  if(ARG_ENVIRONMENT)
    list(APPEND properties ENVIRONMENT ${ARG_ENVIRONMENT})
  endif()
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize=" AND NOT ARG_SUITES)
    gtest_discover_tests(${program} TEST_PREFIX "${ARG_PREFIX}" TEST_LIST ${ARG_PREFIX}${program}_TESTS
                         DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
    return()
  endif()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${ARG_PREFIX}${program}_suites.cmake)
  file(
    GENERATE
    OUTPUT ${script}
    CONTENT
      "set(program [[$<TARGET_FILE:${program}>]])
set(prefix [[${ARG_PREFIX}]])
set(properties ${properties})
set(apart [[${ARG_APART}]])
set(list ${ARG_PREFIX}${program}_TESTS)
include([[${PROJECT_SOURCE_DIR}/cmake/test_suites.cmake]])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()

# How tests are compiled. -O1, where the build has it as fast as can be: they take nearly half as long
# to compile, and what they look at is compiled as ever. -fpch-preprocess: a compiler cache sees by it
# which precompiled headers were used.
set(LX_TEST_OPTIONS $<$<CONFIG:Release>:-O1> -fpch-preprocess)

# GoogleTest and what most tests include of the standard library, compiled once for all programs of
# tests. A program owns them, whose code is as position-independent as theirs, and nobody builds it.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}\n")
add_executable(lx_test_headers EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/test_headers.cpp)
target_link_libraries(lx_test_headers PRIVATE lx_flags GTest::gtest)
target_compile_options(lx_test_headers PRIVATE ${LX_TEST_OPTIONS})
target_precompile_headers(
  lx_test_headers
  PRIVATE
  <gtest/gtest.h>
  <algorithm>
  <cmath>
  <cstdint>
  <cstring>
  <filesystem>
  <fstream>
  <limits>
  <map>
  <memory>
  <random>
  <sstream>
  <string>
  <thread>
  <vector>)
