#include "shell/functions/record_json.h"

#include <standin/store.h>

#include "shell/words.h"

namespace shell {
namespace {

// Member names are those of "car_list": committed rate and burst, peak rate and burst.
Json CarToJson(const QOS_CAR_S& car)
{
    return {{"present", car.present},
            {"cir", car.field1},
            {"cbs", car.field2},
            {"pir", car.field3},
            {"pbs", car.field4}};
}

uint32_t AddressFromWord(const Argument& argument, const std::string& word)
{
    Argument address = argument;
    address.form = Form::Ipv4;
    return static_cast<uint32_t>(NumberFromWord(address, word, UINT32_MAX));
}

}  // namespace

Json RecordToJson(const BDS_IF_TYPE_INFO_S& record)
{
    return {{"first_value", record.first_value},
            {"port_type", record.port_type},
            {"third_value", record.third_value}};
}

Json RecordToJson(const FIB_NHP_S& record)
{
    return {{"nextHop", standin::Ipv4ToText(record.firstValue)}, {"ifIndex", record.secondValue}};
}

Json RecordToJson(const SYSAPI_IP4_ADDR_S& record)
{
    return {{"address", standin::Ipv4ToText(record.address)}, {"masklen", record.masklen}};
}

Json RecordToJson(const BDS_IPV4_ADDR_ITEM_S& record)
{
    return {{"address", standin::Ipv4ToText(record.address)},
            {"masklen", record.masklen},
            {"type", record.type}};
}

Json RecordToJson(const QRB_IF_PHY_NOTICE_S& record)
{
    return {{"ifIndex", record.ifIndex}, {"phyState", record.phyState}};
}

Json RecordToJson(const QOS_PROFILE_INFO_S& record)
{
    return {{"valid", record.valid},          {"car0", CarToJson(record.car0)},
            {"car1", CarToJson(record.car1)}, {"pri8021pValid", record.pri8021pValid},
            {"pri8021p0", record.pri8021p0},  {"pri8021p1", record.pri8021p1},
            {"dscpValid", record.dscpValid},  {"dscp0", record.dscp0},
            {"dscp1", record.dscp1}};
}

Json RecordToJson(const MEM_EX_DETAILED_INFO_S& record)
{
    return {{"name", record.name}, {"bytes", record.bytes}, {"blocks", record.blocks}};
}

void RecordFromWord(const Argument& argument, const std::string& word, FIB_KEY_S& record)
{
    record.destAddr = AddressFromWord(argument, word);
}

void RecordFromWord(const Argument& argument, const std::string& word, FIB_PREFIX_S& record)
{
    const size_t slash = word.find('/');
    record.address = AddressFromWord(argument, word.substr(0, slash));
    record.prefixLen = 32;
    if (slash != std::string::npos) {
        record.prefixLen = static_cast<uint8_t>(
            NumberFromWord({argument.name}, word.substr(slash + 1), UINT8_MAX));
    }
}

}  // namespace shell
