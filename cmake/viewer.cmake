# SPDX-License-Identifier: BSD-3-Clause
# The window where desktops find it: the program with its icon in it, and what menus and file managers
# read.
set(icons ${PROJECT_SOURCE_DIR}/packaging/icons)
set(icon_sizes 16 24 32 48 64 128 256)
list(TRANSFORM icon_sizes REPLACE "(.+)" "${icons}/glimmerview-\\1.png" OUTPUT_VARIABLE icon_files)
# As :/glimmerview-SIZE.png, for where no theme of the system has it.
qt_add_resources(glimmerview glimmerview_icons PREFIX / BASE ${icons} FILES ${icon_files})

if(WIN32)
  target_sources(glimmerview PRIVATE ${PROJECT_SOURCE_DIR}/packaging/glimmerview.rc)
  install(TARGETS glimmerview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  return()
endif()

install(TARGETS glimmerview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT viewer)
install(FILES packaging/glimmerview.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications
        COMPONENT viewer)
set(folder ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(size IN LISTS icon_sizes)
  install(FILES ${icons}/glimmerview-${size}.png DESTINATION ${folder}/${size}x${size}/apps
          RENAME glimmerview.png COMPONENT viewer)
endforeach()
install(FILES ${icons}/glimmerview.svg DESTINATION ${folder}/scalable/apps COMPONENT viewer)
