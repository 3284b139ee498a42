// The contract's lists inside a record. A node handle encodes the session, the session's current
// row, the list and the item, so nodes need no storage.
#include <algorithm>

#include "contract/contract_call.h"
#include "tarnd_platform/orm.h"

using namespace standin;

namespace {

// The list and item that a node handle refers to, if the session's current row is still the same.
struct Node {
    const List* list = nullptr;  // null: an invalid or stale handle
    std::span<const uint8_t> items;
};

Node FindNode(HandleKind kind, ORM_NODE handle)
{
    const NodeUse use = NodeUse::Of(handle);
    const Session* session = KindOf(handle) == kind ? SessionAt(handle) : nullptr;
    if (session == nullptr || session->current.Stamp() != use.stamp || !session->current.IsSet()) {
        return {};
    }
    const Table& table = session->current.Description();
    if (use.list >= table.lists.size()) {
        return {};
    }
    const auto items = session->current.Row().Items(table, use.list);
    return items ? Node{&table.lists[use.list], *items} : Node{};
}

size_t Count(const Node& node)
{
    return node.items.size() / node.list->itemSize;
}

uint32_t GetList(ORM_SESSION session, const CurrentRow& current, std::string_view name,
                 ORM_NODE* node)
{
    const Table& table = current.Description();
    const auto found = std::ranges::find(table.lists, name, &List::name);
    const auto list = static_cast<size_t>(found - table.lists.begin());
    if (found == table.lists.end() || !current.Row().Items(table, list)) {
        return ORM_NO_LIST;
    }
    *node = MakeHandle(HandleKind::List, SessionNumberOf(session),
                       NodeUse{current.Stamp(), list, 0}.Packed());
    return ORM_OK;
}

}  // namespace

uint32_t OrmNodeGetChild(ORM_SESSION session, ORM_NODE parent, const char* list, ORM_NODE* node)
{
    if (AnyNull(list, node)) {
        return Refusal::NullArgument;
    }
    if (parent != 0) {
        return Refusal::UnknownHandle;
    }
    return OnCurrentRow(
        session, [=](const CurrentRow& current) { return GetList(session, current, list, node); });
}

uint32_t OrmNodeGetSize(ORM_NODE node, uint32_t* count)
{
    if (count == nullptr) {
        return Refusal::NullArgument;
    }
    const Node list = FindNode(HandleKind::List, node);
    if (list.list == nullptr) {
        return Refusal::UnknownHandle;
    }
    *count = static_cast<uint32_t>(Count(list));
    return ORM_OK;
}

uint32_t OrmNodeGetItemByIdx(ORM_NODE node, uint32_t index, ORM_NODE* item)
{
    if (item == nullptr) {
        return Refusal::NullArgument;
    }
    const Node list = FindNode(HandleKind::List, node);
    if (list.list == nullptr) {
        return Refusal::UnknownHandle;
    }
    if (index >= Count(list)) {
        return Refusal::NoSuchItem;
    }
    NodeUse use = NodeUse::Of(node);
    use.item = index;
    *item = MakeHandle(HandleKind::Item, SessionNumberOf(node), use.Packed());
    return ORM_OK;
}

uint32_t OrmNodeGetFieldById(ORM_NODE item, uint32_t field, void* destination, uint32_t size)
{
    if (destination == nullptr) {
        return Refusal::NullArgument;
    }
    const Node list = FindNode(HandleKind::Item, item);
    const size_t index = NodeUse::Of(item).item;
    if (list.list == nullptr || index >= Count(list)) {
        return Refusal::UnknownHandle;
    }
    const uint8_t* bytes = list.items.data() + index * list.list->itemSize;
    return CopyField(FieldOfNumber(list.list->fields, field), bytes, destination, size);
}
