# What a package has beside the targets, and the packages by CPack: a zip for Windows, a Debian
# package elsewhere.
set(documents ${CMAKE_INSTALL_DATADIR}/doc/glimmerblur)
install(FILES README.md DESTINATION ${documents})
install(DIRECTORY docs examples DESTINATION ${documents} PATTERN "*.py" EXCLUDE
        PATTERN __pycache__ EXCLUDE PATTERN "*.1" EXCLUDE)
if(NOT WIN32)
  install(FILES ${PROJECT_BINARY_DIR}/glimmerhost.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES host/completion/glimmerhost.bash
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME glimmerhost)
endif()

set(CPACK_PACKAGE_NAME glimmerblur)
set(CPACK_PACKAGE_VENDOR Vantrell)
set(CPACK_PACKAGE_CONTACT "Vantrell <packages@vantrell.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "lens defocus for moving pictures")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_STRIP_FILES ON)

if(WIN32)
  include(cmake/windows_runtimes.cmake)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME GlimmerBlur-${PROJECT_VERSION}-windows-x86_64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION video)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/${LX_HOST_LIBRARY_FOLDER})
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
      "Every frame is convolved, in double precision, with the shape of an aperture:
a circle, an ellipse, a polygon or a picture. Highlights can be made to
outweigh the rest, so that bright points open into images of the aperture.
.
The package holds the plug-in module, the host's two libraries and
glimmerhost, a program to use the module with.")
endif()
include(CPack)
