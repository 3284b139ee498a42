# tarnd_warnings: the warning options of every target of the project.
add_library(tarnd_warnings INTERFACE)
target_compile_options(tarnd_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-align -Wcast-qual
  -Wformat -Wformat-security -Wundef -Wimplicit-fallthrough
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wextra-semi -Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wuseless-cast>
  $<$<COMPILE_LANG_AND_ID:C,GNU,Clang>:-Wstrict-prototypes>
  $<$<BOOL:${TARND_WERROR}>:-Werror>)
