# SPDX-License-Identifier: BSD-3-Clause
# libglimmerblur where other programs find it: the shared object, and for their authors the header, and
# what pkg-config and find_package(libglimmerblur) read.
set_target_properties(glimmerblur PROPERTIES EXPORT_NAME libglimmerblur)
set(library_folder ${CMAKE_INSTALL_LIBDIR})
set(library_runtimes ${CMAKE_INSTALL_BINDIR})
set(library_headers ${CMAKE_INSTALL_INCLUDEDIR})
if(WIN32)
  # A folder of its own in the zip, which is one of a program. Without any other DLL: a C program has no
  # use for a C++ runtime beside it.
  set_target_properties(glimmerblur PROPERTIES RUNTIME_OUTPUT_NAME glimmerblur-0)
  target_link_options(glimmerblur PRIVATE -static)
  set(library_folder libglimmerblur/lib)
  set(library_runtimes libglimmerblur/bin)
  set(library_headers libglimmerblur/include)
endif()

install(
  TARGETS glimmerblur
  EXPORT libglimmerblur
  RUNTIME DESTINATION ${library_runtimes} COMPONENT library
  LIBRARY DESTINATION ${library_folder} COMPONENT library NAMELINK_COMPONENT library_development
  ARCHIVE DESTINATION ${library_folder} COMPONENT library_development
  INCLUDES
  DESTINATION ${library_headers})
install(FILES doors/library/glimmerblur.h doors/library/glimmerblur.hpp
        DESTINATION ${library_headers} COMPONENT library_development)

# Found from where it lies, as an installation may have been moved. But not where the system's own
# libraries are: a compiler that is told of their folders once more searches them in another order.
set(library_prefix ${CMAKE_INSTALL_PREFIX})
if(NOT library_prefix STREQUAL "/usr")
  cmake_path(SET folder /${library_folder}/pkgconfig)
  cmake_path(SET library_prefix /)
  cmake_path(RELATIVE_PATH library_prefix BASE_DIRECTORY ${folder})
  set(library_prefix "\${pcfiledir}/${library_prefix}")
endif()
configure_file(packaging/glimmerblur.pc.in ${PROJECT_BINARY_DIR}/packaging/glimmerblur.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/glimmerblur.pc DESTINATION ${library_folder}/pkgconfig
        COMPONENT library_development)

include(CMakePackageConfigHelpers)
set(configuration ${PROJECT_BINARY_DIR}/packaging/libglimmerblurConfigVersion.cmake)
write_basic_package_version_file(${configuration} COMPATIBILITY SameMajorVersion)
install(FILES ${configuration} DESTINATION ${library_folder}/cmake/libglimmerblur
        COMPONENT library_development)
install(EXPORT libglimmerblur FILE libglimmerblurConfig.cmake NAMESPACE libglimmerblur::
        DESTINATION ${library_folder}/cmake/libglimmerblur COMPONENT library_development)
if(NOT WIN32)
  install(FILES docs/library.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libglimmerblur-dev
          COMPONENT library_development)
endif()
