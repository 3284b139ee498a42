// The daemon's modules and what each has in use.
#include <tarnd_qrb/memory_map.h>

#include "shell/functions/arguments.h"
#include "shell/functions/define.h"
#include "shell/functions/results.h"

namespace shell {
namespace {

constexpr uint32_t most = 64;

void ModuleMap(Json* modules)
{
    for (const auto& [name, handle] : g_memExModuleMap) {
        modules->push_back({{"name", name}, {"handle", handle}});
    }
}

// clang-format off
constexpr Argument module    {.name = "module"};
constexpr Argument entries   {.name = "entries", .size = most};
constexpr Argument entryCount{.name = "count", .highest = most, .fallback = "32"};
// clang-format on

}  // namespace

// clang-format off
std::vector<Function> MemoryFunctions()
{
    using namespace arguments;
    return {
        Define("g_memExModuleMap", ModuleMap, value, "", "The daemon's modules, by module id.", Number("modules")),
        FUNCTION(MEM_EX_Init, value, "", "Asks the accounting service for every handle."),
        FUNCTION(MEM_EX_GetHandle, value, "", "The handle of a module; 0 where there is none.", module),
        FUNCTION(MEM_EX_GetModule, value, "", "The id of a module; 32 where no module has the name.", NeverNull(Number("name"))),
        FUNCTION(MEM_EX_GetDetailedInfoSize, okOr1, "", "How many entries a usage report has.", count),
        FUNCTION(MEM_EX_GetDetailedInfo, okOrMemory, "", "What each module has in use.", entries, entryCount),
        FUNCTION(MEM_EX_CopyDetailedInfo, okOrMemory, "", "What the first modules have in use.", entries, entryCount),
    };
}
// clang-format on

}  // namespace shell
