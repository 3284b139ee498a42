# Run by cpack before packing: adds a Debian changelog to each package, and compresses it and the manual
# pages, as required by Debian policy.
file(GLOB copyrights ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/copyright)
foreach(copyright ${copyrights})
  cmake_path(GET copyright PARENT_PATH folder)
  cmake_path(GET folder FILENAME package)
  file(WRITE ${folder}/changelog.Debian
"${package} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * The changes are in CHANGELOG.md of the source.

 -- ${CPACK_PACKAGE_CONTACT}  Thu, 01 Jan 2026 00:00:00 +0000
")
endforeach()
file(GLOB_RECURSE texts ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/* ${CPACK_TEMPORARY_DIRECTORY}/*/changelog.Debian)
if(texts)
  execute_process(COMMAND gzip -9n ${texts} COMMAND_ERROR_IS_FATAL ANY)
endif()
