# Installation by component: library, standin, development, shell. Each component is a package.
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarnd_qrb)

# Libraries. Outside the system's directories, run paths are relative, so that the installation can be
# moved.
if(NOT CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$")
  set_target_properties(tarnd_qrb PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
set_target_properties(tarnd_qrb PROPERTIES EXPORT_NAME qrb)
set_target_properties(tarnd_contract PROPERTIES EXPORT_NAME contract)
install(TARGETS tarnd_qrb EXPORT tarnd_qrb
  LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(TARGETS tarnd_contract EXPORT tarnd_qrb)
if(TARND_HAS_STANDIN)
  set_target_properties(tarnd_platform PROPERTIES EXPORT_NAME platform)
  install(TARGETS tarnd_platform EXPORT tarnd_qrb
    LIBRARY COMPONENT standin NAMELINK_COMPONENT development)
  install(DIRECTORY platform/standin/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarnd_standin)
endif()

# Headers of the library and of the platform contract.
install(DIRECTORY include/tarnd_qrb platform/include/tarnd_platform
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# For find_package and pkg-config.
install(EXPORT tarnd_qrb NAMESPACE tarnd:: DESTINATION ${package_dir} FILE tarnd_qrb-config.cmake)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarnd_qrb-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarnd_qrb-config-version.cmake DESTINATION ${package_dir})
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pkgconfig_to_prefix)
set(platform_pc_libs)
set(platform_pc_cflags)
if(TARND_HAS_STANDIN)
  set(platform_pc_libs "-L\${libdir} -ltarnd_platform")
  set(platform_pc_cflags " -I\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}/tarnd_standin")
endif()
foreach(name tarnd_qrb tarnd_platform)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# The shell, and devices for it.
if(TARND_HAS_SHELL)
  if(NOT CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$")
    file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(tarnd-qrb PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  endif()
  install(TARGETS tarnd-qrb RUNTIME COMPONENT shell)
  install(FILES docs/man/tarnd-qrb.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT shell)
  install(FILES shell/tarnd-qrb.bash-completion RENAME tarnd-qrb
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT shell)
  install(DIRECTORY data/ DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnd_qrb COMPONENT shell)
  if(TARND_HAS_REFERENCE)
    set(json_page ${PROJECT_BINARY_DIR}/tarnd-qrb-json.5)
    add_custom_command(OUTPUT ${json_page} DEPENDS docs/json-format.md VERBATIM
      COMMAND sed "1i # NAME\\n\\ntarnd-qrb-json - a device as a JSON file\\n" ${PROJECT_SOURCE_DIR}/docs/json-format.md
        | sed "s/^\\(```[a-z]*\\) .*/\\1/" | lowdown -s -tman -M title=tarnd-qrb-json -M section=5 -o ${json_page})
    add_custom_target(json_manual ALL DEPENDS ${json_page})
    install(FILES ${json_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT shell)
  endif()
endif()

# Files of every package.
set(package_library libtarnd-qrb0)
set(package_standin libtarnd-platform0)
set(package_development libtarnd-qrb-dev)
set(package_shell tarnd-qrb)
set(components library development)
if(TARND_HAS_STANDIN)
  list(APPEND components standin)
endif()
if(TARND_HAS_SHELL)
  list(APPEND components shell)
endif()
foreach(component ${components})
  install(FILES COPYING COMPONENT ${component} RENAME copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package_${component}})
endforeach()

# Documentation.
install(DIRECTORY docs/ examples DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN docs/man EXCLUDE)
install(FILES docs/man/tarnd_qrb.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7)
if(TARND_HAS_REFERENCE)
  install(DIRECTORY ${reference_dir}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man3
    FILES_MATCHING PATTERN *.3)
  install(DIRECTORY ${reference_dir}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man7
    FILES_MATCHING PATTERN *.7)
  install(DIRECTORY ${reference_dir}/html DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
