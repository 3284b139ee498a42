# TARND_SANITIZE applies to every target: a program and the libraries it loads must agree.
if(TARND_SANITIZE)
  add_compile_options(-fsanitize=${TARND_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARND_SANITIZE})
endif()

# So does counting: with all threads' counts, also of those that never end.
if(TARND_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic -fprofile-abs-path)
  add_link_options(--coverage)
endif()
