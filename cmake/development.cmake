# SPDX-License-Identifier: BSD-3-Clause
# What authors of hosts find by find_package(GlimmerBlur); GlimmerBlurConfig.cmake.in says what that is.
# Without a line of our own build's: its warnings and folders are not theirs.
add_library(host_interfaces INTERFACE)
set_target_properties(host_interfaces PROPERTIES EXPORT_NAME interfaces)
target_compile_features(host_interfaces INTERFACE cxx_std_20)
target_include_directories(host_interfaces
                           INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/glimmerblur>)

add_library(host_libraries INTERFACE)
set_target_properties(host_libraries PROPERTIES EXPORT_NAME host)
target_link_libraries(host_libraries INTERFACE host_interfaces KernelExec Quantel_KernelMedia)

include(CMakePackageConfigHelpers)
set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/GlimmerBlur)
set(modules ${CMAKE_INSTALL_LIBDIR}/glimmerblur)
configure_package_config_file(
  packaging/GlimmerBlurConfig.cmake.in ${PROJECT_BINARY_DIR}/packaging/GlimmerBlurConfig.cmake
  INSTALL_DESTINATION ${folder} PATH_VARS modules)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/GlimmerBlurConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(TARGETS host_interfaces host_libraries EXPORT GlimmerBlur)
install(EXPORT GlimmerBlur FILE GlimmerBlurTargets.cmake NAMESPACE GlimmerBlur::
        DESTINATION ${folder} COMPONENT development)
install(
  FILES ${PROJECT_BINARY_DIR}/packaging/GlimmerBlurConfig.cmake
        ${PROJECT_BINARY_DIR}/packaging/GlimmerBlurConfigVersion.cmake
  DESTINATION ${folder}
  COMPONENT development)
install(DIRECTORY examples/host DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/glimmerblur-dev/examples
        COMPONENT development)
