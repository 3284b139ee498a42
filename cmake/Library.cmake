# libtarnd_qrb: plain functions with C linkage. At load time it needs the C library and a platform only;
# it is linked as C so that it doesn't depend on the C++ runtime.
add_library(tarnd_qrb SHARED)
foreach(component db ifm l2 fib acl qos event bal)
  add_subdirectory(${component})
endforeach()

target_include_directories(tarnd_qrb PRIVATE ${PROJECT_SOURCE_DIR}
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_options(tarnd_qrb PRIVATE -fno-exceptions -fno-rtti -fno-threadsafe-statics
  -fno-asynchronous-unwind-tables -ffunction-sections
  -Wnull-dereference)  # only here: with optimisation, GCC 12 warns about standard containers
# The public headers declare the exports; the version script lists them.
set(exports ${PROJECT_SOURCE_DIR}/cmake/tarnd_qrb.map)
target_compile_options(tarnd_qrb PRIVATE -fvisibility=default)
# CMake adds the C++ runtime for C++ sources; --as-needed drops it.
target_link_options(tarnd_qrb PRIVATE -Wl,--as-needed -Wl,--version-script=${exports}
  -Wl,--no-undefined-version -Wl,--gc-sections)
# dlclose must not unmap the code that the listener thread runs.
target_link_options(tarnd_qrb PRIVATE -Wl,-z,nodelete)
set_target_properties(tarnd_qrb PROPERTIES
  LINKER_LANGUAGE C
  UNITY_BUILD OFF  # its files are small, and each must compile alone
  LINK_DEPENDS ${exports}
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})

target_link_libraries(tarnd_qrb PRIVATE tarnd_warnings PUBLIC tarnd_contract)
set(platform ${TARND_PLATFORM_LIBRARY})
if(NOT platform AND TARND_HAS_STANDIN)
  set(platform tarnd_platform)
endif()
if(platform)
  target_link_libraries(tarnd_qrb PUBLIC ${platform})
  if(NOT TARND_SANITIZE)
    target_link_options(tarnd_qrb PRIVATE -Wl,-z,defs)
  endif()
else()
  message(STATUS "libtarnd_qrb is linked without a platform: the program that loads it provides one")
endif()
