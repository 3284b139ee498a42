#include "session/read_key.h"

#include <algorithm>

#include "contract/refusal.h"
#include "tarnd_platform/orm.h"

namespace standin {

void ReadKey::Prepare(const TableStore& store)
{
    store_ = &store;
    key_.reset();
}

uint32_t ReadKey::Choose(std::string_view name)
{
    const auto keys = store_->Description().keys;
    const auto found = std::ranges::find(keys, name, &Key::name);
    if (found == keys.end()) {
        return Refusal::UnknownKey;
    }
    key_ = static_cast<size_t>(found - keys.begin());
    missing_ = (1U << found->members.size()) - 1;
    return ORM_OK;
}

uint32_t ReadKey::SetMember(uint32_t member, uint32_t valueType, const void* value, uint32_t size)
{
    if (!key_) {
        return Refusal::WrongOrder;
    }
    if (member >= Description().members.size()) {
        return Refusal::UnknownKey;
    }
    const Field& field = *Description().members[member];
    if (valueType != QRB_KEY_TYPE_U32 || field.width != sizeof(uint32_t)) {
        return Refusal::BadKeyValue;
    }
    if (size != field.width) {
        return Refusal::WrongSize;
    }
    std::memcpy(&bytes_[field.offset - Description().offset], value, size);
    missing_ &= ~(1U << member);
    return ORM_OK;
}

uint32_t ReadKey::SetWhole(std::string_view name, const void* bytes, uint32_t size)
{
    const uint32_t chosen = Choose(name);
    if (chosen != ORM_OK) {
        return chosen;
    }
    if (size != Description().width) {
        key_.reset();
        return Refusal::WrongSize;
    }
    std::memcpy(bytes_.data(), bytes, size);
    missing_ = 0;
    return ORM_OK;
}

}  // namespace standin
