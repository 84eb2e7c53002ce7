# Read by CTest: the suites of a program as tests.
#   program     its file
#   prefix      goes before names
#   properties  of each test
#   list        the variable that receives the names
execute_process(COMMAND ${program} --gtest_list_tests OUTPUT_VARIABLE listed RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${program} does not list its tests: ${result}")
endif()
# A suite's name ends in a point and stands at the beginning of a line; its tests are indented.
string(REPLACE ";" "," listed "\n${listed}")
string(REGEX MATCHALL "\n[^ \n]+\\.[^\n]*(\n  [^\n]*)+" suites "${listed}")
set(${list} "")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "^\n([^ \n]+)\\..*" "\\1" name "${suite}")
  # The larger ones first, so that no processor waits for one of them in the end.
  string(REGEX MATCHALL "\n  " tests "${suite}")
  list(LENGTH tests count)
  add_test("${prefix}${name}" ${program} "--gtest_filter=${name}.*")
  set_tests_properties("${prefix}${name}" PROPERTIES ${properties} COST ${count})
  list(APPEND ${list} "${prefix}${name}")
endforeach()
