#include "sources/source.h"

namespace sources {

void Source::Commit(const std::vector<Write>& writes)
{
    standin::Transaction transaction;
    for (const auto& [kind, row] : writes) {
        switch (kind) {
            case Write::Kind::Insert:
                transaction.Insert(row);
                break;
            case Write::Kind::Update:
                transaction.Update(row);
                break;
            case Write::Kind::Replace:
                transaction.Replace(row);
                break;
            case Write::Kind::Delete:
                transaction.Delete(row);
                break;
        }
    }
    transaction.Commit();
}

}  // namespace sources
