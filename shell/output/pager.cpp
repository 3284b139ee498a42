#include "shell/output/pager.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace shell {
namespace {

// Stream buffer that writes to a descriptor and owns it.
class DescriptorBuffer : public std::streambuf {
public:
    explicit DescriptorBuffer(int descriptor) : descriptor_(descriptor)
    {
        setp(bytes_.data(), bytes_.data() + bytes_.size());
    }
    ~DescriptorBuffer() override
    {
        DescriptorBuffer::sync();
        close(descriptor_);
    }
    DescriptorBuffer(const DescriptorBuffer&) = delete;
    DescriptorBuffer& operator=(const DescriptorBuffer&) = delete;

protected:
    int sync() override
    {
        const char* next = pbase();
        while (next < pptr()) {
            const ssize_t written = write(descriptor_, next, static_cast<size_t>(pptr() - next));
            if (written < 0 && errno != EINTR) {
                setp(bytes_.data(), bytes_.data() + bytes_.size());
                return -1;
            }
            next += written > 0 ? written : 0;
        }
        setp(bytes_.data(), bytes_.data() + bytes_.size());
        return 0;
    }
    int_type overflow(int_type character) override
    {
        if (sync() != 0) {
            return traits_type::eof();
        }
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(character);
            pbump(1);
        }
        return traits_type::not_eof(character);
    }

private:
    int descriptor_;
    std::array<char, 65536> bytes_{};
};

}  // namespace

Pager::Pager(std::ostream& output) : output_(output)
{
    if (&output != &std::cout || isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) {
        return;
    }
    const char* const chosen = std::getenv("PAGER");
    const std::string_view command = chosen != nullptr ? chosen : "less -FRSX";
    if (!command.empty() && command != "cat") {
        output_.flush();
        Start(command.data());
    }
}

Pager::~Pager()
{
    if (IsRunning()) {
        output_.flush();
        output_.rdbuf(direct_);
        output_.clear();
        pipe_.reset();
        waitpid(process_, nullptr, 0);
    }
}

// If the pager's program is not installed, its shell copies the text.
void Pager::Start(const char* command)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return;
    }
    process_ = fork();
    if (process_ == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        dup2(ends[0], STDIN_FILENO);
        setenv("QRB_PAGER", command, 1);
        execl("/bin/sh", "sh", "-c",
              "command -v ${QRB_PAGER%% *} >/dev/null || exec cat; exec $QRB_PAGER", nullptr);
        _exit(127);
    }
    close(ends[0]);
    if (process_ < 0) {
        close(ends[1]);
        return;
    }
    pipe_ = std::make_unique<DescriptorBuffer>(ends[1]);
    direct_ = output_.rdbuf(pipe_.get());
}

}  // namespace shell
