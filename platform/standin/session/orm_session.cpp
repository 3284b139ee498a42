#include "session/orm_session.h"

#include "contract/refusal.h"
#include "store/reader_writer_lock.h"
#include "tarnd_platform/orm.h"

namespace standin {

uint32_t Session::Prepare(std::string_view table, uint32_t operation)
{
    if (state_ == State::Scanning) {
        return Refusal::WrongOrder;
    }
    if (operation != QRB_ORM_OP_READ && operation != QRB_ORM_OP_SCAN) {
        return Refusal::UnknownMode;
    }
    const TableStore* store = FindStore(table);
    if (store == nullptr) {
        return Refusal::UnknownTable;
    }
    current.Clear();
    store_ = store;
    state_ = operation == QRB_ORM_OP_READ ? State::Read : State::Scan;
    read_.Prepare(*store);
    condition_.Clear();
    return ORM_OK;
}

uint32_t Session::Execute()
{
    if (state_ != State::Read || !read_.IsComplete()) {
        return Refusal::WrongOrder;
    }
    current.Clear();
    const ReadGuard guard;
    const StoredRow* row = read_.Find();
    if (row == nullptr) {
        return ORM_NO_RECORD;
    }
    current.Set(*store_, RowReference(*row));
    return ORM_OK;
}

uint32_t Session::SetCondition(std::string_view text)
{
    if (state_ != State::Scan) {
        return Refusal::WrongOrder;
    }
    auto condition = ScanCondition::Parse(store_->Description(), text);
    if (!condition) {
        return Refusal::BadCondition;
    }
    condition_ = std::move(*condition);
    return ORM_OK;
}

uint32_t Session::StartScan(uint64_t* scanHandle)
{
    if (state_ != State::Scan) {
        return Refusal::WrongOrder;
    }
    scan_.Start(*store_, condition_);
    state_ = State::Scanning;
    scanHandle_ = MakeHandle(HandleKind::Scan, number, ++uses);
    *scanHandle = scanHandle_;
    return ORM_OK;
}

uint32_t Session::MoveToNext(uint64_t scanHandle, uint8_t* end)
{
    if (state_ != State::Scanning || scanHandle != scanHandle_) {
        return Refusal::UnknownHandle;
    }
    RowReference row = scan_.Next();
    if (row) {
        current.Set(*store_, std::move(row));
    } else {
        current.Clear();
        *end = 1;
    }
    return ORM_OK;
}

uint32_t Session::EndScan(uint64_t scanHandle)
{
    if (state_ != State::Scanning || scanHandle != scanHandle_) {
        return Refusal::UnknownHandle;
    }
    scan_.Stop();
    current.Clear();
    state_ = State::Scan;
    return ORM_OK;
}

void Session::Reset()
{
    scan_.Stop();
    current.Clear();
    condition_.Clear();
    state_ = State::Open;
    delivery = nullptr;
    fetched = 0;
}

}  // namespace standin
