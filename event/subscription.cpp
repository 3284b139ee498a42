// Start of change notification and the library's four subscriptions.
#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/event_registry.h>
#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/subscription.h>

#include "db/access.h"
#include "event/listener_session.h"

using namespace qrb;

namespace {

// The subscription interface fixes these texts, byte for byte.
constexpr char IF_BASE_DEFINITION[] =
    R"({"name":"qrb_json_sub_if_base","label_name":"if_base","comment":"qrb_json_sub_if_base",)"
    R"("type":"before_commit","events": [)"
    R"({"type":"insert", "msgTypes": ["old object", "new object"]},)"
    R"({"type":"delete", "msgTypes": ["new object", "old object"]} ], )"
    R"("is_path":false, "persist":false })";
constexpr char IF_ROUTE_DEFINITION[] =
    R"({"name":"qrb_json_sub_if_route","label_name":"if_route","comment":"qrb_json_sub_if_route",)"
    R"("type":"before_commit","events": [)"
    R"({"type":"replace", "msgTypes": ["old object", "new object"]},)"
    R"({"type":"update", "msgTypes": ["new object", "old object"]} ], )"
    R"("is_path":false, "persist":false })";
constexpr char IF_PHY_DEFINITION[] =
    R"({"name":"qrb_json_sub_if_phy","label_name":"if_phy","comment":"qrb_json_sub_if_phy",)"
    R"("type":"before_commit","events": [)"
    R"({"type":"insert", "msgTypes": ["new object", "old object"]},)"
    R"({"type":"replace", "msgTypes": ["old object", "new object"]},)"
    R"({"type":"delete", "msgTypes": ["old object", "new object"]},)"
    R"({"type":"update", "msgTypes": ["new object", "old object"]} ], )"
    R"("is_path":false, "persist":false })";
constexpr char PORT_DEFINITION[] =
    R"({"name":"qrb_json_sub_port","label_name":"port","comment":"qrb_json_sub_port",)"
    R"("type":"before_commit","events": [)"
    R"({"type":"insert", "msgTypes": ["new object", "old object"]},)"
    R"({"type":"replace", "msgTypes": ["old object", "new object"]},)"
    R"({"type":"delete", "msgTypes": ["old object", "new object"]},)"
    R"({"type":"update", "msgTypes": ["new object", "old object"]} ], )"
    R"("is_path":false, "persist":false })";

constexpr size_t LengthOf(const auto& definition)
{
    return sizeof(definition) - 1;
}
static_assert(LengthOf(IF_BASE_DEFINITION) == 278);
static_assert(LengthOf(IF_ROUTE_DEFINITION) == 282);
static_assert(LengthOf(IF_PHY_DEFINITION) == 396);
static_assert(LengthOf(PORT_DEFINITION) == 390);

struct SUBSCRIPTION_S {
    const char* table;  // also the connection name
    const char* name;
    const char* owner;
    const char* definition;
    ORM_SUB_CALLBACK callback;
};

// clang-format off
constexpr SUBSCRIPTION_S PORT     = {"port", "qrb_orm_sub_port", "qrb_port",
                                     PORT_DEFINITION, QRB_EVENT_PortTableCallback};
constexpr SUBSCRIPTION_S IF_ROUTE = {"if_route", "qrb_orm_sub_if_route_table", "qrb_if_route",
                                     IF_ROUTE_DEFINITION, QRB_EVENT_IfRouteTableCallback};
constexpr SUBSCRIPTION_S IF_PHY   = {"if_phy", "qrb_orm_sub_if_phy", "qrb_if_phy",
                                     IF_PHY_DEFINITION, QRB_EVENT_IfPhyTableCallback};
constexpr SUBSCRIPTION_S IF_BASE  = {"if_base", "qrb_orm_sub_if_base", "qrb_if_base",
                                     IF_BASE_DEFINITION, QRB_EVENT_IfBaseTableCallback};
// clang-format on

uint32_t SubscribeTo(const char* function, const SUBSCRIPTION_S& subscription)
{
    // Passes a copy: the database gets a buffer that it may modify.
    char definition[sizeof(IF_PHY_DEFINITION)];
    if (strcpy_s(definition, sizeof(definition), subscription.definition) != 0 ||
        QrbDbListenerRegisterEvent(subscription.name, subscription.table, definition,
                                   subscription.callback, nullptr, subscription.owner) != OK) {
        QRB_ERROR_AT(function, "Failed to subscribe to \"%s\".\n", subscription.table);
        return FAIL;
    }
    return OK;
}

// Serialises starts: threads that start the library at the same time subscribe once.
pthread_mutex_t startLock = PTHREAD_MUTEX_INITIALIZER;

// Number of the session on which a start subscribed to every table; 0 if none did. Guarded by
// startLock.
uint64_t startedSession = 0;

uint32_t SubscribeToTables()
{
    constexpr char HERE[] = "BDS_InitStart";
    if (QRB_DB_InitOrm() != OK) {
        QRB_INFO_AT(HERE, "Init orm - fail.\n");
        return FAIL;
    }
    if (QRB_EVENT_SubToPortTable() != OK) {
        QRB_INFO_AT(HERE, "subscribe to \"port\" database - fail.\n");
        return FAIL;
    }
    if (QRB_EVENT_SubToIfRouteTable() != OK) {
        QRB_INFO_AT(HERE, "subscribe to \"if_route\" database - fail.\n");
        return FAIL;
    }
    if (QRB_EVENT_SubToIfPhyTable() != OK) {
        QRB_INFO_AT(HERE, "subscribe to \"if_phy\" database - fail.\n");
        return FAIL;
    }
    if (QRB_EVENT_SubToIfBaseTable() != OK) {
        QRB_INFO_AT(HERE, "subscribe to \"if_base\" database - fail.\n");
        return FAIL;
    }
    return OK;
}

}  // namespace

uint32_t QRB_EVENT_SubToPortTable()
{
    return SubscribeTo(__func__, PORT);
}

uint32_t QRB_EVENT_SubToIfRouteTable()
{
    return SubscribeTo(__func__, IF_ROUTE);
}

uint32_t QRB_EVENT_SubToIfPhyTable()
{
    return SubscribeTo(__func__, IF_PHY);
}

uint32_t QRB_EVENT_SubToIfBaseTable()
{
    return SubscribeTo(__func__, IF_BASE);
}

uint32_t BDS_InitStart()
{
    L2IF_SH_EvtCbRegTbl_Init();
    IF_EvtInit();
    pthread_mutex_lock(&startLock);
    uint32_t ret = OK;
    if (startedSession == 0 || startedSession != OpenSessionNumber()) {
        ret = SubscribeToTables();
        startedSession = ret == OK ? OpenSessionNumber() : 0;
    }
    pthread_mutex_unlock(&startLock);
    return ret;
}
