# One precompiled header for the components that include the JSON library, which takes most of their
# compilation time. Off by default: it hides missing includes, and compiler caches don't work with it.
option(TARND_PRECOMPILE "Precompile the JSON library's header" OFF)

if(TARND_PRECOMPILE AND TARND_HAS_SHELL)
  target_precompile_headers(tarnd_json PRIVATE
    <algorithm> <functional> <iostream> <map> <memory> <mutex> <optional> <string> <vector> <nlohmann/json.hpp>)
  foreach(target tarnd_sources shell_parts)
    target_precompile_headers(${target} REUSE_FROM tarnd_json)
  endforeach()
endif()
