#include "session/current_row.h"

#include <algorithm>

#include "contract/refusal.h"
#include "session/handles.h"
#include "tarnd_platform/orm.h"

namespace standin {

void CurrentRow::Set(const TableStore& store, RowReference row)
{
    Clear();
    store_ = &store;
    row_ = std::move(row);
}

void CurrentRow::Clear()
{
    row_ = RowReference();
    stamp_.store(stamp_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

uint64_t CurrentRow::Stamp() const
{
    return LowBits(stamp_.load(std::memory_order_relaxed), NodeUse::STAMP_BITS);
}

uint32_t CopyField(const Field* field, const uint8_t* bytes, void* destination, uint32_t size)
{
    if (field == nullptr) {
        return Refusal::UnknownField;
    }
    if (size != field->width) {
        return Refusal::WrongSize;
    }
    std::memcpy(destination, bytes + field->offset, size);
    return ORM_OK;
}

const Field* FieldOfNumber(std::span<const Field> fields, uint32_t number)
{
    // If the numbers have no gaps, a field's number is its index.
    if (number < fields.size() && fields[number].number == number) {
        return &fields[number];
    }
    const auto found = std::ranges::find(fields, number, &Field::number);
    return found == fields.end() ? nullptr : &*found;
}

}  // namespace standin
