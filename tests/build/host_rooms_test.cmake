# SPDX-License-Identifier: BSD-3-Clause
# Fails where a room of the program includes from one that stands above it, links one, or has become
# too large to be looked through.
#   ROOT  the tree
# Link order alone would let a header through.
cmake_minimum_required(VERSION 3.25)

# From below, each with the name of its target.
set(rooms support pictures films looks module shots render session farm glimmerhost)
set(targets host_support pictures films looks host_module shots render session farm glimmerhost)
set(mostFiles 40)

set(wrong "")
set(read 0)
set(below "")
foreach(room target IN ZIP_LISTS rooms targets)
  list(APPEND below ${room})
  file(GLOB_RECURSE sources ${ROOT}/host/${room}/*.h ${ROOT}/host/${room}/*.cpp)
  foreach(source IN LISTS sources)
    math(EXPR read "${read} + 1")
    file(STRINGS ${source} includes REGEX "^#include \"host/")
    file(RELATIVE_PATH name ${ROOT} ${source})
    foreach(include IN LISTS includes)
      string(REGEX REPLACE "^#include \"host/([^/\"]*).*" "\\1" of "${include}")
      if(NOT of IN_LIST below)
        string(APPEND wrong "\n${name}: ${include}")
      endif()
    endforeach()
  endforeach()
  file(READ ${ROOT}/host/${room}/CMakeLists.txt text)
  foreach(other otherTarget IN ZIP_LISTS rooms targets)
    if(NOT other IN_LIST below AND text MATCHES "lx::${otherTarget}[^a-z_]")
      string(APPEND wrong "\nhost/${room}/CMakeLists.txt: lx::${otherTarget}")
    endif()
  endforeach()
endforeach()

file(GLOB_RECURSE entries LIST_DIRECTORIES true ${ROOT}/host/*)
foreach(folder IN LISTS entries)
  if(IS_DIRECTORY ${folder})
    file(GLOB files LIST_DIRECTORIES false ${folder}/*)
    list(LENGTH files count)
    if(count GREATER mostFiles)
      string(APPEND wrong "\n${folder}: ${count} files, and ${mostFiles} are the most")
    endif()
  endif()
endforeach()

if(read LESS 150)
  message(FATAL_ERROR "Only ${read} sources of the program were found.")
endif()
if(wrong)
  message(FATAL_ERROR "What the rooms of the program may not have:${wrong}")
endif()
