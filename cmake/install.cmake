# `cmake --install` gives a copy that find_package(arbor) and pkg-config find: the libraries and the headers that explain
# them; what these do not include stays behind. A shared and a static copy may share a prefix.
include(CMakePackageConfigHelpers)

set(form static)
if(BUILD_SHARED_LIBS)
  set(form shared)
endif()
file(RELATIVE_PATH prefix_from_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
set(config ${CMAKE_INSTALL_LIBDIR}/cmake/arbor)

# A library, its headers, and the files that find it: arbor-COMPONENT-shared.cmake or -static.cmake, and NAME.pc.
function(arbor_install component target name)
  install(TARGETS ${target} EXPORT arbor_${component} FILE_SET HEADERS)
  install(EXPORT arbor_${component} FILE arbor-${component}-${form}.cmake NAMESPACE arbor:: DESTINATION ${config})
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

arbor_install(core arbor arbor)
if(ARBOR_TREE)
  arbor_install(tree arbor_tree arbor-tree)
endif()

configure_package_config_file(cmake/arbor-config.cmake.in ${PROJECT_BINARY_DIR}/arbor-config.cmake
  INSTALL_DESTINATION ${config} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/arbor-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/arbor-config.cmake ${PROJECT_BINARY_DIR}/arbor-config-version.cmake
  DESTINATION ${config})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
