# GoogleTest: the machine's own, or built from its package's source where what we build does not
# run on the machine itself.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)

# GoogleTest and what most tests include of the standard library, compiled once for all programs of
# tests. A program owns them, whose code is as position-independent as theirs, and nobody builds it.
# -fpch-preprocess: a compiler cache sees by it which precompiled headers were used.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}\n")
add_executable(lx_test_headers EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/test_headers.cpp)
target_link_libraries(lx_test_headers PRIVATE lx_flags GTest::gtest)
target_compile_options(lx_test_headers PRIVATE -fpch-preprocess)
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
