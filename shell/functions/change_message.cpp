#include "shell/functions/change_message.h"

#include <string>

#include "shell/table_lookup.h"
#include "sources/json/json_value.h"

namespace shell {
namespace {

// Static, because callbacks and control functions receive no context argument.
int descriptor = -1;
MessagePosition requestedPosition = MessagePosition::OnRow;
const std::function<void(ORM_MESSAGE)>* onMessage = nullptr;

int32_t TakeDescriptor(uint32_t watched, uint32_t /*operation*/)
{
    descriptor = static_cast<int>(watched);
    return 0;
}

void Run(ORM_MESSAGE message, uint32_t /*eventType*/)
{
    uint8_t end = 0;
    if (requestedPosition == MessagePosition::OnRow) {
        OrmSubFetchNext(message, &end);
    }
    (*onMessage)(message);
}

ORM_SESSION Subscribe(const char* table)
{
    const std::string definition =
        Json({{"label_name", table}, {"events", Json::array({{{"type", "update"}}})}}).dump();
    ORM_SESSION_PARAM param = 0;
    ORM_SESSION session = 0;
    OrmCreateSessionParam("channel:", "osc", &param);
    OrmOpenSubSession(param, TakeDescriptor, &session);
    OrmDestroySessionParam(param);
    OrmSubscribe(session, "shell", definition.c_str(), Run, nullptr, "shell");
    return session;
}

}  // namespace

void OnMessage(const char* table, uint32_t ifIndex, MessagePosition position,
               const std::function<void(ORM_MESSAGE)>& action)
{
    const auto row = standin::Find(standin::Row(table).Set("if_index", ifIndex));
    if (!row) {
        throw standin::Error(std::string(table) + ": if_index " + std::to_string(ifIndex) +
                             ": there is no such row");
    }
    requestedPosition = position;
    onMessage = &action;
    const ORM_SESSION session = Subscribe(table);
    standin::Transaction write;
    write.Update(*row);
    write.Commit();
    DbcHandleEvent(descriptor);
    OrmCloseSession(session);
}

Json FieldsOf(const char* table, const void* record)
{
    Json fields = Json::object();
    const standin::Table& known = KnownTable(table);
    const std::span<const uint8_t> bytes(static_cast<const uint8_t*>(record), known.recordSize);
    for (const standin::Field& field : known.fields) {
        fields.emplace(field.name,
                       sources::ValueToJson(field.kind, bytes.subspan(field.offset, field.width)));
    }
    return fields;
}

}  // namespace shell
