# SPDX-License-Identifier: BSD-3-Clause
# Shared by the tests that build the program of docs/library.md.

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

# write_program(PAGE FILE): the page's first block of C, which stands between fences.
function(write_program page file)
  file(READ ${page} text)
  string(FIND "${text}" "```c\n" start)
  if(start EQUAL -1)
    message(FATAL_ERROR "${page} has no program.")
  endif()
  math(EXPR start "${start} + 5")
  string(SUBSTRING "${text}" ${start} -1 text)
  string(FIND "${text}" "\n```" end)
  string(SUBSTRING "${text}" 0 ${end} text)
  file(WRITE ${file} "${text}\n")
endfunction()
