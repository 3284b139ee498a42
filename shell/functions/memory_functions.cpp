// The daemon's modules and their memory usage.
#include <tarnd_qrb/memory_map.h>

#include "shell/functions/common_arguments.h"
#include "shell/functions/function_definition.h"
#include "shell/functions/result_codes.h"

namespace shell {
namespace {

constexpr uint32_t MOST_MODULES = 64;

void ModuleMap(Json* modules)
{
    for (const auto& [name, handle] : g_memExModuleMap) {
        modules->push_back({{"name", name}, {"handle", handle}});
    }
}

constexpr Argument MODULE_ID{.name = "module"};
constexpr Argument USAGE_ENTRIES{.name = "entries", .size = MOST_MODULES};
constexpr Argument ENTRY_COUNT{.name = "count", .highest = MOST_MODULES, .fallback = "32"};

}  // namespace

// clang-format off
std::vector<Function> MemoryFunctions()
{
    using namespace arguments;
    return {
        Define("g_memExModuleMap", ModuleMap, VALUE, "", "The daemon's modules, by module id.", Number("modules")),
        FUNCTION(MEM_EX_Init, VALUE, "", "Requests the handle of every module from the accounting service."),
        FUNCTION(MEM_EX_GetHandle, VALUE, "", "The handle of a module; 0 if there is none.", MODULE_ID),
        FUNCTION(MEM_EX_GetModule, VALUE, "", "The id of a module; 32 if no module has the name.", NeverNull(Number("name"))),
        FUNCTION(MEM_EX_GetDetailedInfoSize, OK_OR1, "", "The number of entries of a usage report.", COUNT),
        FUNCTION(MEM_EX_GetDetailedInfo, OK_OR_MEMORY, "", "The memory usage of each module.", USAGE_ENTRIES, ENTRY_COUNT),
        FUNCTION(MEM_EX_CopyDetailedInfo, OK_OR_MEMORY, "", "The memory usage of the first modules.", USAGE_ENTRIES, ENTRY_COUNT),
    };
}
// clang-format on

}  // namespace shell
