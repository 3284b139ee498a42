#include "shell/functions/function.h"

#include <algorithm>

namespace shell {
namespace {

std::vector<Function> Assemble()
{
    std::vector<Function> all;
    for (const auto& family :
         {DatabaseFunctions, InterfaceFunctions, AddressFunctions, Layer2Functions, RouteFunctions,
          FilterFunctions, EventFunctions, ListenerFunctions, ListFunctions, MemoryFunctions}) {
        std::ranges::move(family(), std::back_inserter(all));
    }
    return all;
}

}  // namespace

std::string Function::Usage() const
{
    std::string usage;
    for (const Parameter& parameter : parameters) {
        if (!parameter.TakesWord()) {
            continue;
        }
        const Argument& argument = parameter.argument;
        const std::string word = std::string(argument.name) + (argument.rest ? "..." : "");
        usage += usage.empty() ? "" : " ";
        usage += argument.fallback.empty() ? word : "[" + word + "]";
    }
    return usage;
}

Verdict Function::VerdictOf(const CallResult& callResult) const
{
    return callResult.code ? result.Of(*callResult.code).verdict : Verdict::Success;
}

const std::vector<Function>& Functions()
{
    static const std::vector<Function> functions = Assemble();
    return functions;
}

const Function* FindFunction(std::string_view name)
{
    const auto found = std::ranges::find(Functions(), name, &Function::name);
    return found != Functions().end() ? &*found : nullptr;
}

}  // namespace shell
