// Records that calls fill, as outputs.
#pragma once

#include <tarnd_qrb/ipv4_address.h>
#include <tarnd_qrb/qos.h>
#include <tarnd_qrb/route.h>

#include "calls/calls.h"

namespace calls {

using OutItem = Out<BDS_IPV4_ADDR_ITEM_S, 1, &BDS_IPV4_ADDR_ITEM_S::address,
                    &BDS_IPV4_ADDR_ITEM_S::masklen, &BDS_IPV4_ADDR_ITEM_S::type>;
using OutAddresses =
    Out<SYSAPI_IP4_ADDR_S, 2, &SYSAPI_IP4_ADDR_S::address, &SYSAPI_IP4_ADDR_S::masklen>;
using OutNextHops = Out<FIB_NHP_S, 2, &FIB_NHP_S::firstValue, &FIB_NHP_S::secondValue>;

// A profile: its remarks, or its CAR entries.
using Profile = QOS_PROFILE_INFO_S;
using OutRemarks =
    Out<Profile, 1, &Profile::valid, &Profile::dscpValid, &Profile::dscp0, &Profile::dscp1,
        &Profile::pri8021pValid, &Profile::pri8021p0, &Profile::pri8021p1>;
struct OutCars : Out<Profile> {
    std::string Output() const
    {
        std::string text = Text(values[0].valid);
        for (const auto& [present, field1, field3, field2, field4] :
             {values[0].car0, values[0].car1}) {
            text += ' ' + Texts({present, field1, field3, field2, field4});
        }
        return text;
    }
};

}  // namespace calls
