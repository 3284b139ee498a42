// The value of one parameter during a call: read from the line, passed to the function and shown.
// One specialisation for each kind of parameter type.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "shell/functions/function.h"
#include "shell/functions/record_json.h"
#include "sources/json/json_value.h"

namespace shell {

inline std::string TakeWord(const Argument& argument, Words& words)
{
    if (words.Empty() && !argument.fallback.empty()) {
        return std::string(argument.fallback);
    }
    return words.Take(argument.name);
}

// Default behaviour shared by most slots.
struct PlainSlot {
    // After a failed call: an output that still holds the value given before the call, such as a
    // capacity, was not written.
    void DropUnchanged() {}
};

// A number, passed by value.
template <typename T>
struct ParameterSlot : PlainSlot {
    static_assert(std::integral<T>);
    static constexpr auto DIRECTION = Direction::In;
    static constexpr auto HIGHEST = static_cast<uint64_t>(std::numeric_limits<T>::max());

    void Read(const Argument& argument, Words& words)
    {
        if (argument.ignored) {
            return;
        }
        const std::string word = TakeWord(argument, words);
        const bool negative = std::signed_integral<T> && word.starts_with('-');
        number = static_cast<T>(NumberFromWord(argument, word.substr(negative ? 1 : 0), HIGHEST));
        number = negative ? static_cast<T>(-number) : number;
    }
    T Pass() { return number; }
    Json Show(const Argument& argument) const
    {
        if constexpr (std::signed_integral<T>) {
            return number;
        } else {
            return NumberToJson(argument.form, number);
        }
    }

    T number{};
};

// A text, or a null pointer.
template <>
struct ParameterSlot<const char*> : PlainSlot {
    static constexpr auto DIRECTION = Direction::In;

    void Read(const Argument& argument, Words& words)
    {
        text = argument.rest && !words.Empty() ? words.TakeRest() : TakeWord(argument, words);
        isNull = text == NULL_WORD;
        if (isNull && argument.neverNull) {
            throw UsageError(std::string(argument.name) + ": must not be null");
        }
        if (text.size() > argument.highest) {
            throw UsageError(std::string(argument.name) + ": more than " +
                             std::to_string(argument.highest) + " characters");
        }
    }
    const char* Pass() const { return isNull ? nullptr : text.c_str(); }
    Json Show(const Argument& /*argument*/) const { return isNull ? Json() : Json(text); }

    std::string text;
    bool isNull = false;
};

// A record that the function only reads.
template <typename T>
struct ParameterSlot<const T*> : PlainSlot {
    static constexpr auto DIRECTION = Direction::In;

    void Read(const Argument& argument, Words& words)
    {
        word = TakeWord(argument, words);
        RecordFromWord(argument, word, record);
    }
    const T* Pass() const { return &record; }
    Json Show(const Argument& /*argument*/) const { return word; }

    std::string word;
    T record{};
};

// All remaining words.
template <>
struct ParameterSlot<std::span<const std::string>> : PlainSlot {
    static constexpr auto DIRECTION = Direction::In;

    void Read(const Argument& /*argument*/, Words& words) { rest = words.TakeAll(); }
    std::span<const std::string> Pass() const { return rest; }
    Json Show(const Argument& /*argument*/) const { return std::vector(rest.begin(), rest.end()); }

    std::span<const std::string> rest;
};

// A buffer for the function to fill. It is filled with a pattern before the call; elements that
// still hold the pattern afterwards were not written.
template <typename T>
struct ParameterSlot<T*> {
    static_assert(std::is_trivially_copyable_v<T>);
    static constexpr auto DIRECTION = Direction::Out;
    static constexpr int PATTERN = 0xA5;

    void Read(const Argument& argument, Words& words)
    {
        buffer.resize(argument.size);
        std::memset(buffer.data(), argument.zeroed ? 0 : PATTERN, buffer.size() * sizeof(T));
        if constexpr (std::integral<T>) {
            if (!argument.fallback.empty()) {
                given = TakeGiven(argument, words);
                buffer[0] = *given;
            }
        }
    }
    T* Pass() { return buffer.data(); }
    void DropUnchanged()
    {
        if constexpr (std::integral<T>) {
            if (given && *given == buffer[0]) {
                std::memset(buffer.data(), PATTERN, sizeof(T));
            }
        }
    }
    Json Show(const Argument& argument) const
    {
        Json written = Json::array();
        for (const T& element : buffer) {
            if (IsWritten(element)) {
                written.push_back(ShowElement(argument, element));
            }
        }
        if constexpr (std::same_as<T, uint8_t>) {
            if (argument.form == Form::Mac) {
                return written.empty() ? Json()
                                       : Json(sources::MacToText(std::span(buffer).first(6)));
            }
        }
        if (argument.size > 1) {
            return written;
        }
        return written.empty() ? Json() : written[0];
    }

    std::vector<T> buffer;
    std::optional<T> given;  // before the call

private:
    static T TakeGiven(const Argument& argument, Words& words)
    {
        ParameterSlot<T> slot;
        slot.Read(argument, words);
        return slot.number;
    }

    static bool IsWritten(const T& element)
    {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(&element);
        return std::any_of(bytes, bytes + sizeof(T), [](auto byte) { return byte != PATTERN; });
    }

    static Json ShowElement(const Argument& argument, const T& element)
    {
        if constexpr (std::integral<T>) {
            return NumberToJson(argument.form, element);
        } else {
            return RecordToJson(element);
        }
    }
};

// A text that the function writes.
template <>
struct ParameterSlot<char*> : ParameterSlot<uint8_t*> {
    char* Pass() { return reinterpret_cast<char*>(buffer.data()); }
    Json Show(const Argument& /*argument*/) const
    {
        const auto end = std::find(buffer.begin(), buffer.end(), 0);
        return end == buffer.end() ? Json() : Json(std::string(buffer.begin(), end));
    }
};

// A value made by one of the shell's own wrappers: null if it was not set.
template <>
// NOLINTNEXTLINE(bugprone-exception-escape): moving or destroying JSON throws nothing
struct ParameterSlot<Json*> : PlainSlot {
    static constexpr auto DIRECTION = Direction::Out;

    void Read(const Argument& /*argument*/, Words& /*words*/) {}
    Json* Pass() { return &value; }
    Json Show(const Argument& /*argument*/) const { return value; }

    Json value;
};

}  // namespace shell
