# SPDX-License-Identifier: BSD-3-Clause
# The repetition of the folders' build files.

# What every target of the tree is compiled with. -ffp-contract=off: a fused multiply
# and add rounds once where the source rounds twice, and results would depend on the
# processor. -Wno-restrict: GCC 12 sees overlaps in the operators of std::string that are
# not there. Clang, which builds the fuzz targets, has neither that nor the other GNU option.
add_library(lx_flags INTERFACE)
target_compile_features(lx_flags INTERFACE cxx_std_20)
target_include_directories(lx_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(
  lx_flags
  INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
            -fvisibility=hidden -fvisibility-inlines-hidden
            $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique> -ffp-contract=off)

# For what is delivered. Clang, unlike GCC, counts signs among them.
set(LX_CONVERSION_WARNINGS -Wconversion $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# The build tree looks like the installed one: what is run in bin, modules in a folder of their own
# in lib.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})

# The host's two libraries stand in a folder that only our own files look into: a host that is
# installed beside us brings its own, under the same names.
set(LX_HOST_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/glimmerblur/host)

# lx_find_host_libraries(target folder): an installed file of that folder finds them from where it is.
function(lx_find_host_libraries target folder)
  cmake_path(RELATIVE_PATH LX_HOST_LIBRARY_FOLDER BASE_DIRECTORY ${folder} OUTPUT_VARIABLE path)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH $ORIGIN/${path})
endfunction()

# One library a folder: lx_library(name SOURCES ... LINKS ...), linked by others as
# lx::name.
function(lx_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(lx_${name} STATIC ${ARG_SOURCES})
  add_library(lx::${name} ALIAS lx_${name})
  target_link_libraries(lx_${name} PUBLIC lx_flags ${ARG_LINKS})
  # Not for tests, which take numbers apart in ways that a product would not.
  target_compile_options(lx_${name} PRIVATE ${LX_CONVERSION_WARNINGS})
endfunction()

# Gives a program of tests the headers that are compiled once for all such programs. Its sources
# include what they use all the same: the debug build compiles them without.
function(lx_use_test_headers name)
  target_compile_options(${name} PRIVATE ${LX_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM lx_test_headers)
endfunction()

# One test program: lx_test(name SOURCES ... LINKS ... [APART pattern]). Each test in it becomes a
# test of CTest; see lx_discover_tests for APART.
function(lx_test name)
  cmake_parse_arguments(ARG "" "APART" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE lx_flags ${ARG_LINKS} GTest::gtest GTest::gtest_main)
  lx_use_test_headers(${name})
  lx_discover_tests(${name} APART "${ARG_APART}")
endfunction()

# For tests that read broken pictures: the picture library loses strings then. The address sanitizer
# forgives that by the library's place in the stack, which only its slow way through the stack sees.
# With that all tests would take two to three times as long, and those that read thousands of broken
# pictures many minutes: these do without the search for leaks.
#   lx_read_broken_pictures(program pattern option)   pattern: of the suites' names
#                                                     option: of the sanitizer
function(lx_read_broken_pictures name pattern option)
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize=address")
    return()
  endif()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}_leaks.cmake)
  file(WRITE ${script} "set(tests \${${name}_TESTS})
list(FILTER tests INCLUDE REGEX \"${pattern}\")
if(tests)
  set_tests_properties(\${tests} PROPERTIES ENVIRONMENT ASAN_OPTIONS=${option})
endif()
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()

# One benchmark program: lx_benchmark(name SOURCES ... LINKS ...).
function(lx_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE lx_flags ${ARG_LINKS} benchmark::benchmark)
endfunction()

# Compiles each header alone, so that none leans on what its reader included before.
function(lx_check_headers name)
  cmake_parse_arguments(ARG "" "" "HEADERS;LINKS" ${ARGN})
  set(sources)
  foreach(header IN LISTS ARG_HEADERS)
    string(MAKE_C_IDENTIFIER ${header} identifier)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/header_alone_${identifier}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n")
    list(APPEND sources ${source})
  endforeach()
  add_library(${name} OBJECT ${sources})
  target_link_libraries(${name} PRIVATE lx_flags ${ARG_LINKS})
endfunction()

# Installs headers for authors of hosts, in the folders that they include them from. Not in the zip for
# Windows, which is for who runs the program.
function(lx_install_headers)
  if(WIN32)
    return()
  endif()
  foreach(header IN LISTS ARGN)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} COMPONENT development
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/glimmerblur/${folder})
  endforeach()
endfunction()
