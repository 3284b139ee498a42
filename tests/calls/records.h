// Records that calls fill, as outputs.
#pragma once

#include <tarnd_qrb/ipv4_address.h>
#include <tarnd_qrb/qos.h>
#include <tarnd_qrb/route.h>

#include "calls/calls.h"

namespace calls {

struct OutItem {
    BDS_IPV4_ADDR_ITEM_S  item = {UNTOUCHED, UNTOUCHED, UNTOUCHED};
    BDS_IPV4_ADDR_ITEM_S* Argument() { return &item; }
    std::string           Output() const { return Texts({item.address, item.masklen, item.type}); }
};

// Room for two addresses.
struct OutAddresses {
    SYSAPI_IP4_ADDR_S  both[2] = {{UNTOUCHED, UNTOUCHED}, {UNTOUCHED, UNTOUCHED}};
    SYSAPI_IP4_ADDR_S* Argument() { return both; }
    std::string        Output() const
    {
        return Texts({both[0].address, both[0].masklen, both[1].address, both[1].masklen});
    }
};

// Room for two.
struct OutNextHops {
    FIB_NHP_S   nextHops[2] = {{UNTOUCHED, UNTOUCHED, {}}, {UNTOUCHED, UNTOUCHED, {}}};
    FIB_NHP_S*  Argument() { return nextHops; }
    std::string Output() const
    {
        return Texts({nextHops[0].firstValue, nextHops[0].secondValue, nextHops[1].firstValue,
                      nextHops[1].secondValue});
    }
};

// A profile: its remarks, or its CAR entries.
struct OutProfile {
    static constexpr QOS_CAR_S NO_CAR = {UNTOUCHED, UNTOUCHED, UNTOUCHED, UNTOUCHED, UNTOUCHED};

    QOS_PROFILE_INFO_S  info = {UNTOUCHED, NO_CAR,    NO_CAR,    UNTOUCHED, UNTOUCHED,
                                UNTOUCHED, UNTOUCHED, UNTOUCHED, UNTOUCHED};
    QOS_PROFILE_INFO_S* Argument() { return &info; }
};
struct OutRemarks : OutProfile {
    std::string Output() const
    {
        return Texts({info.valid, info.dscpValid, info.dscp0, info.dscp1, info.pri8021pValid,
                      info.pri8021p0, info.pri8021p1});
    }
};
struct OutCars : OutProfile {
    std::string Output() const
    {
        const auto& [present, field1, field3, field2, field4] = info.car0;
        return Texts({info.valid, present, field1, field3, field2, field4, info.car1.present,
                      info.car1.field1, info.car1.field3, info.car1.field2, info.car1.field4});
    }
};

}  // namespace calls
