# SPDX-License-Identifier: BSD-3-Clause
# What a package has beside the targets, and the packages by CPack: a zip for Windows, Debian
# packages elsewhere, one of the program and one for authors of hosts.
set(documents ${CMAKE_INSTALL_DATADIR}/doc/glimmerblur)

# Documents are written for the tree, where the program is a script that builds it first.
install(
  DIRECTORY docs examples
  DESTINATION ${documents}
  PATTERN "*.py" EXCLUDE
  PATTERN __pycache__ EXCLUDE
  PATTERN "*.1.in" EXCLUDE
  PATTERN "*.1" EXCLUDE
  PATTERN inside.md EXCLUDE
  PATTERN soak.* EXCLUDE
  PATTERN examples/host EXCLUDE)
configure_file(cmake/name_program.cmake.in ${PROJECT_BINARY_DIR}/name_program.cmake @ONLY)
install(SCRIPT ${PROJECT_BINARY_DIR}/name_program.cmake)

set(CPACK_PACKAGE_NAME glimmerblur)
set(CPACK_PACKAGE_VENDOR Vantrell)
set(CPACK_PACKAGE_CONTACT "Vantrell <packages@vantrell.example>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_STRIP_FILES ON)

if(TARGET glimmerview)
  include(cmake/viewer.cmake)
endif()
if(WIN32)
  include(cmake/windows_runtimes.cmake)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME GlimmerBlur-${PROJECT_VERSION}-windows-x86_64)
else()
  include(cmake/debian_packages.cmake)
endif()
include(CPack)
