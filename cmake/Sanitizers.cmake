# TARND_SANITIZE applies to every target: a program and the libraries it loads must agree.
if(TARND_SANITIZE)
  add_compile_options(-fsanitize=${TARND_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARND_SANITIZE})
endif()
