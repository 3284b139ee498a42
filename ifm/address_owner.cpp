// The interface that owns an address, by a scan of every interface's list.
#include "ifm/address_list.h"

using namespace qrb;

namespace {

// The interface of the current record goes to *owner if the record, one of this instance, holds the
// address.
uint32_t MatchOwner(ORM_SESSION session, uint32_t address, uint32_t instanceId, uint32_t* owner)
{
    uint32_t ifIndex = 0;
    uint32_t instance = 0;
    QRB_TRY(ReadField(session, RECORD_IF_INDEX, &ifIndex));
    QRB_TRY(ReadField(session, RECORD_INSTANCE_ID, &instance));
    if (instance != instanceId) {
        return OK;
    }
    return WalkAddresses(session, [&](ORM_NODE item, uint32_t, bool* done) -> uint32_t {
        uint32_t itemAddress = 0;
        QRB_TRY(ReadItemField(item, ITEM_ADDRESS, &itemAddress));
        if (itemAddress == address) {
            *owner = ifIndex;
            *done = true;
        }
        return OK;
    });
}

}  // namespace

uint32_t IP_GetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex)
{
    if (AnyNull(__func__, ifIndex)) {
        return FAIL;
    }
    uint32_t owner = NONE;
    const auto match = [&](ORM_SESSION session, bool* done) {
        // A match ends the scan one row later: the advance past it has to succeed too.
        *done = owner != NONE;
        return *done ? OK : MatchOwner(session, address, instanceId, &owner);
    };
    if (ScanTable(__func__, CHECKED, ADDRESS_TABLE, match) != OK) {
        return FAIL;
    }
    *ifIndex = owner;
    return owner != NONE ? OK : FAIL;
}

uint32_t BDS_IPGetIfindexbyIpAddr(uint32_t address, uint32_t instanceId, uint32_t* ifIndex)
{
    return IP_GetIfindexbyIpAddr(address, instanceId, ifIndex);
}

uint32_t BDS_IPIsLocalIfAddr(uint32_t address, uint32_t instanceId)
{
    uint32_t owner = 0;
    return IP_GetIfindexbyIpAddr(address, instanceId, &owner) == OK ? 1 : 0;
}
