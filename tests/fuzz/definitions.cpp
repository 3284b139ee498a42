// Subscription definitions. What is accepted hears of the writes that the text lists, and of no
// others; what is refused hears of none.
#include <string>
#include <vector>

#include <standin/database.h>
#include <tarnd_platform/orm_subscription.h>
#include <nlohmann/json.hpp>

#include "fuzz.h"

using namespace standin;
using nlohmann::json;

namespace {

int                   descriptor = -1;
std::vector<uint32_t> heard;

int32_t Control(uint32_t watched, uint32_t operation)
{
    descriptor = operation == 0 ? static_cast<int>(watched) : -1;
    return 0;
}

void Hear(ORM_MESSAGE /*message*/, uint32_t event)
{
    heard.push_back(event);
}

ORM_SESSION Open()
{
    ORM_SESSION_PARAM param   = 0;
    ORM_SESSION       session = 0;
    CHECK(OrmCreateSessionParam("channel:", "osc", &param) == 0);
    CHECK(OrmOpenSubSession(param, Control, &session) == 0);
    OrmDestroySessionParam(param);
    return session;
}

void WriteEachWay(const Table& table)
{
    using Write = void (Transaction::*)(Row);
    for (const Write write : {&Transaction::Insert, &Transaction::Update, &Transaction::Replace}) {
        Transaction transaction;
        (transaction.*write)(Row(table));
        transaction.Commit();
    }
    Transaction transaction;
    transaction.Delete(Row(table));
    transaction.Commit();
}

// The events in the order of WriteEachWay.
std::vector<uint32_t> Listed(const json& definition)
{
    constexpr std::pair<const char*, uint32_t> events[] = {{"insert", ORM_EVENT_INSERT},
                                                           {"update", ORM_EVENT_UPDATE},
                                                           {"replace", ORM_EVENT_REPLACE},
                                                           {"delete", ORM_EVENT_DELETE}};
    std::vector<uint32_t>                      listed;
    for (const auto& [name, event] : events) {
        for (const json& entry : definition.at("events")) {
            if (entry.at("type") == name) {
                listed.push_back(event);
                break;
            }
        }
    }
    return listed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const ORM_SESSION session  = Open();
    const bool        accepted = OrmSubscribe(session, "", text.c_str(), Hear, nullptr, "") == 0;
    heard.clear();
    if (accepted) {
        const json definition = json::parse(text.c_str());
        for (const Table& table : Tables()) {
            WriteEachWay(table);
            CHECK(DbcHandleEvent(descriptor) == 0);
            CHECK(heard == (definition.at("label_name") == std::string(table.name)
                                ? Listed(definition)
                                : std::vector<uint32_t>{}));
            heard.clear();
        }
    } else {
        WriteEachWay(*FindTable("port"));
        CHECK(DbcHandleEvent(descriptor) == 0);
        CHECK(heard.empty());
    }
    CHECK(OrmCloseSession(session) == 0 && descriptor == -1);
    return 0;
}
