#include "sources/json_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include <unistd.h>

#include <tarnd_qrb/interface_lookup.h>

#include "sources/json_value.h"
#include "support/platform.h"
#include "support/rows.h"

namespace {

using standin::Field;
using standin::Kind;
using standin::Row;
using standin::Table;
using support::RowsOf;

const std::filesystem::path projectRoot = TARND_PROJECT_ROOT;

std::string ReadText(const std::filesystem::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

// Tests run side by side, each in a process of its own.
const std::filesystem::path deviceFile =
    std::filesystem::path(testing::TempDir()) / ("device-" + std::to_string(getpid()) + ".json");

void LoadText(const std::string& text)
{
    std::ofstream(deviceFile) << text;
    sources::LoadJson(deviceFile);
}

std::string RefusalOf(const std::string& text)
{
    try {
        LoadText(text);
        return "loaded";
    } catch (const standin::Error& error) {
        return error.what();
    }
}

class JsonTest : public support::PlatformTest {
protected:
    void TearDown() override
    {
        std::filesystem::remove(deviceFile);
        support::PlatformTest::TearDown();
    }
};

TEST_F(JsonTest, LoadingADumpGivesTheSameRows)
{
    support::RandomRows           random(20);
    standin::Transaction          fill;
    std::vector<std::vector<Row>> before;
    for (const Table& table : standin::Tables()) {
        for (int i = 0; i < 40; ++i)
            fill.Insert(random.Next(table));
    }
    fill.Commit();
    for (const Table& table : standin::Tables())
        before.push_back(RowsOf(table));

    const std::string dump = sources::DumpJson();
    standin::Reset();
    LoadText(dump);

    for (size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(before[i], RowsOf(standin::Tables()[i])) << standin::Tables()[i].name;
    EXPECT_EQ(dump, sources::DumpJson());
}

TEST_F(JsonTest, APersonMayWriteASetInSeveralWays)
{
    LoadText(R"({"port": [
        {"if_index": 1, "vlan_bitmap_1": [1, 10, 11, 12, 4095]},
        {"if_index": 2, "vlan_bitmap_1": "1,10-12,4095"},
        {"if_index": 3, "vlan_bitmap_1": ["10-11", "12-12", "1,4095", 10]}]})");
    const auto        rows = RowsOf(*standin::FindTable("port"));
    const std::string dump = sources::RowToJson(rows[0]).dump();
    EXPECT_EQ(dump, R"({"if_index":1,"vlan_bitmap_1":[1,"10-12",4095]})");
    const Field& set = *standin::FindField(rows[0].Description().fields, "vlan_bitmap_1");
    EXPECT_TRUE(std::ranges::equal(rows[0].Bytes(set), rows[1].Bytes(set)));
    EXPECT_TRUE(std::ranges::equal(rows[0].Bytes(set), rows[2].Bytes(set)));
}

TEST_F(JsonTest, ADumpIsReadable)
{
    LoadText(R"({"vlan": [{"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 9, "name": "nine"}]})");
    EXPECT_EQ(sources::DumpJson(*standin::FindTable("vlan")), R"({
  "vlan": [
    {"vlan_scope0": 0, "vlan_scope1": 0, "vlan_id": 9, "name": "nine"}
  ]
}
)");
}

struct Refusal {
    const char* text;
    const char* message;  // behind the name of the file
};

void PrintTo(const Refusal& refusal, std::ostream* out)
{
    *out << refusal.text;
}

class JsonRefusal : public JsonTest, public testing::WithParamInterface<Refusal> {};

TEST_P(JsonRefusal, TellsPlaceAndReasonAndChangesNothing)
{
    LoadText(R"({"port": [{"if_index": 7, "pvid": 1}]})");
    const std::string before  = sources::DumpJson();
    const std::string message = RefusalOf(GetParam().text);
    EXPECT_TRUE(message.starts_with(deviceFile.string() + ": " + GetParam().message)) << message;
    EXPECT_EQ(before, sources::DumpJson());
}

INSTANTIATE_TEST_SUITE_P(
    Syntax, JsonRefusal,
    testing::Values(
        Refusal{"", "line 1, column 1: syntax error"},
        Refusal{"{\"port\": [\n  {\"if_index\": 1},\n  {\"if_index\" 2}]}",
                "line 3, column 15: syntax error"},
        Refusal{"{\"port\": [{\"if_index\": 1}]", "line 1, column 27: syntax error"},
        Refusal{"{} {}", "line 1, column 4: syntax error"},
        Refusal{"{\"if_base\": [{\"if_index\": 1, \"if_name\": \"\xff\"}]}", "line 1, column 42"},
        Refusal{R"({"port": [{"if_index": 1e999}]})", "/port/0/if_index: number overflow"}));

INSTANTIATE_TEST_SUITE_P(
    Shape, JsonRefusal,
    testing::Values(
        Refusal{"[]", "an array is not an object of tables"},
        Refusal{"12", "12 is not an object of tables"},
        Refusal{R"({"ports": []})", "/ports: there is no such table"},
        Refusal{R"({"port": [], "vlan": [], "port": []})", "/port: is given twice"},
        Refusal{R"({"port": {}})", "/port: an object is not an array of rows"},
        Refusal{R"({"port": [{"if_index": 1}, 2]})", "/port/1: 2 is not an object of fields"},
        Refusal{R"({"port": [[{"if_index": 1}]]})", "/port/0: an array is not an object"},
        Refusal{R"({"port": [{"if_index": 1, "pivd": 1}]})",
                "/port/0/pivd: there is no such field"},
        Refusal{R"({"port": [{"if_index": 1, "pvid": 1, "pvid": 1}]})",
                "/port/0/pvid: is given twice"},
        Refusal{R"({"port": [{"pvid": 1}]})", "/port/0: the key field if_index is missing"},
        Refusal{R"({"vlan": [{"vlan_scope0": 0, "vlan_id": 1}]})",
                "/vlan/0: the key field vlan_scope1 is missing"}));

INSTANTIATE_TEST_SUITE_P(
    Values, JsonRefusal,
    testing::Values(
        Refusal{R"({"port": [{"if_index": 1}, {"if_index": 2}, {"if_index": 3, "pvid": 70000}]})",
                "/port/2/pvid: 70000 is out of range 0 to 65535"},
        Refusal{R"({"port": [{"if_index": 4294967296}]})",
                "/port/0/if_index: 4294967296 is out of range 0 to 4294967295"},
        Refusal{R"({"port": [{"if_index": -1}]})", "/port/0/if_index: -1 is out of range"},
        Refusal{R"({"port": [{"if_index": 1.5}]})", "/port/0/if_index: 1.5 is not a whole number"},
        Refusal{R"({"port": [{"if_index": "1"}]})",
                "/port/0/if_index: \"1\" is not a whole number"},
        Refusal{R"({"port": [{"if_index": null}]})",
                "/port/0/if_index: null is not a whole number"},
        Refusal{R"({"if_base": [{"if_index": 1, "if_name": 5}]})",
                "/if_base/0/if_name: 5 is not a text"},
        Refusal{R"({"if_base": [{"if_index": 1, "if_name": "a\u0000b"}]})",
                "/if_base/0/if_name: \"a\\u0000b\" is not a text without NUL"},
        Refusal{R"({"if_phy": [{"if_index": 1, "mac_addr": "02:00:00:00:00:1"}]})",
                "/if_phy/0/mac_addr: \"02:00:00:00:00:1\" is not a MAC address"},
        Refusal{R"({"if_phy": [{"if_index": 1, "mac_addr": "02:00:00:00:00-01"}]})",
                "/if_phy/0/mac_addr: "},
        Refusal{R"({"Fib.ConfigNhpStandard": [{"nhpIndex": 1, "next_hop": "192.0.2.256"}]})",
                "/Fib.ConfigNhpStandard/0/next_hop: \"192.0.2.256\" is not an IPv4 address"},
        Refusal{R"({"Fib.ConfigNhpStandard": [{"nhpIndex": 1, "next_hop": 3221225985}]})",
                "/Fib.ConfigNhpStandard/0/next_hop: 3221225985 is not an IPv4 address"},
        Refusal{R"({"port": [{"if_index": 1, "vlan_bitmap_1": [4096]}]})",
                "/port/0/vlan_bitmap_1: 4096 is out of range 0 to 4095"},
        Refusal{R"({"port": [{"if_index": 1, "vlan_bitmap_1": ["10-9"]}]})",
                "/port/0/vlan_bitmap_1: the range 10-9 runs backwards"},
        Refusal{R"({"port": [{"if_index": 1, "vlan_bitmap_1": "1,,2"}]})",
                "/port/0/vlan_bitmap_1: ids and ranges such as \"1,10-20\" are expected at \",2\""},
        Refusal{R"({"port": [{"if_index": 1, "vlan_bitmap_1": "99999999999"}]})",
                "/port/0/vlan_bitmap_1: 99999999999 is out of range"},
        Refusal{R"({"port": [{"if_index": 1, "vlan_bitmap_1": 10}]})",
                "/port/0/vlan_bitmap_1: 10 is not a list of ids"},
        Refusal{R"({"am_ipv4_address": [{"if_index": 1, "ipv4_address_list": {}}]})",
                "/am_ipv4_address/0/ipv4_address_list: an object is not an array of items"},
        Refusal{R"({"am_ipv4_address": [{"if_index": 1, "ipv4_address_list": [{}, {"mask": 1}]}]})",
                "/am_ipv4_address/0/ipv4_address_list/1/mask: there is no such field"},
        Refusal{R"({"am_ipv4_address": [{"if_index": 1, "ipv4_address_list": [{"type": 256}]}]})",
                "/am_ipv4_address/0/ipv4_address_list/0/type: 256 is out of range 0 to 255"}));

INSTANTIATE_TEST_SUITE_P(
    Keys, JsonRefusal,
    testing::Values(
        Refusal{R"({"vlan": [], "port": [{"if_index": 1}, {"if_index": 2}, {"if_index": 1}]})",
                "port: if_index 1: there is such a row already"},
        Refusal{R"({"port": [{"if_index": 1}, {"if_index": 7}]})",
                "port: if_index 7: there is such a row already"},
        Refusal{
            R"({"if_base": [{"if_index": 1, "if_name": "a"}, {"if_index": 2, "if_name": "a"}]})",
            "if_base: name_scope 0, if_name \"a\": another row has this local_key"}));

TEST_F(JsonTest, ATextMayFillItsFieldAndNoMore)
{
    for (const Table& table : standin::Tables()) {
        for (const Field& field : table.fields) {
            if (field.kind != Kind::Text)
                continue;
            const std::string fits(standin::LongestText(field), 'x');
            Row               row(table);
            sources::SetFromJson(row, field, fits);
            EXPECT_EQ(row.Text(field.name), fits);
            EXPECT_THROW(sources::SetFromJson(row, field, fits + "x"), sources::JsonError);
        }
    }
}

TEST_F(JsonTest, AFileThatCannotBeReadIsNamed)
{
    for (const char* file : {"/nowhere/device.json", "/"}) {
        try {
            sources::LoadJson(file);
            ADD_FAILURE() << file;
        } catch (const standin::Error& error) {
            EXPECT_TRUE(std::string_view(error.what()).starts_with(std::string(file) + ": "))
                << error.what();
        }
    }
}

TEST_F(JsonTest, TheShippedDeviceFillsEveryTableAndAnswers)
{
    sources::LoadJson(projectRoot / "data/access-switch.json");
    for (const Table& table : standin::Tables())
        EXPECT_GT(standin::CountRows(table), 3U) << table.name;
    char name[64] = "";
    EXPECT_EQ(IF_INTF_GetIfNameByIfIndex(name, 2), 0U);
    EXPECT_STREQ(name, "Ethernet0/0/2");
}

// What the port says of its VLANs, the VLANs say of their ports.
TEST_F(JsonTest, TheShippedDeviceAgreesWithItself)
{
    sources::LoadJson(projectRoot / "data/access-switch.json");
    const auto has = [](const Row& row, const char* field, uint64_t id) {
        return (row.Bytes(*standin::FindField(row.Description().fields, field))[id / 8] &
                0x80U >> id % 8) != 0;
    };
    for (const Row& port : RowsOf(*standin::FindTable("port"))) {
        for (const Row& vlan : RowsOf(*standin::FindTable("vlan"))) {
            const auto position  = port.Number("port_index") >> 8 & 0xff;
            const auto id        = vlan.Number("vlan_id");
            const bool reachable = port.Number("vlan_scope0") == vlan.Number("vlan_scope0");
            EXPECT_EQ(has(vlan, "member_bitmap_1", position),
                      reachable && has(port, "vlan_bitmap_1", id));
            EXPECT_EQ(has(vlan, "member_bitmap_2", position),
                      reachable && has(port, "vlan_bitmap_2", id));
        }
    }
    for (const Row& member : RowsOf(*standin::FindTable("Fib.ConfigNhpGroupNode")))
        EXPECT_TRUE(standin::Find(
            Row("Fib.ConfigNhpStandard").Set("nhpIndex", member.Number("primaryNhpId"))));
}

// ---- docs/json-format.md keeps up with the tables ----

std::string FormOf(const Field& field)
{
    switch (field.kind) {
        case Kind::Number:
            return "0 to " + std::to_string(~uint64_t{0} >> (64 - 8 * field.width));
        case Kind::Ipv4:
            return "IPv4 address";
        case Kind::Mac:
            return "MAC address";
        case Kind::Text:
            return "text of up to " + std::to_string(standin::LongestText(field)) + " bytes";
        case Kind::Set:
            return "ids 0 to " + std::to_string(field.width * 8 - 1);
    }
    return {};
}

std::string PageLine(const std::string& name, const std::string& form)
{
    return "| `" + name + "` | " + form + " |\n";
}

// The page's headings and first two columns.
std::string ExpectedPage()
{
    std::string page;
    for (const Table& table : standin::Tables()) {
        page += "### `" + std::string(table.name) + "`\n";
        for (const Field& field : table.fields) {
            const bool key = std::ranges::count(table.keys[0].members, &field) != 0;
            page += PageLine(std::string(field.name), FormOf(field) + (key ? ", key" : ""));
        }
        for (const standin::List& list : table.lists) {
            const std::string name(list.name);
            page += PageLine(name, "list");
            for (const Field& field : list.fields)
                page += PageLine(name + "[]." + std::string(field.name), FormOf(field));
        }
    }
    return page;
}

TEST_F(JsonTest, ThePageListsEveryTableAndField)
{
    std::istringstream page(ReadText(projectRoot / "docs/json-format.md"));
    const std::regex   described(R"((### `.*`)|(\| `[^`]*` \| [^|]* \|).*)");
    std::string        listed;
    std::smatch        match;
    for (std::string line; std::getline(page, line);)
        if (std::regex_match(line, match, described))
            listed += match[1].str() + match[2].str() + "\n";
    EXPECT_EQ(listed, ExpectedPage());
}

TEST_F(JsonTest, ThePagesExamplesLoad)
{
    const std::string page = ReadText(projectRoot / "docs/json-format.md");
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
