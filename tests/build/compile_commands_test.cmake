# SPDX-License-Identifier: BSD-3-Clause
# Looks at the compile commands of a build: of options that replace each other the last one counts.
#
#   cmake -D COMMANDS=FILE -D OPTIMISATION=-O1 -D TESTS_OPTIMISATION=-O1 -D DEBUGGING=-g1
#         -P compile_commands_test.cmake
#
# What is compiled for a program of tests has an optimisation of its own.
# "none" is for no such option.

# last_option(RESULT COMMAND PATTERN): the last word of COMMAND that matches, or "none".
function(last_option result command pattern)
  if(command MATCHES ".* (${pattern}) ")
    set(${result} ${CMAKE_MATCH_1} PARENT_SCOPE)
  else()
    set(${result} none PARENT_SCOPE)
  endif()
endfunction()

file(STRINGS ${COMMANDS} commands REGEX "^ *\"command\": ")
set(count 0)
foreach(command IN LISTS commands)
  # A compiler of resources means another thing by -O.
  if(NOT command MATCHES " -c ")
    continue()
  endif()
  last_option(optimisation "${command}" "-O[^ ]*")
  last_option(debugging "${command}" "-g[0-9]?")
  set(wanted ${OPTIMISATION})
  if(command MATCHES " -o [^ ]*(tests/[^ ]*_tests[^ /]*|lx(_viewer)?_test_headers)\\.dir/")
    set(wanted ${TESTS_OPTIMISATION})
  endif()
  if(NOT optimisation STREQUAL wanted OR NOT debugging STREQUAL DEBUGGING)
    message(SEND_ERROR "optimisation ${optimisation}, debugging ${debugging}; wanted "
                       "${wanted} and ${DEBUGGING}: ${command}")
  endif()
  math(EXPR count "${count} + 1")
endforeach()
if(count LESS 100)
  message(FATAL_ERROR "only ${count} commands in ${COMMANDS}")
endif()
message("${count} commands end in ${OPTIMISATION} and ${DEBUGGING}")
