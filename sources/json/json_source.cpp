#include "sources/json/json_source.h"

#include "sources/json/json_file.h"

namespace sources {

JsonSource::JsonSource(const std::filesystem::path& file, const std::function<void()>& onRow)
    : loaded_(std::chrono::system_clock::now())
{
    LoadJson(file, onRow);
}

SourceState JsonSource::State() const
{
    SourceState state;
    state.loaded = loaded_;
    return state;
}

}  // namespace sources
