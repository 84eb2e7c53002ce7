# SPDX-License-Identifier: BSD-3-Clause
# Read by CTest: the suites of a program as tests.
#   program     its file
#   prefix      goes before names
#   properties  of each test
#   apart       a pattern of suites whose tests are long enough to be started one by one; empty for
#               none
#   list        the variable that receives the names
execute_process(COMMAND ${program} --gtest_list_tests OUTPUT_VARIABLE listed RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${program} does not list its tests: ${result}")
endif()
# A suite's name ends in a point and stands at the beginning of a line; its tests are indented.
string(REPLACE ";" "," listed "\n${listed}")
string(REGEX MATCHALL "\n[^ \n]+\\.[^\n]*(\n  [^\n]*)+" suites "${listed}")
set(${list} "")
# The longer ones first, so that no processor waits for one of them in the end: what is started one
# by one, then the suites of many tests.
set(costOfOneApart 500)
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "^\n([^ \n]+)\\..*" "\\1" name "${suite}")
  string(REGEX MATCHALL "\n  [^ \n]+" tests "${suite}")
  if(apart AND name MATCHES "${apart}")
    set(cost ${costOfOneApart})
    list(TRANSFORM tests REPLACE "^\n  " "")
  else()
    list(LENGTH tests cost)
    set(tests "*")
  endif()
  foreach(test IN LISTS tests)
    string(REGEX REPLACE "\\.\\*$" "" title "${name}.${test}")
    add_test("${prefix}${title}" ${program} "--gtest_filter=${name}.${test}")
    set_tests_properties("${prefix}${title}" PROPERTIES ${properties} COST ${cost})
    list(APPEND ${list} "${prefix}${title}")
  endforeach()
endforeach()
