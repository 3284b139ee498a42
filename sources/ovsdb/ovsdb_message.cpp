#include "sources/ovsdb/ovsdb_message.h"

#include <utility>

namespace sources::ovsdb {
namespace {

Json TakeMember(Json& object, const char* name)
{
    const auto found = object.find(name);
    return found != object.end() ? std::move(*found) : Json();
}

}  // namespace

std::string Shown(const Json& value)
{
    constexpr size_t LONGEST = 80;
    if (value.is_structured()) {
        return std::string("an ") + value.type_name();
    }
    const std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    return text.size() > LONGEST ? text.substr(0, LONGEST) + "..." : text;
}

void RequireObject(const Json& value, const std::string& what)
{
    if (!value.is_object()) {
        throw ProtocolError(what + ": " + Shown(value) + " is not an object");
    }
}

const Json& Member(const Json& object, const char* name, const std::string& what)
{
    RequireObject(object, what);
    const auto found = object.find(name);
    if (found == object.end()) {
        throw ProtocolError(what + ": " + name + " is missing");
    }
    return *found;
}

const Json& Element(const Json& array, size_t index, const std::string& what)
{
    if (!array.is_array() || array.size() <= index) {
        throw ProtocolError(what + ": " + Shown(array) + " is not an array of " +
                            std::to_string(index + 1) + " or more elements");
    }
    return array[index];
}

const std::string& StringOf(const Json& value, const std::string& what)
{
    const auto* text = value.get_ptr<const std::string*>();
    if (text == nullptr) {
        throw ProtocolError(what + ": " + Shown(value) + " is not a string");
    }
    return *text;
}

int64_t IntegerOf(const Json& value, int64_t lowest, int64_t highest, const std::string& what)
{
    if (!value.is_number_integer()) {
        throw ProtocolError(what + ": " + Shown(value) + " is not an integer");
    }
    const bool isTooHigh = value.is_number_unsigned() && value.get<uint64_t>() > INT64_MAX;
    if (isTooHigh || value.get<int64_t>() < lowest || value.get<int64_t>() > highest) {
        throw ProtocolError(what + ": " + Shown(value) + " is out of range " +
                            std::to_string(lowest) + " to " + std::to_string(highest));
    }
    return value.get<int64_t>();
}

std::string ReasonIn(const Json& reply)
{
    constexpr size_t LONGEST = 1000;
    const auto error = reply.is_object() ? reply.find("error") : reply.end();
    if (error == reply.end() || error->is_null()) {
        return {};
    }
    std::string reason = ReasonIn(*error);
    if (!error->is_object()) {
        const auto details = reply.find("details");
        const Json& words = details != reply.end() ? *details : *error;
        reason = words.is_string() ? words.get<std::string>() : Shown(words);
    }
    return reason.empty() ? "unknown error" : reason.substr(0, LONGEST);
}

RpcMessage ParseMessage(const std::string& text)
{
    Json whole = Json::parse(text, nullptr, false);
    if (!whole.is_object()) {
        throw ProtocolError("the server sends something that is not JSON-RPC");
    }
    RpcMessage message;
    message.id = TakeMember(whole, "id");
    const Json method = TakeMember(whole, "method");
    if (method.is_null()) {
        message.refusal = ReasonIn(whole);
        message.result = TakeMember(whole, "result");
        return message;
    }
    message.method = StringOf(method, "method");
    message.params = TakeMember(whole, "params");
    if (message.method.empty() || !message.params.is_array()) {
        throw ProtocolError("a request without method or parameters");
    }
    return message;
}

}  // namespace sources::ovsdb
