# libtarnd_qrb: plain functions with C linkage. It needs the C library and a platform at load time, and
# nothing else: linked as C, so that no C++ runtime is asked for.
add_library(tarnd_qrb SHARED)
foreach(room db ifm l2 fib acl qos event bal)
  add_subdirectory(${room})
endforeach()

target_include_directories(tarnd_qrb PRIVATE ${PROJECT_SOURCE_DIR}
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_options(tarnd_qrb PRIVATE -fno-exceptions -fno-rtti -fno-threadsafe-statics
  -fno-asynchronous-unwind-tables -ffunction-sections
  -Wnull-dereference)  # only here: optimising, GCC 12 finds null pointers in standard containers
# The public headers declare what is exported; the version script says so to the linker.
set(exports ${PROJECT_SOURCE_DIR}/cmake/tarnd_qrb.map)
target_compile_options(tarnd_qrb PRIVATE -fvisibility=default)
# CMake offers the C++ runtime for C++ sources; nothing asks for it, so it isn't needed.
target_link_options(tarnd_qrb PRIVATE -Wl,--as-needed -Wl,--version-script=${exports}
  -Wl,--no-undefined-version -Wl,--gc-sections)
if(NOT TARND_SANITIZE)
  target_link_options(tarnd_qrb PRIVATE -Wl,-z,defs)
endif()
set_target_properties(tarnd_qrb PROPERTIES
  LINKER_LANGUAGE C
  LINK_DEPENDS ${exports}
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})

target_link_libraries(tarnd_qrb PRIVATE tarnd_warnings PUBLIC tarnd_contract)
if(TARND_PLATFORM_LIBRARY)
  target_link_libraries(tarnd_qrb PUBLIC ${TARND_PLATFORM_LIBRARY})
else()
  target_link_libraries(tarnd_qrb PUBLIC tarnd_platform)
endif()
