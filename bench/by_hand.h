// Queries written by hand: the same platform calls, zeroed buffers and copied result as in the
// library's function of the same name, and nothing else.
#pragma once

#include <cstdint>

namespace by_hand {

uint32_t IF_INTF_GetIfNameByIfIndex(char* output, uint32_t ifIndex);
uint32_t BDS_IfnetGetIfPhyState(uint32_t ifIndex, uint8_t* state);
uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask);
uint32_t ACL_IsExist(uint16_t vsid, uint16_t vsysid, uint32_t aclNumber, const char* name,
                     uint32_t* groupId);
uint32_t FIB_ScanIp4Forward(uint32_t destination, uint32_t* groupId);

}  // namespace by_hand
