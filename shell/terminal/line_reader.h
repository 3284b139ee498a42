// Reads lines from a descriptor and polls a second descriptor meanwhile.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace shell {

class LineReader {
public:
    explicit LineReader(int descriptor) : descriptor_(descriptor) {}

    // Returns the next line without its line feed; no value at the end of the input. During the
    // wait, onWake is called whenever the other descriptor is readable. Throws std::system_error if
    // the input can't be read.
    std::optional<std::string> Next(int wakeDescriptor, const std::function<void()>& onWake);

private:
    bool ReadMore();

    int descriptor_;
    std::string buffer_;
    size_t begin_ = 0;  // start of the unread part of the buffer
    bool ended_ = false;
};

}  // namespace shell
