#include "session/current_row.h"

#include <algorithm>

#include "contract/refusal.h"
#include "session/handles.h"
#include "tarnd_platform/orm.h"

namespace standin {

void CurrentRow::MoveTo(const TableStore& store, const StoredRow& row)
{
    Leave();
    store_ = &store;
    row_ = &row;
}

void CurrentRow::Leave()
{
    row_ = nullptr;
    stamp_.store(stamp_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

bool CurrentRow::IsOn(const Table& table) const
{
    return row_ != nullptr && &store_->Description() == &table;
}

uint64_t CurrentRow::Stamp() const
{
    return LowBits(stamp_.load(std::memory_order_relaxed), NodeUse::stampBits);
}

uint32_t CurrentRow::CopyField(std::string_view field, void* destination, uint32_t size) const
{
    return row_ == nullptr
               ? Refusal::WrongOrder
               : Copy(FindField(store_->Description().fields, field), destination, size);
}

uint32_t CurrentRow::CopyField(uint32_t field, void* destination, uint32_t size) const
{
    return row_ == nullptr
               ? Refusal::WrongOrder
               : Copy(FieldOfNumber(store_->Description().fields, field), destination, size);
}

uint32_t CurrentRow::Copy(const Field* field, void* destination, uint32_t size) const
{
    return CopyFieldOf(field, row_->Record(), destination, size);
}

namespace {

// Most fields are numbers: known sizes make no calls.
void CopyBytes(void* to, const void* from, uint32_t size)
{
    switch (size) {
        case 1:
            std::memcpy(to, from, 1);
            break;
        case 2:
            std::memcpy(to, from, 2);
            break;
        case 4:
            std::memcpy(to, from, 4);
            break;
        default:
            std::memcpy(to, from, size);
    }
}

}  // namespace

uint32_t CopyFieldOf(const Field* field, const uint8_t* bytes, void* destination, uint32_t size)
{
    if (field == nullptr) {
        return Refusal::UnknownField;
    }
    if (size != field->width) {
        return Refusal::WrongSize;
    }
    CopyBytes(destination, bytes + field->offset, size);
    return ORM_OK;
}

const Field* FieldOfNumber(std::span<const Field> fields, uint32_t number)
{
    // Where the numbers have no gaps, a field's number is its place.
    if (number < fields.size() && fields[number].number == number) {
        return &fields[number];
    }
    const auto found = std::ranges::find(fields, number, &Field::number);
    return found == fields.end() ? nullptr : &*found;
}

}  // namespace standin
