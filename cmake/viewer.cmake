# SPDX-License-Identifier: BSD-3-Clause
# The window where desktops find it: the program, and what menus and file managers read.
if(WIN32)
  install(TARGETS glimmerview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  return()
endif()

install(TARGETS glimmerview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT viewer)
install(FILES packaging/glimmerview.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications
        COMPONENT viewer)
set(folder ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
set(icons packaging/icons)
foreach(size IN ITEMS 16 24 32 48 64 128 256)
  install(FILES ${icons}/glimmerview-${size}.png DESTINATION ${folder}/${size}x${size}/apps
          RENAME glimmerview.png COMPONENT viewer)
endforeach()
install(FILES ${icons}/glimmerview.svg DESTINATION ${folder}/scalable/apps COMPONENT viewer)
