# The reference, made of what the public headers say: manual pages and, with TARND_HTML, pages for a
# browser. An exported name that no header tells about fails the build.
option(TARND_HTML "Make the HTML reference (needs Doxygen)" OFF)

add_executable(reference tools/reference/main.cpp tools/reference/header.cpp
  tools/reference/doxygen.cpp tools/reference/manual.cpp)
target_include_directories(reference PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(reference PRIVATE tarnd_warnings)

file(GLOB public_headers CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/include/tarnd_qrb/*.h ${PROJECT_SOURCE_DIR}/platform/include/tarnd_platform/*.h)
set(manual_dir ${PROJECT_BINARY_DIR}/manual)
add_custom_command(OUTPUT ${manual_dir}/made
  COMMAND rm -rf ${manual_dir}
  COMMAND reference manual ${manual_dir} ${PROJECT_VERSION} ${exports} ${public_headers}
  COMMAND touch ${manual_dir}/made
  DEPENDS reference ${exports} ${public_headers}
  COMMENT "Writing the manual pages" VERBATIM)
add_custom_target(manual ALL DEPENDS ${manual_dir}/made)

if(TARND_HTML)
  find_package(Doxygen REQUIRED)
  configure_file(cmake/Doxyfile.in Doxyfile @ONLY)
  add_custom_command(OUTPUT html/index.html
    COMMAND Doxygen::doxygen Doxyfile
    DEPENDS reference Doxyfile ${public_headers} ${PROJECT_SOURCE_DIR}/docs/questions.md
    COMMENT "Writing the HTML reference" VERBATIM)
  add_custom_target(html ALL DEPENDS html/index.html)
endif()
