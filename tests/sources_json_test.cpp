#include <sys/mman.h>

#include <algorithm>
#include <fstream>
#include <regex>

#include "sources/json/json_file.h"
#include "support/fault_injection.h"
#include "support/test_rows.h"
#include "support/test_system.h"

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

TEST_F(JsonTest, SetsHaveSeveralFormsAndADumpUsesRanges)
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

TEST_F(JsonTest, AnErrorHasThePathAndChangesNothing)
{
    LoadText(R"({"port": [{"if_index": 7, "pvid": 1}]})");
    const std::string before = sources::DumpJson();
    const auto refuses = [&](const std::string& text, const std::string& message) {
        const auto refusal = support::RefusalOf([&] { LoadText(text); });
        const auto unplaced =
            std::regex_replace(refusal, std::regex(R"(line \d+, column \d+: (?=/|an))"), "");
        EXPECT_TRUE(unplaced.starts_with(deviceFile + ": " + message)) << text << "\n" << refusal;
        EXPECT_EQ(sources::DumpJson(), before);
    };
    std::ifstream refused(projectRoot + "/tests/data/json_refused.txt");
    unsigned count = 0;
    for (std::string text, message; std::getline(refused, text); count++) {
        std::getline(refused >> std::ws, message);
        refuses(text, message);
    }
    EXPECT_GT(count, 30U);
    refuses("{\"port\": [\n  {\"if_index\": 1},\n  {\"if_index\" 2}]}",
            "line 3, column 15: syntax error");
    refuses("{\"if_base\": [{\"if_index\": 1, \"if_name\": \"\xff\"}]}", "line 1, column 42");
}

TEST_F(JsonTest, EachErrorHasItsLineAndColumn)
{
    const std::string prefix = deviceFile + ": line ";
    EXPECT_EQ(support::RefusalOf([] {
                  LoadText(R"({
  "port": [
    {"if_index": 1, "vlan_bitmap_1": [1, 2], "pvid": 70000},
    {"if_index": 2,
     "pvid": 1, "pvid": 2},
    {"if_index": 3, "pivd": "\u00fc"}, 4
  ],
  "ports": [{}],
  "qos_integration": [{"car_list": [{}, {"mask":1}]}]
})");
              }),
              prefix + "3, column 54: /port/0/pvid: 70000 is out of range 0 to 65535\n" + prefix +
                  "5, column 17: /port/1/pvid: is given twice\n" + prefix +
                  "6, column 29: /port/2/pivd: there is no such field\n" + prefix +
                  "6, column 40: /port/3: 4 is not an object of fields\n" + prefix +
                  "8, column 3: /ports: there is no such table\n" + prefix +
                  "9, column 49: /qos_integration/0/car_list/1/mask: there is no such field");
    std::string rows = "{\"port\": [1";
    for (int i = 0; i < 30; ++i) {
        rows += ",\n1";
    }
    const std::string ten = support::RefusalOf([&] { LoadText(rows + "]}"); });
    EXPECT_EQ(std::ranges::count(ten, '\n'), 9) << ten;
    EXPECT_EQ(standin::CountRows(*standin::FindTable("port")), 0U);
}

// The VLAN sets of the ports agree with the member sets of the VLANs.
TEST_F(JsonTest, ShippedDeviceFillsEveryTableConsistently)
{
    sources::LoadJson(projectRoot + "/data/access-switch.json");
    for (const Table& table : standin::Tables()) {
        EXPECT_GT(standin::CountRows(table), 3U) << table.name;
    }
    const auto has = [](const Row& row, const std::string& field, uint64_t id) {
        return (row.Bytes(*standin::FindField(row.Description().fields, field))[id / 8] &
                0x80U >> id % 8) != 0;
    };
    for (const std::string bitmap : {"bitmap_1", "bitmap_2"}) {
        for (const Row& port : RowsOf(*standin::FindTable("port"))) {
            for (const Row& vlan : RowsOf(*standin::FindTable("vlan"))) {
                EXPECT_EQ(has(vlan, "member_" + bitmap, port.Number("port_index") >> 8 & 0xff),
                          port.Number("vlan_scope0") == vlan.Number("vlan_scope0") &&
                              has(port, "vlan_" + bitmap, vlan.Number("vlan_id")));
            }
        }
    }
    for (const Row& member : RowsOf(*standin::FindTable("Fib.ConfigNhpGroupNode"))) {
        EXPECT_TRUE(standin::Find(
            Row("Fib.ConfigNhpStandard").Set("nhpIndex", member.Number("primaryNhpId"))));
    }
}

// ---- docs/json-format.md describes every table ----

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
        for (const Field& field : table.fields) {
            expected += LineOf(
                "", field, std::ranges::count(table.keys[0].members, &field) != 0 ? ", key" : "");
        }
        for (const standin::List& list : table.lists) {
            expected += "| `" + std::string(list.name) + "` | list |\n";
            for (const Field& field : list.fields) {
                expected += LineOf(std::string(list.name) + "[].", field);
            }
        }
    }
    const std::string page = support::TextOf(projectRoot + "/docs/json-format.md");
    const std::regex described(R"((^|\n)(### `.*`|\| `[^`]*` \| [^|]* \|))");
    std::string listed;
    for (std::sregex_iterator at(page.begin(), page.end(), described), end; at != end; ++at) {
        listed += (*at)[2].str() + "\n";
    }
    EXPECT_EQ(listed, expected);
}

TEST_F(JsonTest, ExamplesOfThePageLoad)
{
    const std::string page = support::TextOf(projectRoot + "/docs/json-format.md");
    const std::regex example("```json\n([^`]*)```");
    size_t examples = 0;
    for (std::sregex_iterator at(page.begin(), page.end(), example), end; at != end; ++at) {
        standin::Reset();
        EXPECT_NO_THROW(LoadText((*at)[1].str())) << *at->begin();
        ++examples;
    }
    EXPECT_EQ(examples, standin::Tables().size() + 1);
}

}  // namespace
