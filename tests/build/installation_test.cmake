# SPDX-License-Identifier: BSD-3-Clause
# Installs a build as a package would, and looks at what is where.
#
#   cmake -D BUILD=FOLDER -D LIBRARIES=lib/x86_64-linux-gnu -D INSTALLED=FOLDER -P installation_test.cmake
#
#   LIBRARIES  the folder of libraries in an installation
#   INSTALLED  receives the installation, for tests that need one
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${INSTALLED})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${INSTALLED} OUTPUT_QUIET
                COMMAND_ERROR_IS_FATAL ANY)

# A host of somebody else has libraries of these names, and finds them where all libraries are.
file(GLOB public ${INSTALLED}/${LIBRARIES}/*.so*)
list(FILTER public EXCLUDE REGEX "/libglimmerblur\\.so")
if(public)
  message(SEND_ERROR "In the public folder of libraries: ${public}")
endif()
foreach(library KernelExec Quantel_KernelMedia)
  if(NOT EXISTS ${INSTALLED}/${LIBRARIES}/glimmerblur/host/lib${library}.so)
    message(SEND_ERROR "Not in the private folder of libraries: ${library}")
  endif()
endforeach()

# By its own paths alone: each engine's module finds the libraries, from wherever this was put.
foreach(engine fast exact double single)
  execute_process(COMMAND ${INSTALLED}/bin/glimmerhost info --engine ${engine} OUTPUT_VARIABLE said
                  ERROR_VARIABLE said RESULT_VARIABLE result)
  if(NOT result EQUAL 0 OR NOT said MATCHES "engine ${engine}\n")
    message(SEND_ERROR "info --engine ${engine}: ${result}\n${said}")
  endif()
endforeach()

# No document names a command that only the tree has.
set(documents ${INSTALLED}/share/doc/glimmerblur)
file(GLOB_RECURSE texts ${documents}/*.md ${documents}/*.session ${documents}/*.sh)
list(LENGTH texts count)
if(count LESS 5 OR NOT ${documents}/README.md IN_LIST texts)
  message(SEND_ERROR "Only ${count} documents: ${texts}")
endif()
foreach(text IN LISTS texts)
  file(STRINGS ${text} lines REGEX "scripts/")
  if(lines)
    message(SEND_ERROR "${text} names scripts: ${lines}")
  endif()
endforeach()

foreach(compressed share/man/man1/glimmerhost.1 share/doc/glimmerblur/changelog
                   share/doc/glimmerblur-dev/changelog)
  if(NOT EXISTS ${INSTALLED}/${compressed}.gz OR EXISTS ${INSTALLED}/${compressed})
    message(SEND_ERROR "Not compressed: ${compressed}")
  endif()
endforeach()
