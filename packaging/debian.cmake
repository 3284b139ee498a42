# Debian packages: cpack --preset package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "libtarnd_qrb developers <maintainers@tarnd-qrb.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/before-packing.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)  # whatever the modes of an unpacked archive
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
# Dependencies on Debian's packages are found by dpkg-shlibdeps; those on each other are below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/platform/standin)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
foreach(component LIBRARY STANDIN)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
endforeach()

set(same "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtarnd-qrb0)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# A device's own platform package provides libtarnd-platform0.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libtarnd-platform0")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
"query and notification interfaces over a device's configuration database
Provides the modules of a daemon with queries of the database and with callbacks
when it changes: interfaces, layer-2 ports and VLANs, IPv4 addresses, routes,
access lists, QoS profiles.")

set(CPACK_DEBIAN_STANDIN_PACKAGE_NAME libtarnd-platform0)
set(CPACK_DEBIAN_STANDIN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_STANDIN_DESCRIPTION
"stand-in for a device's configuration database
An in-memory database behind the platform contract of libtarnd_qrb, for work
without a device.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtarnd-qrb-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libtarnd-qrb0 ${same}")
if(TARND_HAS_STANDIN)
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", libtarnd-platform0 ${same}")
endif()
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"development files of libtarnd_qrb and of its stand-in platform
Headers, the platform contract, CMake and pkg-config files, manual pages,
guides and examples.")

set(CPACK_DEBIAN_SHELL_PACKAGE_NAME tarnd-qrb)
set(CPACK_DEBIAN_SHELL_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SHELL_PACKAGE_DEPENDS "libtarnd-qrb0 ${same}, libtarnd-platform0 ${same}")
set(CPACK_DEBIAN_SHELL_DESCRIPTION
"shell that hosts libtarnd_qrb
Calls the library's functions by name, on a device from a file, this host or a
cluster.")

# dpkg-shlibdeps reads the packages of the build machine only. In a cross-build the dependencies are
# listed here instead.
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS OFF)
  string(APPEND CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS ", libc6 (>= 2.34)")
  set(CPACK_DEBIAN_STANDIN_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12)")
endif()

include(CPack)
