# SPDX-License-Identifier: BSD-3-Clause
# What programs for Windows bring along: the compiler's shared runtimes, without which none of them
# starts, and the licences of all that is linked in or shipped.
foreach(runtime libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime} OUTPUT_VARIABLE file
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  # Nine tenths of them are symbols for a debugger.
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/runtimes)
  execute_process(COMMAND ${CMAKE_STRIP} -o ${PROJECT_BINARY_DIR}/runtimes/${runtime} ${file}
                  COMMAND_ERROR_IS_FATAL ANY)
  install(PROGRAMS ${PROJECT_BINARY_DIR}/runtimes/${runtime} DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()

# Those of Debian's packages as they stand on this machine; those of what is built from source
# packages were kept by that build.
install(FILES LICENSE DESTINATION licences RENAME glimmerblur.txt)
foreach(package gcc-mingw-w64-base libcli11-dev libtomlplusplus-dev libxxhash-dev libz-mingw-w64-dev
                mingw-w64-x86-64-dev nlohmann-json3-dev)
  install(FILES /usr/share/doc/${package}/copyright DESTINATION licences RENAME ${package}.txt)
endforeach()
install(DIRECTORY ${LX_TARGET_PREFIX}/share/licences/ DESTINATION licences)
# Those that the texts above refer to by name.
foreach(licence Apache-2.0 Artistic GFDL-1.2 GPL-2 GPL-3 LGPL-2 LGPL-2.1)
  install(FILES /usr/share/common-licenses/${licence} DESTINATION licences RENAME ${licence}.txt)
endforeach()

configure_file(cmake/windows_readme.txt.in ${PROJECT_BINARY_DIR}/README.txt @ONLY
               NEWLINE_STYLE CRLF)
install(FILES ${PROJECT_BINARY_DIR}/README.txt DESTINATION .)
