# Where everything goes, and to which package it belongs: library, standin, development or shell.
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarnd_qrb)

# Libraries. Outside a system's own folders they find each other, and the shell them, wherever the
# whole is moved.
if(NOT CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$")
  set_target_properties(tarnd_qrb PROPERTIES INSTALL_RPATH "$ORIGIN")
  file(RELATIVE_PATH libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(tarnd-qrb PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
endif()
set_target_properties(tarnd_qrb PROPERTIES EXPORT_NAME qrb)
set_target_properties(tarnd_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(tarnd_contract PROPERTIES EXPORT_NAME contract)
install(TARGETS tarnd_qrb EXPORT tarnd_qrb
  LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(TARGETS tarnd_platform EXPORT tarnd_qrb
  LIBRARY COMPONENT standin NAMELINK_COMPONENT development)
install(TARGETS tarnd_contract EXPORT tarnd_qrb)

# Headers: the library's, the platform contract's, and the stand-in's writing side.
install(DIRECTORY include/tarnd_qrb platform/include/tarnd_platform
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY platform/standin/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnd_standin)

# For find_package and pkg-config.
install(EXPORT tarnd_qrb NAMESPACE tarnd:: DESTINATION ${package_dir} FILE tarnd_qrb-config.cmake)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarnd_qrb-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarnd_qrb-config-version.cmake DESTINATION ${package_dir})
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pkgconfig_to_prefix)
foreach(name tarnd_qrb tarnd_platform)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# The shell, and devices for it.
install(TARGETS tarnd-qrb RUNTIME COMPONENT shell)
install(FILES docs/man/tarnd-qrb.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT shell)
install(DIRECTORY data/ DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnd_qrb COMPONENT shell)

# To read.
install(DIRECTORY docs/ examples DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN docs/man EXCLUDE)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man3
  FILES_MATCHING PATTERN *.3)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ docs/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man7
  FILES_MATCHING PATTERN *.7)
if(TARND_HTML)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/html DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
