// Pipes long output through a pager.
#pragma once

#include <sys/types.h>

#include <memory>
#include <ostream>
#include <streambuf>

namespace shell {

// If standard input and output are terminals, what is written to the stream goes to a pager until
// the end of the scope: $PAGER, or "less -FRSX". An empty PAGER, or "cat", means none.
class Pager {
public:
    explicit Pager(std::ostream& output);
    ~Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    bool IsRunning() const { return process_ > 0; }

private:
    void Start(const char* command);

    std::ostream& output_;
    std::streambuf* direct_ = nullptr;
    std::unique_ptr<std::streambuf> pipe_;
    pid_t process_ = 0;
};

}  // namespace shell
