# SPDX-License-Identifier: BSD-3-Clause
# The Debian packages: glimmerblur, and glimmerblur-dev for authors of hosts.

# install_compressed(file folder component [name]): under its own name or another, with .gz behind it.
# Without name and time in it, so that it is the same each time.
function(install_compressed file folder component)
  cmake_path(GET file FILENAME name)
  if(ARGC GREATER 3)
    set(name ${ARGV3})
  endif()
  install(FILES ${file} DESTINATION ${folder} COMPONENT ${component} RENAME ${name})
  install(CODE "execute_process(COMMAND gzip -9nf \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/${name}\"
                COMMAND_ERROR_IS_FATAL ANY)" COMPONENT ${component})
endfunction()

# The copyright file: of what is linked in, and of FFTW only where a module has it.
file(READ LICENSE licence)
string(REGEX REPLACE "^.*authors\n\n" "" licence "${licence}")
string(REGEX REPLACE "([^\n]*)\n" " \\1\n" BSD_3_CLAUSE "${licence}")
string(REPLACE "\n \n" "\n .\n" BSD_3_CLAUSE "${BSD_3_CLAUSE}")
if(LX_WITH_FFTW)
  file(READ packaging/copyright_fftw.in FFTW_PARAGRAPH)
endif()
configure_file(packaging/copyright.in ${PROJECT_BINARY_DIR}/packaging/copyright @ONLY)
configure_file(packaging/changelog.in ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)

foreach(component program development)
  set(folder ${documents})
  if(component STREQUAL development)
    set(folder ${documents}-dev)
  endif()
  install(FILES ${PROJECT_BINARY_DIR}/packaging/copyright DESTINATION ${folder} COMPONENT ${component})
  install_compressed(${PROJECT_BINARY_DIR}/packaging/changelog ${folder} ${component})
endforeach()

install(FILES packaging/README.md DESTINATION ${documents})
# This one is Debian's; the project's own is for people.
install(FILES CHANGELOG.md DESTINATION ${documents} OPTIONAL)
install_compressed(${PROJECT_BINARY_DIR}/glimmerhost.1 ${CMAKE_INSTALL_MANDIR}/man1 program)
install(FILES host/completion/glimmerhost.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME glimmerhost)

install(FILES packaging/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        RENAME glimmerblur)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME glimmerblur)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/${LX_HOST_LIBRARY_FOLDER})
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
    "lens defocus for moving pictures
Every frame is convolved with the shape of an aperture: a circle, an ellipse,
a polygon or a picture. Highlights can outweigh the rest: bright points open
into images of the aperture.
.
The package holds the plug-in module and glimmerhost, a program that renders
pictures and shots with it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME glimmerblur-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "glimmerblur (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "lens defocus for moving pictures (headers for hosts)
GlimmerBlur is a plug-in module. This package is for authors of programs that
load it: the interfaces that host and module share, a configuration for CMake
that finds them and the libraries that a host links, and a small host as an
example.")
