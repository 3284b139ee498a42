// JSON-RPC messages (RFC 7047, 4), and checked access to parts of JSON values.
#pragma once

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace sources::ovsdb {

// JSON on the wire; the order of members is not preserved.
using Json = nlohmann::json;

// The server sent something that the protocol or the schema does not allow.
class ProtocolError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The server refused a request; repeating it would fail again.
class ServerRefusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A value as shown in error messages: short and printable.
std::string Shown(const Json& value);

// Each checks the form and throws ProtocolError, with "what" naming the value.
const Json& Member(const Json& object, const char* name, const std::string& what);
const Json& Element(const Json& array, size_t index, const std::string& what);
const std::string& StringOf(const Json& value, const std::string& what);
void RequireObject(const Json& value, const std::string& what);

// Accepts integers from lowest to highest, without a fraction or an exponent.
int64_t IntegerOf(const Json& value, int64_t lowest, int64_t highest, const std::string& what);

// The server's reason for refusing a request or an operation; empty if it was not refused.
std::string ReasonIn(const Json& reply);

// A request or notification has a method and parameters; a reply has a result or a refusal.
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
