// Static probes (USDT) for bpftrace, perf, gdb and SystemTap, under the provider tarnd_qrb.
//
// A probe costs one nop while nothing is attached. Its place and its arguments are described in a
// note of the library (readelf -n). A build without <sys/sdt.h> has no probes.
#pragma once

#if __has_include(<sys/sdt.h>)
#define SDT_USE_VARIADIC
#include <sys/sdt.h>
#define QRB_PROBE(name, ...) STAP_PROBEV(tarnd_qrb, name, __VA_ARGS__)
#else
#define QRB_PROBE(name, ...) ::qrb::IgnoreArguments(__VA_ARGS__)
#endif

namespace qrb {

template <typename... Argument>
void IgnoreArguments(const Argument&...)
{
}

}  // namespace qrb
