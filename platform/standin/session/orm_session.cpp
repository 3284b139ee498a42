#include "session/orm_session.h"

#include "contract/refusal.h"
#include "store/gate.h"
#include "tarnd_platform/orm.h"

namespace standin {

uint32_t Session::Prepare(std::string_view table, uint32_t operation)
{
    if (step_ == Step::Scanning) {
        return Refusal::WrongOrder;
    }
    if (operation != QRB_ORM_OP_READ && operation != QRB_ORM_OP_SCAN) {
        return Refusal::UnknownMode;
    }
    const TableStore* store = FindStore(table);
    if (store == nullptr) {
        return Refusal::UnknownTable;
    }
    LeaveRow();
    store_ = store;
    step_ = operation == QRB_ORM_OP_READ ? Step::Read : Step::Scan;
    read_.Prepare(*store);
    condition_.Clear();
    return ORM_OK;
}

uint32_t Session::Execute()
{
    if (step_ != Step::Read || !read_.IsComplete()) {
        return Refusal::WrongOrder;
    }
    LeaveRow();
    const Inside inside;
    const StoredRow* row = read_.Find();
    if (row == nullptr) {
        return ORM_NO_RECORD;
    }
    pins.Set(0, *row);
    pins.SetCount(1);
    position.MoveTo(*store_, *row);
    return ORM_OK;
}

uint32_t Session::SetCondition(std::string_view text)
{
    if (step_ != Step::Scan) {
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
    if (step_ != Step::Scan) {
        return Refusal::WrongOrder;
    }
    scan_.Start(*store_, condition_);
    step_ = Step::Scanning;
    scanHandle_ = MakeHandle(HandleKind::Scan, place, ++uses);
    *scanHandle = scanHandle_;
    return ORM_OK;
}

uint32_t Session::MoveToNext(uint64_t scanHandle, uint8_t* end)
{
    if (step_ != Step::Scanning || scanHandle != scanHandle_) {
        return Refusal::UnknownHandle;
    }
    const StoredRow* row = scan_.Next();
    if (row == nullptr) {
        position.Leave();
        *end = 1;
    } else {
        position.MoveTo(*store_, *row);
    }
    return ORM_OK;
}

uint32_t Session::EndScan(uint64_t scanHandle)
{
    if (step_ != Step::Scanning || scanHandle != scanHandle_) {
        return Refusal::UnknownHandle;
    }
    scan_.Stop();
    LeaveRow();
    step_ = Step::Scan;
    return ORM_OK;
}

void Session::Reset()
{
    scan_.Stop();
    LeaveRow();
    condition_.Clear();
    step_ = Step::Open;
    delivery = nullptr;
    fetched = 0;
}

void Session::LeaveRow()
{
    position.Leave();
    pins.SetCount(0);
}

}  // namespace standin
