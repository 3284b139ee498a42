#include "shell/functions/row_callbacks.h"

#include <array>
#include <cstring>

#include <tarnd_platform/orm_accessors.h>

#include "shell/functions/argument.h"
#include "shell/table_lookup.h"
#include "shell/words.h"
#include "sources/json/json_value.h"

namespace shell {
namespace {

Json ItemOf(const standin::List& list, ORM_NODE item)
{
    Json fields = Json::object();
    for (const standin::Field& field : list.fields) {
        std::vector<uint8_t> bytes(field.width);
        if (OrmNodeGetFieldById(item, field.number, bytes.data(), field.width) == 0) {
            fields.emplace(field.name, sources::ValueToJson(field.kind, bytes));
        }
    }
    return fields;
}

Json ItemsOf(const standin::List& list, ORM_NODE node)
{
    Json items = Json::array();
    uint32_t count = 0;
    OrmNodeGetSize(node, &count);
    for (uint32_t i = 0; i < count; ++i) {
        ORM_NODE item = 0;
        OrmNodeGetItemByIdx(node, i, &item);
        items.push_back(ItemOf(list, item));
    }
    return items;
}

// Reads the current row: its fields, then its lists.
uint32_t ReadRow(ORM_SESSION session, const standin::Table& table, Json& row)
{
    row = Json::object();
    for (const standin::Field& field : table.fields) {
        std::vector<uint8_t> bytes(field.width);
        const uint32_t ret = OrmGetFieldById(session, field.number, bytes.data(), field.width);
        if (ret != 0) {
            return ret;
        }
        row.emplace(field.name, sources::ValueToJson(field.kind, bytes));
    }
    for (const standin::List& list : table.lists) {
        ORM_NODE node = 0;
        if (OrmNodeGetChild(session, 0, std::string(list.name).c_str(), &node) == 0) {
            row.emplace(list.name, ItemsOf(list, node));
        }
    }
    return 0;
}

uint32_t TakeNumber(const standin::Field& member, const std::string& word)
{
    const Argument argument{.name = member.name,
                            .form = member.kind == standin::Kind::Ipv4 ? Form::Ipv4 : Form::Number};
    return static_cast<uint32_t>(
        NumberFromWord(argument, word, ~uint64_t{0} >> (64 - 8 * member.width)));
}

// Reads 32-bit numbers one at a time.
uint32_t SetNumbers(ORM_SESSION session, std::span<const uint32_t> numbers)
{
    uint32_t ret = OrmSetKeyName(session, "primary_key");
    for (uint32_t i = 0; i < numbers.size() && ret == 0; ++i) {
        ret = OrmSetIndexKeyValue(session, i, QRB_KEY_TYPE_U32, &numbers[i], sizeof(numbers[i]));
    }
    return ret;
}

// The key in the layout that its accessor takes: a pointer to the name, then a type.
uint32_t SetNameAndKind(ORM_SESSION session, const char* name, uint32_t kind)
{
    std::array<uint8_t, sizeof(name) + 1> key{};
    std::memcpy(key.data(), &name, sizeof(name));
    key.back() = static_cast<uint8_t>(kind);
    return OrmgAclGroupIdSetKeyPrimaryKeyInner(session, key.data(), key.size());
}

}  // namespace

RowKey::RowKey(const char* table, Rest words)
{
    const auto known = KnownTable(table).keys[0].members;
    std::string names;
    for (const standin::Field* member : known) {
        names += " " + std::string(member->name);
    }
    if (words.size() != known.size()) {
        throw UsageError(std::string("the key of ") + table + " is:" + names);
    }
    for (size_t i = 0; i < known.size(); ++i) {
        if (known[i]->kind == standin::Kind::Text) {
            name = words[i];
        } else if (known[i]->width < sizeof(uint32_t) && !name) {
            throw UsageError(std::string(known[i]->name) + ": a key of " +
                             std::to_string(known[i]->width * 8) +
                             " bits can't be set; QRB_DB_Scan finds rows by it");
        } else {
            numbers.push_back(TakeNumber(*known[i], words[i]));
        }
    }
}

RowOutput::RowOutput(const char* tableName, Json& destination)
    : table(KnownTable(tableName)), output(destination)
{
}

uint32_t SetRowKey(ORM_SESSION session, const void* key)
{
    const auto& [name, numbers] = *static_cast<const RowKey*>(key);
    return name ? SetNameAndKind(session, name->c_str(), numbers[0]) : SetNumbers(session, numbers);
}

uint32_t GetRow(ORM_SESSION session, void* output)
{
    const auto& [table, row] = *static_cast<RowOutput*>(output);
    return ReadRow(session, table, row);
}

uint32_t AddRow(ORM_SESSION session, void* output, uint32_t /*index*/)
{
    const auto& [table, rows] = *static_cast<RowOutput*>(output);
    Json row;
    const uint32_t ret = ReadRow(session, table, row);
    if (ret == 0) {
        rows.push_back(std::move(row));
    }
    return ret;
}

}  // namespace shell
