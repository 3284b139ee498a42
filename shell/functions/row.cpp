#include "shell/functions/row.h"

#include "shell/table.h"
#include "shell/words.h"
#include "sources/json_value.h"

namespace shell {
namespace {

Json ItemOf(const standin::List& list, ORM_NODE item)
{
    Json fields = Json::object();
    for (const standin::Field& field : list.fields) {
        std::vector<uint8_t> bytes(field.width);
        if (OrmNodeGetFieldById(item, field.number, bytes.data(), field.width) == 0)
            fields.emplace(field.name, sources::ValueToJson(field.kind, bytes));
    }
    return fields;
}

Json ItemsOf(const standin::List& list, ORM_NODE node)
{
    Json     items = Json::array();
    uint32_t count = 0;
    OrmNodeGetSize(node, &count);
    for (uint32_t i = 0; i < count; ++i) {
        ORM_NODE item = 0;
        OrmNodeGetItemByIdx(node, i, &item);
        items.push_back(ItemOf(list, item));
    }
    return items;
}

// The current row: its fields, then the lists that it has.
uint32_t ReadRow(ORM_SESSION session, const standin::Table& table, Json& row)
{
    row = Json::object();
    for (const standin::Field& field : table.fields) {
        std::vector<uint8_t> bytes(field.width);
        const uint32_t ret = OrmGetFieldById(session, field.number, bytes.data(), field.width);
        if (ret != 0)
            return ret;
        row.emplace(field.name, sources::ValueToJson(field.kind, bytes));
    }
    for (const standin::List& list : table.lists) {
        ORM_NODE node = 0;
        if (OrmNodeGetChild(session, 0, std::string(list.name).c_str(), &node) == 0)
            row.emplace(list.name, ItemsOf(list, node));
    }
    return 0;
}

}  // namespace

RowKey::RowKey(const char* table, Rest words)
{
    const auto  known = KnownTable(table).keys[0].members;
    std::string names;
    for (const standin::Field* member : known)
        names += " " + std::string(member->name);
    if (words.size() != known.size())
        throw UsageError(std::string("the key of ") + table + " is:" + names);
    for (size_t i = 0; i < known.size(); ++i) {
        const Argument member{
            .name = known[i]->name,
            .form = known[i]->kind == standin::Kind::Ipv4 ? Form::Ipv4 : Form::Number};
        members.push_back(static_cast<uint32_t>(NumberFromWord(member, words[i], UINT32_MAX)));
    }
}

RowOutput::RowOutput(const char* tableName, Json& destination)
    : table(KnownTable(tableName)), output(destination)
{
}

uint32_t SetRowKey(ORM_SESSION session, const void* key)
{
    const auto& members = static_cast<const RowKey*>(key)->members;
    uint32_t    ret     = OrmSetKeyName(session, "primary_key");
    for (uint32_t i = 0; i < members.size() && ret == 0; ++i)
        ret = OrmSetIndexKeyValue(session, i, QRB_KEY_TYPE_U32, &members[i], sizeof(members[i]));
    return ret;
}

uint32_t GetRow(ORM_SESSION session, void* output)
{
    const auto& [table, row] = *static_cast<RowOutput*>(output);
    return ReadRow(session, table, row);
}

uint32_t AddRow(ORM_SESSION session, void* output, uint32_t /*index*/)
{
    const auto& [table, rows] = *static_cast<RowOutput*>(output);
    Json           row;
    const uint32_t ret = ReadRow(session, table, row);
    if (ret == 0)
        rows.push_back(std::move(row));
    return ret;
}

}  // namespace shell
