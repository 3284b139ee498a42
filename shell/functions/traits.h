// The traits that the library's lists go by, which modules see.
#pragma once

#include <tarnd_qrb/util_list.h>

namespace shell {

template <const UTIL_LIST_TRAITS_S* traits>
void ElementSize(uint64_t* size)
{
    *size = traits->elemSize;
}

}  // namespace shell
