#include "sources/ovsdb/ovsdb_stream.h"

#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <openssl/bio.h>
#include <openssl/err.h>

namespace sources::ovsdb {
namespace {

[[noreturn]] void Fail(int error)
{
    throw std::runtime_error(std::strerror(error));
}

Descriptor NewSocket(int family)
{
    Descriptor socket(::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (socket.Get() < 0) {
        Fail(errno);
    }
    return socket;
}

// Returns 0 once connected, EINPROGRESS while connecting, otherwise the error.
int BeginToConnect(const Descriptor& socket, const SocketAddress& address)
{
    const auto* plain = reinterpret_cast<const sockaddr*>(&address.storage);
    return connect(socket.Get(), plain, address.size) == 0 ? 0 : errno;
}

SocketAddress AddressOfPath(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) {
        Fail(ENAMETOOLONG);
    }
    path.copy(address.sun_path, path.size());
    SocketAddress result{{}, sizeof(address)};
    std::memcpy(&result.storage, &address, sizeof(address));
    return result;
}

// A socket BIO whose writes don't raise SIGPIPE when the server has closed the connection.
const BIO_METHOD* QuietSocket()
{
    static BIO_METHOD* const method = [] {
        const BIO_METHOD* usual = BIO_s_socket();
        BIO_METHOD* made = BIO_meth_new(
            BIO_get_new_index() | BIO_TYPE_SOURCE_SINK | BIO_TYPE_DESCRIPTOR, "socket");
        BIO_meth_set_read(made, BIO_meth_get_read(usual));
        BIO_meth_set_ctrl(made, BIO_meth_get_ctrl(usual));
        BIO_meth_set_create(made, BIO_meth_get_create(usual));
        BIO_meth_set_destroy(made, BIO_meth_get_destroy(usual));
        BIO_meth_set_write(made, [](BIO* bio, const char* bytes, int size) {
            int descriptor = -1;
            BIO_get_fd(bio, &descriptor);
            BIO_clear_retry_flags(bio);
            const ssize_t sent = send(descriptor, bytes, static_cast<size_t>(size), MSG_NOSIGNAL);
            if (sent < 0 && BIO_sock_should_retry(-1) != 0) {
                BIO_set_retry_write(bio);
            }
            return static_cast<int>(sent);
        });
        return made;
    }();
    return method;
}

}  // namespace

Descriptor::~Descriptor()
{
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

Descriptor::Descriptor(Descriptor&& other) noexcept : descriptor_(other.Release()) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

int Descriptor::Release()
{
    return std::exchange(descriptor_, -1);
}

Stream::Stream(const Server& server, const TlsContext& tls, const OvsdbLimits& limits)
    : server_(server), tls_(tls), limits_(limits), deadline_(Clock::now() + limits.connectTimeout)
{
    if (server.transport == Transport::Unix) {
        untried_.push_back(AddressOfPath(server.host));
    } else {
        resolver_.emplace(server.host, server.port);
    }
}

pollfd Stream::PollEntry(bool sends) const
{
    if (resolver_) {
        return {resolver_->Descriptor(), POLLIN, 0};
    }
    if (bio_ == nullptr) {
        return {socket_.Get(), POLLOUT, 0};
    }
    int descriptor = -1;
    BIO_get_fd(bio_.get(), &descriptor);
    const bool maySend = sends && !waitsToRead_;
    return {descriptor, static_cast<short>(POLLIN | (maySend ? POLLOUT : 0)), 0};
}

Clock::time_point Stream::ConnectDeadline() const
{
    return bio_ != nullptr ? Clock::time_point::max() : deadline_;
}

bool Stream::Connect()
{
    if (bio_ != nullptr) {
        return true;
    }
    if (resolver_) {
        if (!resolver_->IsDone()) {
            if (Clock::now() >= deadline_) {
                throw std::runtime_error("resolving the name timed out");
            }
            return false;
        }
        untried_ = resolver_->Take();
        std::ranges::reverse(untried_);
        resolver_.reset();
    }
    return ConnectToAddress();
}

// Returns the result of connecting to the present address or, if that fails, to the next ones.
bool Stream::ConnectToAddress()
{
    while (true) {
        int error = EINPROGRESS;
        if (socket_.Get() < 0) {
            error = TryNextAddress();
        } else {
            error = ResultOfConnecting();
        }
        if (error == 0) {
            Establish();
            return true;
        }
        if (error == EINPROGRESS) {
            return false;
        }
        socket_ = Descriptor(-1);
        if (untried_.empty()) {
            Fail(error);
        }
    }
}

int Stream::TryNextAddress()
{
    const SocketAddress address = untried_.back();
    untried_.pop_back();
    deadline_ = Clock::now() + limits_.connectTimeout;
    socket_ = NewSocket(address.storage.ss_family);
    return BeginToConnect(socket_, address);
}

int Stream::ResultOfConnecting() const
{
    pollfd writable = {socket_.Get(), POLLOUT, 0};
    if (poll(&writable, 1, 0) == 0) {
        return Clock::now() < deadline_ ? EINPROGRESS : ETIMEDOUT;
    }
    int error = 0;
    socklen_t size = sizeof(error);
    getsockopt(socket_.Get(), SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

void Stream::Establish()
{
    BIO* bio = BIO_new(QuietSocket());
    BIO_set_fd(bio, socket_.Release(), BIO_CLOSE);
    if (server_.transport == Transport::Tls) {
        bio = BIO_push(BIO_new_ssl(tls_.Get(), 1), bio);
    }
    bio_.reset(bio);
}

// Throws unless the error means that the call must be repeated later.
size_t Stream::Transferred(int result) const
{
    if (result > 0) {
        return static_cast<size_t>(result);
    }
    if (BIO_should_retry(bio_.get()) != 0) {
        return 0;
    }
    if (ERR_peek_error() != 0) {
        SSL* connection = nullptr;
        BIO_get_ssl(bio_.get(), &connection);
        throw std::runtime_error(TlsFailure(connection));
    }
    if (result == 0 || errno == 0) {
        throw std::runtime_error("the server closed the connection");
    }
    Fail(errno);
}

size_t Stream::Read(std::span<char> bytes)
{
    errno = 0;
    return Transferred(BIO_read(bio_.get(), bytes.data(), static_cast<int>(bytes.size())));
}

size_t Stream::Write(std::string_view bytes)
{
    constexpr size_t MOST_AT_ONCE = size_t{1} << 20;
    errno = 0;
    const auto size = static_cast<int>(std::min(bytes.size(), MOST_AT_ONCE));
    const int result = BIO_write(bio_.get(), bytes.data(), size);
    waitsToRead_ = result <= 0 && BIO_should_read(bio_.get()) != 0;
    return Transferred(result);
}

}  // namespace sources::ovsdb
