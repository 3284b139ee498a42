// JSON-RPC messages (RFC 7047, 4) and the parts of them whose form is checked everywhere.
#pragma once

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace sources::ovsdb {

// JSON on the wire: members in no order.
using Json = nlohmann::json;

// The server sent something that the protocol or the schema does not allow.
class ProtocolError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A server's reply that refuses a request; asking again is of no use.
class ServerRefusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A value as an error shows it: short and printable.
std::string Shown(const Json& value);

// Each checks the form and throws ProtocolError, with "what" naming the value.
const Json& Member(const Json& object, const char* name, const std::string& what);
const Json& Element(const Json& array, size_t index, const std::string& what);
const std::string& StringOf(const Json& value, const std::string& what);
void RequireObject(const Json& value, const std::string& what);

// From lowest to highest; a number that JSON writes with a fraction or an exponent is no integer.
int64_t IntegerOf(const Json& value, int64_t lowest, int64_t highest, const std::string& what);

// Why a request or an operation was refused, in the server's words; empty if it was not.
std::string ReasonIn(const Json& answer);

// A request or notification has a method and parameters, a reply has a result or a refusal.
// NOLINTNEXTLINE(bugprone-exception-escape): moving a JSON value does not throw
struct RpcMessage {
    Json id;
    std::string method;  // empty: a reply
    Json params;         // an array
    Json result;
    std::string refusal;
};

RpcMessage ParseMessage(const std::string& text);

}  // namespace sources::ovsdb
