// Conversion of the library's records to JSON and from words of a line.
#pragma once

#include <tarnd_qrb/change_detection.h>
#include <tarnd_qrb/interface_type.h>
#include <tarnd_qrb/ipv4_address.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/qos.h>
#include <tarnd_qrb/route.h>

#include "shell/functions/argument.h"

namespace shell {

Json RecordToJson(const BDS_IF_TYPE_INFO_S& record);
Json RecordToJson(const FIB_NHP_S& record);
Json RecordToJson(const SYSAPI_IP4_ADDR_S& record);
Json RecordToJson(const BDS_IPV4_ADDR_ITEM_S& record);
Json RecordToJson(const QRB_IF_PHY_NOTICE_S& record);
Json RecordToJson(const QOS_PROFILE_INFO_S& record);
Json RecordToJson(const MEM_EX_DETAILED_INFO_S& record);

// A destination prefix such as 10.0.0.0/8.
void RecordFromWord(const Argument& argument, const std::string& word, FIB_KEY_S& record);
void RecordFromWord(const Argument& argument, const std::string& word, FIB_PREFIX_S& record);

}  // namespace shell
