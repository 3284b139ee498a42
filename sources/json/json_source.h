// A JSON file as the source: its rows are loaded once.
#pragma once

#include <filesystem>
#include <functional>

#include "sources/source.h"

namespace sources {

class JsonSource final : public Source {
public:
    // Loads the file. onRow is called for each row that is read.
    JsonSource(const std::filesystem::path& file, const std::function<void()>& onRow);

    SourceState State() const override;

private:
    const SourceState::Time loaded_;
};

}  // namespace sources
