# Debian packages: cpack --preset package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "libtarnd_qrb developers <maintainers@tarnd-qrb.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development)
if(TARND_HAS_STANDIN)
  list(APPEND CPACK_COMPONENTS_ALL standin)
endif()
if(TARND_HAS_SHELL)
  list(APPEND CPACK_COMPONENTS_ALL shell)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
# What they need of Debian is found by looking; what they need of each other stands below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/platform/standin)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(same "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtarnd-qrb0)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# A device's own platform package says that it provides libtarnd-platform0.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libtarnd-platform0")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
"query and notification interfaces over a device's configuration database
Answers the daemon's older modules from the database, and calls them back when it changes:
interfaces, layer-2 ports and VLANs, IPv4 addresses, routes, access lists, QoS profiles.")

set(CPACK_DEBIAN_STANDIN_PACKAGE_NAME libtarnd-platform0)
set(CPACK_DEBIAN_STANDIN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_STANDIN_DESCRIPTION
"stand-in for a device's configuration database
An in-memory database behind the platform contract of libtarnd_qrb, for work without a device.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtarnd-qrb-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libtarnd-qrb0 ${same}, libtarnd-platform0 ${same}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"development files of libtarnd_qrb and of its stand-in platform
Headers, the platform contract, CMake and pkg-config files, manual pages, guides and examples.")

set(CPACK_DEBIAN_SHELL_PACKAGE_NAME tarnd-qrb)
set(CPACK_DEBIAN_SHELL_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SHELL_PACKAGE_DEPENDS "libtarnd-qrb0 ${same}, libtarnd-platform0 ${same}")
set(CPACK_DEBIAN_SHELL_DESCRIPTION
"shell that hosts libtarnd_qrb
Asks the library's questions by name and plays the device, on a file, this host or a cluster.")

include(CPack)
