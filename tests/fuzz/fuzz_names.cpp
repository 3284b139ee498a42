// Every function of names and texts, against the standard library's strings.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <standin/store.h>
#include <tarnd_qrb/acl.h>
#include <tarnd_qrb/database.h>
#include <tarnd_qrb/interface_lookup.h>
#include <tarnd_qrb/interface_state.h>
#include <tarnd_qrb/qos.h>
#include <tarnd_qrb/records.h>
#include <tarnd_qrb/vlan.h>
#include <tarnd_qrb/vlan_interface.h>

#include "fuzz.h"

using standin::Row;
using standin::Transaction;

namespace {

constexpr uint32_t none = 0xFFFFFFFF;
constexpr uint32_t ifIndex = 7;
constexpr uint32_t untouched = 0xABABABAB;

// A buffer of exactly its size, so that the address sanitizer sees every byte too many.
class Output {
public:
    explicit Output(size_t size) : bytes_(new char[size]), size_(size)
    {
        std::fill_n(bytes_.get(), size, 'x');
    }
    char* Data() const { return bytes_.get(); }

    bool Holds(const std::string& text) const { return bytes_.get() == text; }
    bool IsUntouched() const
    {
        return std::count(bytes_.get(), bytes_.get() + size_, 'x') == static_cast<ptrdiff_t>(size_);
    }

private:
    std::unique_ptr<char[]> bytes_;
    size_t size_;
};

// The characters at the end of a name that are all out of a set; its last argument is the number of
// others that must stand before them.
std::string Tail(const std::string& name, const char* characters, size_t others)
{
    const size_t before = name.find_last_not_of(characters) + 1;
    return before >= others ? name.substr(before) : "";
}

void CheckTails(const std::string& name, uint32_t size)
{
    const Output number(size);
    const std::string tail = Tail(name, "./0123456789:", 2);
    const bool fits = !tail.empty() && tail.size() + 1 < size;
    CHECK(BDS_IfnetGetNumStrFromName(name.c_str(), number.Data(), size) ==
          (fits ? tail.size() : 0));
    CHECK(fits ? number.Holds(tail) : number.IsUntouched());

    const Output id(size);
    const std::string digits = Tail(name, "0123456789", 2);
    const bool digitsFit = !digits.empty() && digits.size() + 1 <= size;
    CHECK((BDS_IfnetGetVlanIdByIfName(name.c_str(), id.Data(), size) == 0) == digitsFit);
    CHECK(digitsFit ? id.Holds(digits) : id.IsUntouched());
}

void CheckCopies(const std::string& name)
{
    const Output full(name.size() + 1);
    CHECK(IF_INTF_GetFullNameByInput(name.c_str(), full.Data()) == 0 && full.Holds(name));

    const bool fits = name.size() < QRB_IF_NAME_SIZE;
    const Output copy(QRB_IF_NAME_SIZE);
    CHECK((IF_INTF_GetNameByIfName(copy.Data(), name.c_str()) == 0) == fits);
    CHECK(!fits || copy.Holds(name));
}

void CheckLiteral(const std::string& text, size_t size)
{
    std::string padded = text.substr(0, size);
    std::string expected = "0x";
    padded.resize(size);
    for (const char byte : padded) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned char>(byte));
        expected += digits;
    }
    const Output literal(2 * size + 3);
    CHECK(QRB_DB_TransStringToHexNumString(text.c_str(), literal.Data(),
                                           static_cast<int32_t>(size)) == 0);
    CHECK(literal.Holds(expected));
}

void CheckSlots(const std::string& text, int32_t slot)
{
    const Output slotText(QRB_SLOT_TEXT_SIZE);
    CHECK(IF_GetSlotStrBySlotId(slot, slotText.Data()) == 0);
    CHECK(slotText.Holds(std::to_string(slot)));
    CHECK(BDS_IfnetGetSlotIdBySlotStr(slotText.Data()) == static_cast<uint32_t>(slot));
    CHECK(BDS_IfnetGetSlotIdBySlotStr(text.c_str()) ==
          (text.size() < QRB_SLOT_TEXT_SIZE
               ? static_cast<uint32_t>(std::strtol(text.c_str(), nullptr, 10))
               : 1));
}

// Any text, or a likely name; often as long as a field is wide, give or take one.
std::string TakeName(fuzz::Input& input)
{
    constexpr std::string_view likely = "ab.:/0123";
    std::string name = input.ConsumeRandomLengthString(100).c_str();
    if (input.ConsumeBool()) {
        std::ranges::for_each(name, [&](char& c) { c = likely[static_cast<uint8_t>(c) % 9]; });
    }
    if (input.ConsumeBool()) {
        name.resize(input.PickValueInArray<size_t>({4, 31, 32, 33, 62, 63, 64, 65, 80}), '7');
    }
    return name;
}

// One row of each table that is looked up by name; longer names are cut to what the field holds.
void Store(const std::string& name)
{
    Transaction transaction;
    transaction.Insert(Row("if_base")
                           .Set("if_index", ifIndex)
                           .Set("if_name", name.substr(0, 63))
                           .Set("simple_name", name.substr(0, 63))
                           .Set("if_type", 8));
    transaction.Insert(Row("vlan")
                           .Set("vlan_id", 9)
                           .Set("name", name.substr(0, 32))
                           .Set("description", name.substr(0, 80)));
    transaction.Insert(
        Row("acl_group").Set("acl_group_id", 5).Set("vsid", 1).Set("acl_name", name.substr(0, 64)));
    transaction.Insert(Row("qos_integration").Set("index", 3).Set("name", name.substr(0, 63)));
    transaction.Insert(
        Row("acl_group_id").Set("id", 4).Set("name", name.substr(0, 64)).Set("acl_number", 3001));
    transaction.Commit();
}

void CheckInterface(const std::string& stored, const std::string& name)
{
    const bool same = stored.substr(0, 63) == name;
    const uint32_t expected = same ? ifIndex : none;
    uint32_t index = untouched;
    CHECK(IF_INTF_GetIfByFullName(name.c_str()) == expected);
    CHECK(IF_INTF_GetIfIndexByFullName(name.c_str()) == expected);
    CHECK((BDS_Ifname2IfGetIndexByname(name.c_str(), &index) == 0) == same);
    CHECK(index == (same ? ifIndex : untouched));

    const Output simple(QRB_IF_NAME_SIZE);
    CHECK((IF_INTF_GetSimpleName(name.c_str(), simple.Data()) == 0) == same);
    CHECK(same ? simple.Holds(name) : simple.IsUntouched());

    const Output full(QRB_IF_NAME_SIZE);
    CHECK(BDS_IfnetGetIfNameByIfIndex(ifIndex, full.Data()) == 0);
    CHECK(full.Holds(stored.substr(0, 63)));

    const std::string digits = Tail(full.Data(), "0123456789", 2);
    const uint32_t id = digits.size() <= 4 ? static_cast<uint32_t>(std::atoi(digits.c_str())) : 0;
    uint32_t vlanId = 0;
    CHECK((BDS_IfnetGetVlanIdByIfIndex(ifIndex, &vlanId) == 0) == (id != 0) && vlanId == id);
}

void CheckVlan(const std::string& stored, const std::string& name)
{
    uint16_t vlanId = 0;
    const bool same = stored.substr(0, 32) == name.substr(0, 32);
    CHECK((L2IF_SH_VLAN_GetVlanidByName(name.c_str(), &vlanId) == 0) == same);
    CHECK(vlanId == (same ? 9 : 0));

    const Output description(QRB_VLAN_DESCRIPTION_SIZE);
    CHECK(L2IF_VLAN_GetDescript(9, description.Data()) == 0);
    CHECK(description.Holds(stored.substr(0, 80)));
}

void CheckAcl(const std::string& stored, const std::string& name)
{
    uint32_t groupId = untouched;
    const std::string condition =
        "vsid = 1 and vsysid = 0 and acl_name = " + name + " and isipv6 = 0";
    const bool runs = condition.size() < 64 && !name.empty();
    // A blank in a name adds words to the condition, and then it says something else.
    if (name.find(' ') == std::string::npos) {
        CHECK(ACL_IsExist(1, 0, 0, name.c_str(), &groupId) == (runs ? 1 : 0));
        CHECK(groupId == (runs && stored == name ? 5 : untouched));
    }

    uint32_t number = untouched;
    const bool same = stored.substr(0, 64) == name;
    CHECK((BDS_AclGetAclNumberByName(name.c_str(), 0, 0, 0, &number) == 0) == same);
    CHECK(number == (same ? 3001 : untouched));

    const Output groupName(ACL_GROUP_NAME_SIZE);
    CHECK(ACL_GetNameByGroupId(4, groupName.Data()) == 0);
    CHECK(groupName.Holds(stored.substr(0, 64)));
}

void CheckProfile(const std::string& stored, const std::string& name)
{
    uint32_t index = untouched;
    CHECK(QOS_GetProfileIdByName(0, name.c_str(), &index) == (name.size() < 64 ? 0 : QOS_FAIL));
    CHECK(index == (stored.substr(0, 63) == name ? 3 : untouched));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const auto number = input.ConsumeIntegral<int32_t>();
    const auto length = input.ConsumeIntegralInRange<uint32_t>(1, 80);
    const bool same = input.ConsumeBool();
    const std::string stored = TakeName(input);
    const std::string name = same ? stored : TakeName(input);

    CheckTails(name, length);
    CheckCopies(name);
    CheckLiteral(name, length);
    CheckSlots(name, number);
    Store(stored);
    CheckInterface(stored, name);
    CheckVlan(stored, name);
    CheckAcl(stored, name);
    CheckProfile(stored, name);
    standin::Reset();
    return 0;
}
