#include "sources/ovsdb/ovsdb_stream.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include <openssl/bio.h>
#include <openssl/err.h>

namespace sources::ovsdb {
namespace {

[[noreturn]] void Fail(int error)
{
    throw std::runtime_error(std::strerror(error));
}

// The oldest complaint of this thread's.
[[noreturn]] void FailTls(const std::string& what)
{
    const unsigned long error = ERR_get_error();
    const char* const reason = ERR_reason_error_string(error);
    ERR_clear_error();
    throw std::runtime_error(what + (reason != nullptr ? reason : "unknown error"));
}

class Socket {
public:
    explicit Socket(int family)
        : descriptor_(socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
    {
        if (descriptor_ < 0) {
            Fail(errno);
        }
    }
    ~Socket()
    {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    Socket(Socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Socket& operator=(Socket&&) = delete;

    int Get() const { return descriptor_; }
    int Release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

void WaitUntilConnected(const Socket& socket, int stop, Milliseconds patience)
{
    pollfd waitedFor[] = {{socket.Get(), POLLOUT, 0}, {stop, POLLIN, 0}};
    if (poll(waitedFor, std::size(waitedFor), static_cast<int>(patience.count())) == 0) {
        Fail(ETIMEDOUT);
    }
    if (waitedFor[1].revents != 0) {
        Fail(EINTR);
    }
    int error = 0;
    socklen_t size = sizeof(error);
    getsockopt(socket.Get(), SOL_SOCKET, SO_ERROR, &error, &size);
    if (error != 0) {
        Fail(error);
    }
}

void Connect(const Socket& socket, const sockaddr* address, socklen_t size, int stop,
             Milliseconds patience)
{
    if (connect(socket.Get(), address, size) == 0) {
        return;
    }
    if (errno != EINPROGRESS) {
        Fail(errno);
    }
    WaitUntilConnected(socket, stop, patience);
}

Socket ConnectToPath(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) {
        Fail(ENAMETOOLONG);
    }
    path.copy(address.sun_path, path.size());
    Socket socket(AF_UNIX);
    if (connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        Fail(errno);
    }
    return socket;
}

// Tries each address that the host's name stands for.
Socket ConnectToHost(const Server& server, int stop, Milliseconds patience)
{
    addrinfo hints{};
    addrinfo* found = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    const int code = getaddrinfo(server.host.c_str(), server.port.c_str(), &hints, &found);
    if (code != 0) {
        throw std::runtime_error(gai_strerror(code));
    }
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> all(found, freeaddrinfo);
    for (const addrinfo* one = found;; one = one->ai_next) {
        try {
            Socket socket(one->ai_family);
            Connect(socket, one->ai_addr, one->ai_addrlen, stop, patience);
            return socket;
        } catch (const std::runtime_error&) {
            if (one->ai_next == nullptr) {
                throw;
            }
        }
    }
}

// A socket that raises no signal when the other side is gone.
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

BIO* StreamOver(Socket socket, const Server& server, const TlsContext& tls)
{
    BIO* bio = BIO_new(QuietSocket());
    BIO_set_fd(bio, socket.Release(), BIO_CLOSE);
    return server.transport == Transport::Tls ? BIO_push(BIO_new_ssl(tls.Get(), 1), bio) : bio;
}

// Throws unless it is only that nothing can be had or sent now.
size_t Carried(BIO* bio, int result)
{
    if (result > 0) {
        return static_cast<size_t>(result);
    }
    if (BIO_should_retry(bio) != 0) {
        return 0;
    }
    if (ERR_peek_error() != 0) {
        FailTls("");
    }
    if (result == 0 || errno == 0) {
        throw std::runtime_error("the server ended the connection");
    }
    Fail(errno);
}

}  // namespace

TlsContext::TlsContext(const Credentials& credentials)
    : context_(SSL_CTX_new(TLS_client_method()), SSL_CTX_free)
{
    if (context_ == nullptr) {
        FailTls("");
    }
    SSL_CTX_set_min_proto_version(Get(), TLS1_2_VERSION);
    SSL_CTX_set_mode(Get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    SSL_CTX_set_verify(Get(), SSL_VERIFY_PEER, nullptr);
    const auto load = [&](const std::string& file, auto read) {
        if (!file.empty() && read(file.c_str()) != 1) {
            FailTls(file + ": ");
        }
    };
    load(credentials.caCertificate,
         [&](const char* file) { return SSL_CTX_load_verify_locations(Get(), file, nullptr); });
    load(credentials.certificate,
         [&](const char* file) { return SSL_CTX_use_certificate_chain_file(Get(), file); });
    load(credentials.privateKey, [&](const char* file) {
        return SSL_CTX_use_PrivateKey_file(Get(), file, SSL_FILETYPE_PEM);
    });
}

Stream::Stream(const Server& server, const TlsContext& tls, int stop, Milliseconds patience)
    : bio_(StreamOver(server.transport == Transport::Unix ? ConnectToPath(server.host)
                                                          : ConnectToHost(server, stop, patience),
                      server, tls),
           BIO_free_all)
{
}

int Stream::Descriptor() const
{
    int descriptor = -1;
    BIO_get_fd(bio_.get(), &descriptor);
    return descriptor;
}

size_t Stream::Read(std::span<char> bytes)
{
    errno = 0;
    return Carried(bio_.get(), BIO_read(bio_.get(), bytes.data(), static_cast<int>(bytes.size())));
}

size_t Stream::Write(std::string_view bytes)
{
    errno = 0;
    const int result = BIO_write(bio_.get(), bytes.data(), static_cast<int>(bytes.size()));
    waitsToRead_ = result <= 0 && BIO_should_read(bio_.get()) != 0;
    return Carried(bio_.get(), result);
}

}  // namespace sources::ovsdb
