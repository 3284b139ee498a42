// Derives a function's entry in the table from its type.
#pragma once

#include <array>
#include <tuple>
#include <utility>

#include <tarnd_qrb/util_list.h>

#include "shell/functions/parameter_slot.h"
#include "shell/output/log_capture.h"

namespace shell {

// Adds the slot's value to the object if the parameter has that direction.
template <typename ParameterSlot>
void Show(const ParameterSlot& slot, const Argument& argument, Direction direction, Json& shown)
{
    if (ParameterSlot::DIRECTION == direction && !argument.ignored) {
        shown.emplace(std::string(argument.name), slot.Show(argument));
    }
}

template <typename Code, typename... Parameters, size_t... i>
CallResult Call(Code (*function)(Parameters...), const ResultCodes& codes,
                const std::array<Argument, sizeof...(Parameters)>& arguments, Words& words,
                std::index_sequence<i...> /*all*/)
{
    std::tuple<ParameterSlot<Parameters>...> slots;
    (std::get<i>(slots).Read(arguments[i], words), ...);
    words.ExpectEnd();
    CallResult result;
    (Show(std::get<i>(slots), arguments[i], Direction::In, result.arguments), ...);
    LogCapture log;
    if constexpr (std::is_void_v<Code>) {
        function(std::get<i>(slots).Pass()...);
    } else {
        result.code = function(std::get<i>(slots).Pass()...);
        if (codes.Of(*result.code).verdict == Verdict::Failure) {
            (std::get<i>(slots).DropUnchanged(), ...);
        }
    }
    result.log = log.Take();
    (Show(std::get<i>(slots), arguments[i], Direction::Out, result.outputs), ...);
    return result;
}

// A function whose arguments are described in the order of its parameters.
template <typename Code, typename... Parameters, typename... Arguments>
Function Define(std::string_view name, Code (*function)(Parameters...), const ResultCodes& result,
                std::string_view tables, std::string_view purpose, const Arguments&... arguments)
{
    static_assert(sizeof...(Parameters) == sizeof...(Arguments));
    const std::array<Argument, sizeof...(Parameters)> described{arguments...};
    const auto call = [function, result, described](Words& words) {
        return Call(function, result, described, words, std::index_sequence_for<Parameters...>{});
    };
    return {name, result, tables, purpose, {{arguments, ParameterSlot<Parameters>::DIRECTION}...},
            call};
}

// For a function without parameters: shows the element size of one of the library's list traits.
template <const UTIL_LIST_TRAITS_S* traits>
void ElementSize(uint64_t* size)
{
    *size = traits->elemSize;
}

#define FUNCTION(function, ...) Define(#function, function, __VA_ARGS__)

}  // namespace shell
