# The reference, generated from the comments of the public headers: HTML by Doxygen, and manual pages from
# Doxygen's XML. An exported name, parameter or result that is not documented fails the build.
if(NOT TARND_HAS_REFERENCE)
  return()
endif()

file(GLOB public_headers CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/include/tarnd_qrb/*.h ${PROJECT_SOURCE_DIR}/platform/include/tarnd_platform/*.h)
set(reference_dir ${PROJECT_BINARY_DIR}/reference)
configure_file(cmake/Doxyfile.in Doxyfile @ONLY)
add_custom_command(OUTPUT ${reference_dir}/made
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference_dir}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${reference_dir}/man
  COMMAND Doxygen::doxygen Doxyfile
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tools/manpages
    ${reference_dir}/xml ${reference_dir}/man ${PROJECT_VERSION} ${exports}
  COMMAND ${CMAKE_COMMAND} -E touch ${reference_dir}/made
  DEPENDS Doxyfile tools/manpages ${exports} ${public_headers} docs/queries.md
  COMMENT "Writing the reference" VERBATIM)
add_custom_target(reference ALL DEPENDS ${reference_dir}/made)
