// One of an interface's addresses: the main one by its type being 1, the mask of one, and the one
// that fits a peer. IPv6 has fixed answers.
#include "ifm/address_list.h"

using namespace qrb;

uint32_t IP_GetMainIpAddr(uint32_t ifIndex, uint32_t* address, uint32_t* masklen)
{
    if (AnyNull(__func__, address, masklen)) {
        return FAIL;
    }
    bool found = false;
    SYSAPI_IP4_ADDR_S main = {};
    const auto isMain = [&](ORM_NODE item, uint32_t, bool* done) -> uint32_t {
        uint8_t type = 0;
        QRB_TRY(ReadItemField(item, ITEM_TYPE, &type));
        found = *done = (type == TYPE_MAIN);
        return found ? ReadAddress(item, &main) : OK;
    };
    if (WalkAddressesOf(__func__, ifIndex, isMain) != OK || !found) {
        return FAIL;
    }
    *address = main.address;
    *masklen = main.masklen;
    return OK;
}

uint32_t IP_GetMask(uint32_t ifIndex, uint32_t address, uint32_t* mask)
{
    if (AnyNull(__func__, mask)) {
        return FAIL;
    }
    bool found = false;
    const auto compare = [&](ORM_NODE item, uint32_t, bool* done) -> uint32_t {
        uint32_t itemAddress = 0;
        QRB_TRY(ReadItemField(item, ITEM_ADDRESS, &itemAddress));
        if (itemAddress == address) {
            uint8_t masklen = 0;
            QRB_TRY(ReadItemField(item, ITEM_MASKLEN, &masklen));
            *mask = MaskOfLength(masklen);
            found = *done = true;
        }
        return OK;
    };
    return WalkAddressesOf(__func__, ifIndex, compare) == OK && found ? OK : FAIL;
}

uint32_t BDS_IPGetIFBestMatchIpAddr(uint32_t ifIndex, uint32_t peer, uint32_t* masklen,
                                    uint32_t* network, uint32_t* address)
{
    if (AnyNull(__func__, masklen, network, address)) {
        return FAIL;
    }
    const char* const here = __func__;
    bool empty = true;
    const auto take = [&](ORM_NODE item, uint32_t index, bool*) -> uint32_t {
        SYSAPI_IP4_ADDR_S own = {};
        empty = false;
        QRB_TRY(ReadAddress(item, &own));
        const uint32_t mask = MaskOfLength(own.masklen);
        const bool fits = own.address != 0 && ((own.address ^ peer) & mask) == 0;
        if (index == 0 || fits) {
            *address = own.address;
            *masklen = own.masklen;
            *network = own.address & mask;
        }
        return OK;
    };
    const uint32_t ret = InSession(here, CHECKED, [&](ORM_SESSION session) -> uint32_t {
        QRB_TRY(WalkAddressesOf(session, ifIndex, take));
        if (empty) {
            QRB_ERROR_AT(here, "There is no ip address on interface!");
        }
        return OK;
    });
    return ret == OK && !empty ? OK : FAIL;
}

uint32_t BDS_IPv6GetValidGlobalAddrByIfIndex(uint32_t /*ifIndex*/, uint8_t* /*address*/)
{
    return FAIL;
}

uint32_t IP6_Addr_GetValidGlobalAddrOnIf(uint32_t /*ifIndex*/, uint8_t* /*address*/)
{
    return OK;
}
