// Memory and string functions with a bound for the destination.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <tarnd_platform/bounded.h>

namespace {

// After a failure the destination is an empty text: neither a part of the source nor the old
// contents.
int Refuse(char* destination, size_t destinationSize, int code)
{
    if (destination != nullptr && destinationSize > 0) {
        destination[0] = '\0';
    }
    return code;
}

// Copies length characters and a terminator to destination + at.
int PutText(char* destination, size_t destinationSize, size_t at, const char* source, size_t length)
{
    if (length >= destinationSize - at) {
        return Refuse(destination, destinationSize, ERANGE);
    }
    memcpy(destination + at, source, length);
    destination[at + length] = '\0';
    return 0;
}

}  // namespace

int memcpy_s(void* destination, size_t destinationSize, const void* source, size_t count)
{
    if (destination == nullptr || source == nullptr) {
        return EINVAL;
    }
    if (count > destinationSize) {
        return ERANGE;
    }
    memcpy(destination, source, count);
    return 0;
}

int memset_s(void* destination, size_t destinationSize, int value, size_t count)
{
    if (destination == nullptr) {
        return EINVAL;
    }
    if (count > destinationSize) {
        return ERANGE;
    }
    memset(destination, value, count);
    return 0;
}

int strcpy_s(char* destination, size_t destinationSize, const char* source)
{
    return strncpy_s(destination, destinationSize, source, destinationSize);
}

int strncpy_s(char* destination, size_t destinationSize, const char* source, size_t count)
{
    if (destination == nullptr || source == nullptr) {
        return Refuse(destination, destinationSize, EINVAL);
    }
    return PutText(destination, destinationSize, 0, source, strnlen(source, count));
}

int strcat_s(char* destination, size_t destinationSize, const char* source)
{
    if (destination == nullptr || source == nullptr) {
        return Refuse(destination, destinationSize, EINVAL);
    }
    const size_t at = strnlen(destination, destinationSize);
    return PutText(destination, destinationSize, at, source, strnlen(source, destinationSize - at));
}

int sprintf_s(char* destination, size_t destinationSize, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(destination, destinationSize, format, arguments);
    va_end(arguments);
    return length;
}

int vsprintf_s(char* destination, size_t destinationSize, const char* format, va_list arguments)
{
    if (destination == nullptr || format == nullptr || destinationSize == 0) {
        return Refuse(destination, destinationSize, -1);
    }
    const int length = vsnprintf(destination, destinationSize, format, arguments);
    if (length < 0 || static_cast<size_t>(length) >= destinationSize) {
        return Refuse(destination, destinationSize, -1);
    }
    return length;
}
