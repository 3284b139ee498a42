// Subscription definitions. An accepted definition receives exactly the writes that it lists; a
// refused one receives none.
#include <algorithm>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "fuzz.h"
#include "tests/support/recorded_changes.h"
#include "tests/support/test_rows.h"

using namespace standin;
using namespace support::writes;
using nlohmann::json;

namespace {

int descriptor = -1;
std::vector<uint32_t> heard;

int32_t Control(uint32_t watched, uint32_t operation)
{
    descriptor = operation == 0 ? static_cast<int>(watched) : -1;
    return 0;
}

void Hear(ORM_MESSAGE /*message*/, uint32_t event)
{
    heard.push_back(event);
}

// The events expected from one write of each kind to these tables.
std::vector<uint32_t> WriteEachWay(const std::vector<Row>& rows, const json& listed)
{
    constexpr struct {
        const char* name;
        uint32_t event;
        Writing write;
    } ways[] = {{"insert", ORM_EVENT_INSERT, Insert},
                {"update", ORM_EVENT_UPDATE, Update},
                {"replace", ORM_EVENT_REPLACE, Replace},
                {"delete", ORM_EVENT_DELETE, Delete}};
    std::vector<uint32_t> expected;
    for (const auto& [name, event, write] : ways) {
        Write(write, rows);
        if (std::ranges::any_of(
                listed, [&name = name](const json& one) { return one.at("type") == name; })) {
            expected.push_back(event);
        }
    }
    return expected;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const ORM_SESSION session = support::OpenSubscriptions(Control);
    const bool accepted = OrmSubscribe(session, "", text.c_str(), Hear, nullptr, "") == 0;
    const json definition = accepted ? json::parse(text.c_str()) : json();
    std::vector<Row> meant;
    std::vector<Row> others;
    for (const Table& table : Tables()) {
        const bool named = accepted && definition.at("label_name") == std::string(table.name);
        (named ? meant : others).emplace_back(table);
    }
    heard.clear();
    WriteEachWay(others, {});
    CHECK(DbcHandleEvent(descriptor) == 0);
    CHECK(heard.empty());
    if (accepted) {
        const auto expected = WriteEachWay(meant, definition.at("events"));
        CHECK(DbcHandleEvent(descriptor) == 0);
        CHECK(heard == expected);
    }
    CHECK(OrmCloseSession(session) == 0 && descriptor == -1);
    return 0;
}
