#include "sources/ovsdb/ovsdb_tls.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <openssl/err.h>
#include <openssl/x509_vfy.h>

namespace sources::ovsdb {
namespace {

[[noreturn]] void Fail(const std::string& what)
{
    throw std::runtime_error(what + TlsFailure(nullptr));
}

// The password callback for encrypted keys. Supplies no password and records that it was called.
int RefusePassword(char*, int, int, void* wasAsked)
{
    *static_cast<bool*>(wasAsked) = true;
    return -1;
}

void CheckReadable(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (stream.get() == std::ifstream::traits_type::eof()) {
        throw std::runtime_error(
            file + ": " +
            (stream.is_open() && errno == 0 ? "the file is empty" : std::strerror(errno)));
    }
}

void LoadPrivateKey(SSL_CTX* context, const std::string& file)
{
    bool wasAsked = false;
    SSL_CTX_set_default_passwd_cb(context, RefusePassword);
    SSL_CTX_set_default_passwd_cb_userdata(context, &wasAsked);
    const int result = SSL_CTX_use_PrivateKey_file(context, file.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_set_default_passwd_cb_userdata(context, nullptr);
    if (wasAsked) {
        ERR_clear_error();
        throw std::runtime_error(file + ": the key is encrypted; a key without password is needed");
    }
    if (result != 1) {
        Fail(file + ": ");
    }
}

void LoadAll(SSL_CTX* context, const Credentials& credentials)
{
    for (const std::string* file :
         {&credentials.caCertificate, &credentials.certificate, &credentials.privateKey}) {
        errno = 0;
        CheckReadable(*file);
    }
    if (SSL_CTX_load_verify_locations(context, credentials.caCertificate.c_str(), nullptr) != 1) {
        Fail(credentials.caCertificate + ": ");
    }
    if (SSL_CTX_use_certificate_chain_file(context, credentials.certificate.c_str()) != 1) {
        Fail(credentials.certificate + ": ");
    }
    LoadPrivateKey(context, credentials.privateKey);
}

}  // namespace

std::string TlsFailure(SSL* connection)
{
    const unsigned long error = ERR_get_error();
    const char* const reason = ERR_reason_error_string(error);
    ERR_clear_error();
    std::string text = reason != nullptr ? reason : "unknown TLS error";
    const long verified = connection != nullptr ? SSL_get_verify_result(connection) : X509_V_OK;
    if (verified != X509_V_OK) {
        text += std::string(": ") + X509_verify_cert_error_string(verified);
    }
    return text;
}

TlsContext::TlsContext(const Credentials& credentials)
    : context_(SSL_CTX_new(TLS_client_method()), SSL_CTX_free)
{
    if (context_ == nullptr) {
        Fail("");
    }
    SSL_CTX_set_min_proto_version(Get(), TLS1_2_VERSION);
    SSL_CTX_set_mode(Get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    SSL_CTX_set_verify(Get(), SSL_VERIFY_PEER, nullptr);
    if (!credentials.caCertificate.empty()) {
        LoadAll(Get(), credentials);
    }
}

}  // namespace sources::ovsdb
