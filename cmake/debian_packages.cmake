# SPDX-License-Identifier: BSD-3-Clause
# The Debian packages: glimmerblur, and glimmerblur-dev for authors of hosts; glimmerview, where this
# build has the window; libglimmerblur0, and libglimmerblur-dev for authors of other programs; and one
# for each door that this build has.

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

# The copyright files: of what is linked in, and of FFTW only where a module has it. The library and the
# doors have nothing of anybody else's.
file(READ LICENSE licence)
string(REGEX REPLACE "^.*authors\n\n" "" licence "${licence}")
string(REGEX REPLACE "([^\n]*)\n" " \\1\n" BSD_3_CLAUSE "${licence}")
string(REPLACE "\n \n" "\n .\n" BSD_3_CLAUSE "${BSD_3_CLAUSE}")
if(LX_WITH_FFTW)
  file(READ packaging/copyright_fftw.in FFTW_PARAGRAPH)
endif()
file(READ packaging/copyright_licences.in text)
string(CONFIGURE "${text}" LICENCES @ONLY)
foreach(file copyright copyright_library copyright_viewer changelog shlibs)
  configure_file(packaging/${file}.in ${PROJECT_BINARY_DIR}/packaging/${file} @ONLY)
endforeach()

install(FILES packaging/README.md DESTINATION ${documents})
# This one is Debian's; the project's own is for people.
install(FILES CHANGELOG.md DESTINATION ${documents} OPTIONAL)
install_compressed(${PROJECT_BINARY_DIR}/glimmerhost.1 ${CMAKE_INSTALL_MANDIR}/man1 program)
if(TARGET glimmerview)
  install_compressed(${PROJECT_SOURCE_DIR}/docs/glimmerview.1 ${CMAKE_INSTALL_MANDIR}/man1 viewer)
endif()
install(FILES host/completion/glimmerhost.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME glimmerhost)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# For another architecture, Debian's tool that tells which packages a file needs is told of it by CPack's
# environment alone.
if(CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
  set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/packaging/architecture.cmake)
  file(CONFIGURE OUTPUT ${CPACK_PROJECT_CONFIG_FILE} CONTENT
       "set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})\n")
endif()
# Of our own libraries, which no package on this machine has.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/${LX_HOST_LIBRARY_FOLDER} ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})

# CPack adds scripts that call ldconfig wherever a library lies in a folder right below lib, unless there
# are others of these names; those that are not there are left out. A trigger does it for the library,
# and nobody has to for plug-ins.
set(no_scripts ${PROJECT_BINARY_DIR}/packaging/none/postinst
               ${PROJECT_BINARY_DIR}/packaging/none/postrm)

# Only what has files here becomes a package: a door whose programs' headers are not on the machine has
# none.
get_cmake_property(components_with_files COMPONENTS)

# lx_debian_package(component package section [COPYRIGHT name] [DEPENDS list] DESCRIPTION text): the
# package of a component, with what every package must have.
#   DEPENDS      packages that no shared library of others tells; a door that has the library inside
#                needs none
#   DESCRIPTION  its first line is the summary
macro(lx_debian_package component package section)
  cmake_parse_arguments(ARG "" "COPYRIGHT;DEPENDS;DESCRIPTION" "" ${ARGN})
  if("${component}" IN_LIST components_with_files)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    string(TOUPPER CPACK_DEBIAN_${component} variables)
    set(${variables}_PACKAGE_NAME ${package})
    set(${variables}_PACKAGE_SECTION ${section})
    set(${variables}_PACKAGE_DEPENDS ${ARG_DEPENDS})
    set(${variables}_PACKAGE_SHLIBDEPS ON)
    set(${variables}_DESCRIPTION ${ARG_DESCRIPTION})
    set(${variables}_PACKAGE_CONTROL_EXTRA ${no_scripts})
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${package})
    install(FILES ${PROJECT_BINARY_DIR}/packaging/${ARG_COPYRIGHT} DESTINATION ${folder}
            RENAME copyright COMPONENT ${component})
    install_compressed(${PROJECT_BINARY_DIR}/packaging/changelog ${folder} ${component})
    if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/lintian-overrides-${component})
      install(FILES packaging/lintian-overrides-${component} RENAME ${package} COMPONENT ${component}
              DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides)
    endif()
  endif()
endmacro()

lx_debian_package(
  program glimmerblur video COPYRIGHT copyright DESCRIPTION
  "lens defocus for moving pictures
Every frame is convolved with the shape of an aperture: a circle, an ellipse,
a polygon or a picture. Highlights can outweigh the rest: bright points open
into images of the aperture.
.
The package holds the plug-in module and glimmerhost, a program that renders
pictures and shots with it.")

lx_debian_package(
  viewer glimmerview video COPYRIGHT copyright_viewer DEPENDS "glimmerblur (= ${PROJECT_VERSION})"
  DESCRIPTION
  "lens defocus for moving pictures (window)
Every frame is convolved with the shape of an aperture: a circle, an ellipse,
a polygon or a picture. Highlights can outweigh the rest: bright points open
into images of the aperture.
.
The package holds a window in which the aperture is placed by hand on a
picture and seen live, values are animated over a shot, and the shot is
rendered to disk.")

lx_debian_package(
  development glimmerblur-dev libdevel COPYRIGHT copyright DEPENDS "glimmerblur (= ${PROJECT_VERSION})"
  DESCRIPTION
  "lens defocus for moving pictures (headers for hosts)
GlimmerBlur is a plug-in module. This package is for authors of programs that
load it: the interfaces that host and module share, a configuration for CMake
that finds them and the libraries that a host links, and a small host as an
example.")

set(library "libglimmerblur0 (= ${PROJECT_VERSION})")
set(defocus
    "GlimmerBlur convolves every frame with the shape of an aperture: a circle, an
ellipse, a polygon or a picture. Highlights can outweigh the rest: bright
points open into images of the aperture.
.")

lx_debian_package(
  library libglimmerblur0 libs COPYRIGHT copyright_library DESCRIPTION
  "lens defocus for other programs (shared library)
${defocus}
The package holds the library that other programs use it by.")
list(APPEND CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/packaging/shlibs
     ${PROJECT_SOURCE_DIR}/packaging/triggers)

lx_debian_package(
  library_development libglimmerblur-dev libdevel COPYRIGHT copyright_library DEPENDS "${library}"
  DESCRIPTION
  "lens defocus for other programs (development files)
${defocus}
The package holds the headers of the library, and what pkg-config and CMake
find it by.")

lx_debian_package(
  gegl glimmerblur-gegl graphics COPYRIGHT copyright_library DESCRIPTION
  "lens defocus for GIMP and gegl
${defocus}
The package holds an operation of GEGL, which GIMP and the command gegl offer.")

lx_debian_package(
  frei0r glimmerblur-frei0r video COPYRIGHT copyright_library DEPENDS "${library}" DESCRIPTION
  "lens defocus for ffmpeg and MLT editors
${defocus}
The package holds two frei0r plug-ins: a filter, and a mixer that takes the
aperture out of a second picture.")

lx_debian_package(
  ofx glimmerblur-ofx graphics COPYRIGHT copyright_library DESCRIPTION
  "lens defocus for compositing and grading programs
${defocus}
The package holds an OpenFX plug-in.")

lx_debian_package(
  python python3-glimmerblur python COPYRIGHT copyright_library
  DEPENDS "${library}, python3, python3-numpy" DESCRIPTION
  "lens defocus for Python
${defocus}
The package holds a module that blurs NumPy arrays.")
