# TARND_SANITIZE applies to every target: a program and the libraries it loads must agree.
if(TARND_SANITIZE)
  add_compile_options(-fsanitize=${TARND_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARND_SANITIZE})
  # For programs that replace functions of the C library: these must not link Clang's static runtime.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND TARND_SANITIZE MATCHES "address")
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} --print-file-name=libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so
      OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    cmake_path(GET runtime PARENT_PATH runtime_folder)
    set(TARND_SHARED_RUNTIME -shared-libasan -Wl,-rpath,${runtime_folder})
  endif()
endif()

# So does coverage; atomic counters also include threads that never end.
if(TARND_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic -fprofile-abs-path)
  add_link_options(--coverage)
endif()
