// Formats messages and writes them to the system log.
#include <syslog.h>

#include <cstdarg>
#include <cstdlib>

#include <tarnd_platform/bounded.h>
#include <tarnd_qrb/log.h>

#include "db/access.h"
#include "db/probes.h"

namespace {

constexpr char IDENTITY[] = "TARND_QRB";
constexpr size_t MESSAGE_SIZE = 512;

}  // namespace

void Tarn_QRB_Log_Printf(uint32_t priority, const char* function, uint32_t line, const char* format,
                         ...)
{
    if (priority > qrb::PRIORITY_ERROR) {
        QRB_PROBE(log_dropped, priority, function, line, format);
        return;
    }
    char* const text = static_cast<char*>(malloc(MESSAGE_SIZE));
    if (text == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(text, MESSAGE_SIZE, format, arguments);
    va_end(arguments);

    if (length >= 0) {
        const int level = static_cast<int>(priority);
        QRB_PROBE(log_line, priority, function, line, text);
        if (function != nullptr) {
            syslog(level, "[%s][%s:%u] %s", IDENTITY, function, line, text);
        } else {
            syslog(level, "[%s] %s", IDENTITY, text);
        }
    }
    free(text);
}
