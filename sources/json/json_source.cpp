#include "sources/json/json_source.h"

#include "sources/json/json_file.h"

namespace sources {

JsonSource::JsonSource(const std::filesystem::path& file, const std::function<void()>& onRow)
{
    LoadJson(file, onRow);
}

}  // namespace sources
