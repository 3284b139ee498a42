#include "sources/source.h"

#include <algorithm>
#include <string_view>

#include "sources/host/host_source.h"
#include "sources/json/json_source.h"
#include "sources/ovsdb/ovsdb_source.h"

namespace sources {
namespace {

std::unique_ptr<Source> OpenHost(const std::string&, const SourceProgress&)
{
    return std::make_unique<HostSource>();
}

std::unique_ptr<Source> OpenOvsdb(const std::string& servers, const SourceProgress& progress)
{
    return std::make_unique<OvsdbSource>(servers, OvsdbLimits{}, progress.onWait);
}

std::unique_ptr<Source> OpenJson(const std::string& file, const SourceProgress& progress)
{
    return std::make_unique<JsonSource>(file, progress.onRow);
}

struct SourceKind {
    std::string_view prefix;
    bool isWholeName;
    std::unique_ptr<Source> (*open)(const std::string& rest, const SourceProgress& progress);
};

// The first entry that matches the name is used.
constexpr SourceKind SOURCE_KINDS[] = {
    {"host", true, OpenHost},
    {"ovsdb:", false, OpenOvsdb},
    {"", false, OpenJson},
};

const SourceKind& KindOf(const std::string& name)
{
    return *std::ranges::find_if(SOURCE_KINDS, [&](const SourceKind& kind) {
        return kind.isWholeName ? name == kind.prefix : name.starts_with(kind.prefix);
    });
}

}  // namespace

void Source::Commit(const std::vector<RowWrite>& writes)
{
    standin::Transaction transaction;
    for (const auto& [kind, row] : writes) {
        switch (kind) {
            case WriteKind::Insert:
                transaction.Insert(row);
                break;
            case WriteKind::Update:
                transaction.Update(row);
                break;
            case WriteKind::Replace:
                transaction.Replace(row);
                break;
            case WriteKind::Delete:
                transaction.Delete(row);
                break;
        }
    }
    transaction.Commit();
}

std::unique_ptr<Source> OpenSource(const std::string& name, const SourceProgress& progress)
{
    const SourceKind& kind = KindOf(name);
    return kind.open(name.substr(kind.prefix.size()), progress);
}

bool IsFile(const std::string& name)
{
    return !name.empty() && KindOf(name).prefix.empty();
}

}  // namespace sources
