// Rows whose changes the library publishes, and helpers that write them.
#pragma once

#include <string>
#include <vector>

#include <standin/store.h>

namespace support::writes {

using Writing = void (*)(standin::Transaction&, const standin::Row&);

inline constexpr Writing Insert = [](auto& transaction, auto& row) { transaction.Insert(row); };
inline constexpr Writing Delete = [](auto& transaction, auto& row) { transaction.Delete(row); };
inline constexpr Writing Update = [](auto& transaction, auto& row) { transaction.Update(row); };
inline constexpr Writing Replace = [](auto& transaction, auto& row) { transaction.Replace(row); };

inline standin::Row Base(uint64_t interface)
{
    const std::string name = std::to_string(interface);
    return standin::Row("if_base").Set("if_index", interface).Set("if_name", name);
}
inline standin::Row Phy(uint64_t interface, uint64_t state)
{
    return standin::Row("if_phy").Set("if_index", interface).Set("phy_state", state);
}
inline standin::Row Route(uint64_t interface, uint64_t state)
{
    return standin::Row("if_route").Set("if_index", interface).Set("route_state", state);
}
inline standin::Row Port(uint64_t interface, uint64_t pvid, uint64_t use)
{
    standin::Row row = standin::Row("port").Set("if_index", interface).Set("pvid", pvid);
    return row.Set("port_index", interface << 8).Set("switch_port", use);
}

// In one transaction.
inline void Write(Writing write, const std::vector<standin::Row>& rows)
{
    standin::Transaction transaction;
    for (const standin::Row& row : rows) {
        write(transaction, row);
    }
    transaction.Commit();
}

}  // namespace support::writes
