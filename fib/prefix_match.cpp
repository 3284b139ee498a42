// Whether a prefix covers another.
#include <bit>

#include <tarnd_qrb/route.h>

uint32_t FIB_AM_PrefixMatch(const FIB_PREFIX_S* prefix, const FIB_PREFIX_S* probe)
{
    // The leading zeros of the difference are the bits that both share: 32 for equal addresses.
    return prefix->prefixLen <= probe->prefixLen &&
                   prefix->prefixLen <= std::countl_zero(prefix->address ^ probe->address)
               ? 1
               : 0;
}
