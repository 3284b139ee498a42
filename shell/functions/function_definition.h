// From a function's own type to its entry in the table.
#pragma once

#include <array>
#include <tuple>
#include <utility>

#include <tarnd_qrb/util_list.h>

#include "shell/functions/parameter_slot.h"
#include "shell/output/log_capture.h"

namespace shell {

// Puts down what a slot holds if it is of the direction asked for.
template <typename ParameterSlot>
void Show(const ParameterSlot& slot, const Argument& argument, Direction direction, Json& shown)
{
    if (ParameterSlot::DIRECTION == direction && !argument.ignored) {
        shown.emplace(std::string(argument.name), slot.Show(argument));
    }
}

template <typename Code, typename... Parameters, size_t... i>
CallResult Call(Code (*function)(Parameters...),
                const std::array<Argument, sizeof...(Parameters)>& arguments, Words& words,
                std::index_sequence<i...> /*all*/)
{
    std::tuple<ParameterSlot<Parameters>...> slots;
    (std::get<i>(slots).Read(arguments[i], words), ...);
    words.ExpectEnd();
    CallResult answer;
    (Show(std::get<i>(slots), arguments[i], Direction::In, answer.arguments), ...);
    LogCapture catcher;
    if constexpr (std::is_void_v<Code>) {
        function(std::get<i>(slots).Pass()...);
    } else {
        answer.code = function(std::get<i>(slots).Pass()...);
    }
    answer.log = catcher.Take();
    (Show(std::get<i>(slots), arguments[i], Direction::Out, answer.outputs), ...);
    return answer;
}

// The entry of a function whose arguments are described in their order.
template <typename Code, typename... Parameters, typename... Arguments>
Function Define(std::string_view name, Code (*function)(Parameters...), const ResultCodes& result,
                std::string_view tables, std::string_view answers, const Arguments&... arguments)
{
    static_assert(sizeof...(Parameters) == sizeof...(Arguments));
    const std::array<Argument, sizeof...(Parameters)> described{arguments...};
    const auto call = [function, described](Words& words) {
        return Call(function, described, words, std::index_sequence_for<Parameters...>{});
    };
    return {name, result, tables, answers, {{arguments, ParameterSlot<Parameters>::DIRECTION}...},
            call};
}

// For a function of no parameters: shows the element size of one of the library's list traits.
template <const UTIL_LIST_TRAITS_S* traits>
void ElementSize(uint64_t* size)
{
    *size = traits->elemSize;
}

#define FUNCTION(function, ...) Define(#function, function, __VA_ARGS__)

}  // namespace shell
