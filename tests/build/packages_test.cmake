# SPDX-License-Identifier: BSD-3-Clause
# Packs a build as Debian packages, and looks at what each holds and asks for.
#
#   cmake -D BUILD=FOLDER -D LIBRARIES=lib/x86_64-linux-gnu -D VERSION=5.13 -D PACKED=FOLDER -P packages_test.cmake
#
#   LIBRARIES  the folder of libraries in an installation
#   PACKED     receives the packages
cmake_minimum_required(VERSION 3.25)

# run(OUTPUT COMMAND...): what it says. Its failure is the test's.
function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE said ERROR_VARIABLE complained RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}: ${result}\n${said}${complained}")
  endif()
  set(${output} "${said}" PARENT_SCOPE)
endfunction()

# Without compression, which takes most of the time.
file(REMOVE_RECURSE ${PACKED})
run(said ${CMAKE_CPACK_COMMAND} -G DEB --config ${BUILD}/CPackConfig.cmake -B ${PACKED} -D
    CPACK_DEBIAN_COMPRESSION_TYPE=none)

# What a package holds beside its changelog and copyright. The documents, examples and looks of the
# program, and the headers for hosts, are many; other tests look for them.
set(many "^usr/share/doc/glimmerblur/(docs|examples)/|^usr/share/glimmerblur/presets/|^usr/include/glimmerblur/")
set(modules usr/${LIBRARIES}/glimmerblur)
set(holds_glimmerblur
    ${modules}/LXTorvane_GlimmerBlur.so
    ${modules}/double/LXTorvane_GlimmerBlur.so
    ${modules}/fast/LXTorvane_GlimmerBlur.so
    ${modules}/host/libKernelExec.so
    ${modules}/host/libQuantel_KernelMedia.so
    ${modules}/pictures/glimmerhost_pictures.so
    ${modules}/single/LXTorvane_GlimmerBlur.so
    usr/bin/glimmerhost
    usr/share/bash-completion/completions/glimmerhost
    usr/share/doc/glimmerblur/CHANGELOG.md
    usr/share/doc/glimmerblur/README.md
    usr/share/glimmerblur/pages/glimmerblur.toml
    usr/share/lintian/overrides/glimmerblur
    usr/share/man/man1/glimmerhost.1.gz)
set(icons usr/share/icons/hicolor)
set(holds_glimmerview
    usr/bin/glimmerview
    usr/share/applications/glimmerview.desktop
    ${icons}/128x128/apps/glimmerview.png
    ${icons}/16x16/apps/glimmerview.png
    ${icons}/24x24/apps/glimmerview.png
    ${icons}/256x256/apps/glimmerview.png
    ${icons}/32x32/apps/glimmerview.png
    ${icons}/48x48/apps/glimmerview.png
    ${icons}/64x64/apps/glimmerview.png
    ${icons}/scalable/apps/glimmerview.svg
    usr/share/man/man1/glimmerview.1.gz)
set(configuration usr/${LIBRARIES}/cmake/GlimmerBlur/GlimmerBlur)
set(holds_glimmerblur-dev
    ${configuration}Config.cmake ${configuration}ConfigVersion.cmake
    ${configuration}Targets-release.cmake ${configuration}Targets.cmake
    usr/share/doc/glimmerblur-dev/examples/host/CMakeLists.txt
    usr/share/doc/glimmerblur-dev/examples/host/main.cpp)
set(holds_libglimmerblur0 usr/${LIBRARIES}/libglimmerblur.so.0 usr/${LIBRARIES}/libglimmerblur.so.0.1.0)
set(configuration usr/${LIBRARIES}/cmake/libglimmerblur/libglimmerblurConfig)
set(holds_libglimmerblur-dev
    usr/include/glimmerblur.h usr/include/glimmerblur.hpp ${configuration}.cmake
    ${configuration}-release.cmake ${configuration}Version.cmake usr/${LIBRARIES}/libglimmerblur.so
    usr/${LIBRARIES}/pkgconfig/glimmerblur.pc usr/share/doc/libglimmerblur-dev/library.md)
set(bundle usr/OFX/Plugins/GlimmerBlur.ofx.bundle)
set(holds_glimmerblur-ofx ${bundle}/Contents/Linux-x86-64/GlimmerBlur.ofx
    usr/share/lintian/overrides/glimmerblur-ofx)
set(holds_glimmerblur-gegl usr/${LIBRARIES}/gegl-0.4/glimmerblur.so)
set(python usr/lib/python3/dist-packages/glimmerblur)
set(holds_python3-glimmerblur ${python}/__init__.py ${python}/_defocus.py ${python}/_frames.py
    ${python}/_library.py ${python}/py.typed)
set(holds_glimmerblur-frei0r usr/lib/frei0r-1/glimmerblur.so usr/lib/frei0r-1/glimmerblur_aperture.so)

file(GLOB packages ${PACKED}/*.deb)
set(seen "")
set(all_files "")
foreach(file IN LISTS packages)
  run(package dpkg-deb -f ${file} Package)
  string(STRIP "${package}" package)
  list(APPEND seen ${package})
  set(folder ${PACKED}/${package})
  run(said dpkg-deb -R ${file} ${folder})

  file(GLOB_RECURSE files RELATIVE ${folder} ${folder}/usr/*)
  foreach(must usr/share/doc/${package}/copyright usr/share/doc/${package}/changelog.gz)
    if(NOT must IN_LIST files)
      message(SEND_ERROR "${package} lacks ${must}")
    endif()
    list(REMOVE_ITEM files ${must})
  endforeach()
  foreach(other IN LISTS all_files)
    if(other IN_LIST files)
      message(SEND_ERROR "${package} is not the only package with ${other}")
    endif()
  endforeach()
  list(APPEND all_files ${files})
  list(FILTER files EXCLUDE REGEX "${many}")
  if(DEFINED holds_${package})
    set(expected ${holds_${package}})
    list(SORT expected)
    list(SORT files)
    if(NOT files STREQUAL expected)
      list(JOIN files "\n  " files)
      list(JOIN expected "\n  " expected)
      message(SEND_ERROR "${package} holds\n  ${files}\nnot\n  ${expected}")
    endif()
  endif()

  # Whatever stands on the library asks for the one of its own version, and has nothing of FFTW.
  run(depends dpkg-deb -f ${file} Depends)
  string(STRIP "${depends}" depends)
  if(package STREQUAL glimmerblur)
    continue()
  endif()
  set(needed "libglimmerblur0 (= ${VERSION})")
  if(package STREQUAL "glimmerblur-dev" OR package STREQUAL glimmerview)
    set(needed "glimmerblur (= ${VERSION})")
  elseif(package STREQUAL libglimmerblur0)
    set(needed "libstdc++6 (")
  elseif(package MATCHES "-(gegl|ofx)$")
    # These have it inside.
    set(needed "libc6 (")
  endif()
  string(FIND "${depends}" "${needed}" found)
  if(found EQUAL -1)
    message(SEND_ERROR "${package} does not depend on ${needed}: ${depends}")
  endif()
  file(GLOB_RECURSE objects ${folder}/*.so ${folder}/*.so.* ${folder}/*.ofx)
  foreach(object IN LISTS objects)
    if(IS_SYMLINK ${object})
      continue()
    endif()
    run(needed readelf --wide --dynamic ${object})
    run(symbols nm --dynamic ${object})
    if(NOT needed MATCHES "NEEDED" OR needed MATCHES "\\(NEEDED\\)[^\n]*fftw" OR symbols MATCHES "fftwf?_")
      message(SEND_ERROR "${object} has something of FFTW:\n${needed}")
    endif()
  endforeach()
endforeach()

foreach(package glimmerblur glimmerview glimmerblur-dev libglimmerblur0 libglimmerblur-dev glimmerblur-gegl
        glimmerblur-frei0r glimmerblur-ofx python3-glimmerblur)
  if(NOT package IN_LIST seen)
    message(SEND_ERROR "No package ${package}: ${seen}")
  endif()
endforeach()

# The window uses the system's Qt, which anybody may exchange.
run(depends dpkg-deb -f ${PACKED}/glimmerview_${VERSION}_amd64.deb Depends)
if(NOT depends MATCHES "libqt6core6 " OR NOT depends MATCHES "libqt6widgets6 ")
  message(SEND_ERROR "glimmerview depends on ${depends}")
endif()

# The library depends on what every C++ program does, and on nothing else.
run(depends dpkg-deb -f ${PACKED}/libglimmerblur0_${VERSION}_amd64.deb Depends)
string(REGEX REPLACE " *\\([^)]*\\)" "" depends "${depends}")
string(STRIP "${depends}" depends)
if(NOT depends STREQUAL "libc6, libgcc-s1, libstdc++6")
  message(SEND_ERROR "libglimmerblur0 depends on ${depends}")
endif()
run(linked ldd ${PACKED}/libglimmerblur0/usr/${LIBRARIES}/libglimmerblur.so.0)
string(REGEX MATCHALL "[^ \t\n]+\\.so[.0-9]* =>" linked "${linked}")
set(known "libstdc++.so.6 =>" "libm.so.6 =>" "libgcc_s.so.1 =>" "libc.so.6 =>")
list(REMOVE_ITEM linked ${known})
if(linked)
  message(SEND_ERROR "libglimmerblur.so.0 is linked with ${linked}")
endif()

# Packages of programs that link it find out that they need it, and the system where it is.
file(READ ${PACKED}/libglimmerblur0/DEBIAN/shlibs shlibs)
file(READ ${PACKED}/libglimmerblur0/DEBIAN/triggers triggers)
if(NOT shlibs STREQUAL "libglimmerblur 0 libglimmerblur0 (>= ${VERSION})\n" OR NOT triggers STREQUAL
                                                               "activate-noawait ldconfig\n")
  message(SEND_ERROR "libglimmerblur0 says\n${shlibs}${triggers}")
endif()
file(GLOB scripts ${PACKED}/*glimmerblur*/DEBIAN/post*)
list(FILTER scripts INCLUDE REGEX "frei0r|libglimmerblur")
if(scripts)
  message(SEND_ERROR "Scripts that nobody needs: ${scripts}")
endif()
