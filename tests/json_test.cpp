#include "sources/json_file.h"

#include <sys/mman.h>

#include <algorithm>
#include <fstream>
#include <regex>

#include "support/platform.h"
#include "support/rows.h"
#include "support/system.h"
#include "support/writes.h"

namespace {

using standin::Field;
using standin::Row;
using standin::Table;
using support::RowsOf;

const std::string projectRoot = TARND_PROJECT_ROOT;

// In memory.
const std::string deviceFile =
    "/proc/self/fd/" + std::to_string(memfd_create("device", MFD_CLOEXEC));

void LoadText(const std::string& text)
{
    std::ofstream(deviceFile) << text;
    sources::LoadJson(deviceFile);
}

class JsonTest : public support::PlatformTest {};

TEST_F(JsonTest, LoadingADumpGivesTheSameRows)
{
    const std::vector<Row> rows = support::RandomRows(20).ForAllTables(40);
    support::writes::Write(support::writes::Insert, rows);
    const std::string dump = sources::DumpJson();
    standin::Reset();
    LoadText(dump);
    EXPECT_EQ(support::AllRows(), rows);
    EXPECT_EQ(sources::DumpJson(), dump);
}

TEST_F(JsonTest, APersonMayWriteASetInSeveralWaysAndADumpIsReadable)
{
    LoadText(R"({"port": [
        {"if_index": 1, "vlan_bitmap_1": [1, 10, 11, 12, 4095]},
        {"if_index": 2, "vlan_bitmap_1": "1,10-12,4095"},
        {"if_index": 3, "vlan_bitmap_1": ["10-11", "12-12", "1,4095", 10]}]})");
    EXPECT_EQ(sources::DumpJson(*standin::FindTable("port")), R"({
  "port": [
    {"if_index": 1, "vlan_bitmap_1": [1, "10-12", 4095]},
    {"if_index": 2, "vlan_bitmap_1": [1, "10-12", 4095]},
    {"if_index": 3, "vlan_bitmap_1": [1, "10-12", 4095]}
  ]
}
)");
}

TEST_F(JsonTest, ARefusalTellsThePlaceAndChangesNothing)
{
    LoadText(R"({"port": [{"if_index": 7, "pvid": 1}]})");
    const std::string                         before    = sources::DumpJson();
    const std::pair<const char*, const char*> refused[] = {
        {"", "line 1, column 1: syntax error"},
        {"{\"port\": [\n  {\"if_index\": 1},\n  {\"if_index\" 2}]}",
         "line 3, column 15: syntax error"},
        {"{} {}", "line 1, column 4: syntax error"},
        {"{\"if_base\": [{\"if_index\": 1, \"if_name\": \"\xff\"}]}", "line 1, column 42"},
        {R"({"port": [{"if_index": 1e999}]})", "/port/0/if_index: number overflow"},
        {"[]", "an array is not an object of tables"},
        {R"({"ports": []})", "/ports: there is no such table"},
        {R"({"port": [], "vlan": [], "port": []})", "/port: is given twice"},
        {R"({"port": {}})", "/port: an object is not an array of rows"},
        {R"({"port": [{"if_index": 1}, 2]})", "/port/1: 2 is not an object of fields"},
        {R"({"port": [{"if_index": 1, "pivd": 1}]})", "/port/0/pivd: there is no such field"},
        {R"({"port": [{"pvid": 1, "pvid": 1}]})", "/port/0/pvid: is given twice"},
        {R"({"vlan": [{"vlan_scope0": 0, "vlan_id": 1}]})",
         "/vlan/0: the key field vlan_scope1 is missing"},
        {R"({"port": [{"if_index": 1}, {"if_index": 7}]})",
         "port: if_index 7: there is such a row already"},
        // values that do not fit
        {R"({"port": [{"pvid": 70000}]})", "/port/0/pvid: 70000 is out of range 0 to 65535"},
        {R"({"port": [{"pvid": -1}]})", "/port/0/pvid: -1 is out of range"},
        {R"({"port": [{"pvid": 1.5}]})", "/port/0/pvid: 1.5 is not a whole number"},
        {R"({"port": [{"pvid": "1"}]})", "/port/0/pvid: \"1\" is not a whole number"},
        {R"({"port": [{"pvid": null}]})", "/port/0/pvid: null is not a whole number"},
        {R"({"port": [{"pvid": true}]})", "/port/0/pvid: true is not a whole number"},
        {R"({"vlan": [{"name": 5}]})", "/vlan/0/name: 5 is not a text of up to 32 bytes"},
        {R"({"vlan": [{"name": "1234567890, 1234567890, 123456789"}]})",
         "/vlan/0/name: \"1234567890, 1234567890, 123456789\" is not a text of up to 32 bytes"},
        {R"({"vlan": [{"name": "a\u0000b"}]})",
         R"(/vlan/0/name: "a\u0000b" is not a text without NUL)"},
        {R"({"if_phy": [{"mac_addr": "02:00:00:00:00:1"}]})",
         "/if_phy/0/mac_addr: \"02:00:00:00:00:1\" is not a MAC address such as"},
        {R"({"if_phy": [{"mac_addr": "02:00:00:00:00-01"}]})", "/if_phy/0/mac_addr: "},
        {R"({"if_phy": [{"mac_addr": "02:00:00:00:00:0x"}]})", "/if_phy/0/mac_addr: "},
        {R"({"Fib.ConfigNhpStandard": [{"next_hop": "192.0.2.256"}]})",
         "/Fib.ConfigNhpStandard/0/next_hop: \"192.0.2.256\" is not an IPv4 address"},
        {R"({"Fib.ConfigNhpStandard": [{"next_hop": 3221225985}]})",
         "/Fib.ConfigNhpStandard/0/next_hop: 3221225985 is not an IPv4 address"},
        {R"({"port": [{"vlan_bitmap_1": [4096]}]})",
         "/port/0/vlan_bitmap_1: 4096 is out of range 0 to 4095"},
        {R"({"port": [{"vlan_bitmap_1": ["10-9"]}]})",
         "/port/0/vlan_bitmap_1: the range 10-9 runs backwards"},
        {R"({"port": [{"vlan_bitmap_1": "4090-4096"}]})",
         "/port/0/vlan_bitmap_1: 4096 is out of range 0 to 4095"},
        {R"({"port": [{"vlan_bitmap_1": "1,,2"}]})",
         R"(/port/0/vlan_bitmap_1: ids and ranges such as "1,10-20" are expected at ",2")"},
        {R"({"port": [{"vlan_bitmap_1": "1;2"}]})",
         "/port/0/vlan_bitmap_1: ids and ranges such as"},
        {R"({"port": [{"vlan_bitmap_1": "99999999999"}]})",
         "/port/0/vlan_bitmap_1: 99999999999 is out of range"},
        {R"({"port": [{"vlan_bitmap_1": 10}]})", "/port/0/vlan_bitmap_1: 10 is not a list of ids"},
        {R"({"qos_integration": [{"car_list": {}}]})",
         "/qos_integration/0/car_list: an object is not an array of items"},
        {R"({"qos_integration": [{"car_list": [{}, 1]}]})",
         "/qos_integration/0/car_list/1: 1 is not an object of fields"},
        {R"({"qos_integration": [{"car_list": [{"mask": 1}]}]})",
         "/qos_integration/0/car_list/0/mask: there is no such field"},
        {R"({"am_ipv4_address": [{"ipv4_address_list": [{"type": 256}]}]})",
         "/am_ipv4_address/0/ipv4_address_list/0/type: 256 is out of range 0 to 255"},
    };
    for (const auto& [text, message] : refused) {
        const auto refusal = support::RefusalOf([given = text] { LoadText(given); });
        EXPECT_TRUE(refusal.starts_with(deviceFile + ": " + message)) << text << "\n" << refusal;
        EXPECT_EQ(sources::DumpJson(), before);
    }
}

// What the port says of its VLANs, the VLANs say of their ports.
TEST_F(JsonTest, TheShippedDeviceFillsEveryTableAndAgreesWithItself)
{
    sources::LoadJson(projectRoot + "/data/access-switch.json");
    for (const Table& table : standin::Tables())
        EXPECT_GT(standin::CountRows(table), 3U) << table.name;
    const auto has = [](const Row& row, const std::string& field, uint64_t id) {
        return (row.Bytes(*standin::FindField(row.Description().fields, field))[id / 8] &
                0x80U >> id % 8) != 0;
    };
    for (const std::string bitmap : {"bitmap_1", "bitmap_2"}) {
        for (const Row& port : RowsOf(*standin::FindTable("port"))) {
            for (const Row& vlan : RowsOf(*standin::FindTable("vlan")))
                EXPECT_EQ(has(vlan, "member_" + bitmap, port.Number("port_index") >> 8 & 0xff),
                          port.Number("vlan_scope0") == vlan.Number("vlan_scope0") &&
                              has(port, "vlan_" + bitmap, vlan.Number("vlan_id")));
        }
    }
    for (const Row& member : RowsOf(*standin::FindTable("Fib.ConfigNhpGroupNode")))
        EXPECT_TRUE(standin::Find(
            Row("Fib.ConfigNhpStandard").Set("nhpIndex", member.Number("primaryNhpId"))));
}

// ---- docs/json-format.md keeps up with the tables ----

std::string LineOf(std::string_view list, const Field& field, const char* more = "")
{
    const std::string forms[] = {
        // in the order of Kind
        "0 to " + std::to_string(~uint64_t{0} >> (64 - 8 * std::min(field.width, 8U))),
        "IPv4 address", "MAC address",
        "text of up to " + std::to_string(standin::LongestText(field)) + " bytes",
        "ids 0 to " + std::to_string(field.width * 8 - 1)};
    return "| `" + std::string(list) + std::string(field.name) + "` | " +
           forms[static_cast<size_t>(field.kind)] + more + " |\n";
}

TEST_F(JsonTest, ThePageListsEveryTableAndField)
{
    std::string expected;
    for (const Table& table : standin::Tables()) {
        expected += "### `" + std::string(table.name) + "`\n";
        for (const Field& field : table.fields)
            expected += LineOf(
                "", field, std::ranges::count(table.keys[0].members, &field) != 0 ? ", key" : "");
        for (const standin::List& list : table.lists) {
            expected += "| `" + std::string(list.name) + "` | list |\n";
            for (const Field& field : list.fields)
                expected += LineOf(std::string(list.name) + "[].", field);
        }
    }
    const std::string page = support::TextOf(projectRoot + "/docs/json-format.md");
    const std::regex  described(R"((^|\n)(### `.*`|\| `[^`]*` \| [^|]* \|))");
    std::string       listed;
    for (std::sregex_iterator at(page.begin(), page.end(), described), end; at != end; ++at)
        listed += (*at)[2].str() + "\n";
    EXPECT_EQ(listed, expected);
}

TEST_F(JsonTest, ThePagesExamplesLoad)
{
    const std::string page = support::TextOf(projectRoot + "/docs/json-format.md");
    const std::regex  example("```json\n([^`]*)```");
    size_t            examples = 0;
    for (std::sregex_iterator at(page.begin(), page.end(), example), end; at != end; ++at) {
        standin::Reset();
        EXPECT_NO_THROW(LoadText((*at)[1].str())) << *at->begin();
        ++examples;
    }
    EXPECT_EQ(examples, standin::Tables().size() + 1);
}

}  // namespace
