// The key by which a session reads one record.
#pragma once

#include <array>

#include "store/table_store.h"

namespace standin {

class ReadKey {
public:
    void Prepare(const TableStore& store);

    uint32_t Choose(std::string_view name);
    uint32_t SetMember(uint32_t member, uint32_t valueType, const void* value, uint32_t size);
    uint32_t SetWhole(std::string_view name, const void* bytes, uint32_t size);

    bool IsComplete() const { return store_ != nullptr && key_ && missing_ == 0; }
    const StoredRow* Find() const { return store_->Find(*key_, bytes_.data()); }

private:
    const Key& Description() const { return store_->Description().keys[*key_]; }

    const TableStore* store_ = nullptr;
    std::optional<size_t> key_;  // index in Table::keys
    uint32_t missing_ = 0;       // a bit for each member that is not set yet
    std::array<uint8_t, LONGEST_KEY> bytes_;
};

}  // namespace standin
