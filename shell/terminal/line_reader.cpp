#include "shell/terminal/line_reader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace shell {

std::optional<std::string> LineReader::Next(int wakeDescriptor, const std::function<void()>& onWake)
{
    size_t searched = begin_;
    for (;;) {
        const size_t end = buffer_.find('\n', searched);
        if (end != std::string::npos) {
            std::string line = buffer_.substr(begin_, end - begin_);
            begin_ = end + 1;
            return line;
        }
        if (ended_) {
            std::string line = buffer_.substr(begin_);
            begin_ = buffer_.size();
            return line.empty() ? std::nullopt : std::optional(std::move(line));
        }
        buffer_.erase(0, std::exchange(begin_, 0));
        searched = buffer_.size();
        pollfd waitedFor[] = {{descriptor_, POLLIN, 0}, {wakeDescriptor, POLLIN, 0}};
        poll(waitedFor, std::size(waitedFor), -1);
        if (waitedFor[1].revents != 0) {
            onWake();
        }
        if (waitedFor[0].revents != 0) {
            ended_ = !ReadMore();
        }
    }
}

// Returns false at the end of the input.
bool LineReader::ReadMore()
{
    std::array<char, 65536> bytes{};
    const ssize_t count = read(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR && errno != EAGAIN) {
        throw std::system_error(errno, std::generic_category(), "standard input");
    }
    buffer_.append(bytes.data(), static_cast<size_t>(std::max<ssize_t>(count, 0)));
    return count != 0;
}

}  // namespace shell
