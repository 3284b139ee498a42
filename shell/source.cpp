#include "shell/source.h"

#include "shell/terminal/progress.h"
#include "sources/cluster.h"
#include "sources/host.h"
#include "sources/json_file.h"

namespace shell {
namespace {

class JsonSource final : public sources::Source {
public:
    explicit JsonSource(const std::string& file)
    {
        Progress progress("rows read from " + file);
        sources::LoadJson(file, [&] { progress.Step(); });
    }
};

class HostSource final : public sources::Source {
public:
    void Follow() override { host_.Follow(); }

private:
    sources::Host host_;
};

}  // namespace

std::unique_ptr<sources::Source> OpenSource(const std::string& name)
{
    if (name == "host") {
        return std::make_unique<HostSource>();
    }
    constexpr std::string_view OVSDB = "ovsdb:";
    if (name.starts_with(OVSDB)) {
        return std::make_unique<sources::Cluster>(name.substr(OVSDB.size()));
    }
    return std::make_unique<JsonSource>(name);
}

}  // namespace shell
