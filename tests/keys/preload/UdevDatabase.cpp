// Loaded into a program under test before its libraries: what it looks up in the database of
// the running device manager is looked up below $UMOCKDEV_DIR/run/udev instead.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>

namespace {

constexpr const char* kFolder = "/run/udev/";

std::string redirected(const char* path) {
    const char* root = std::getenv("UMOCKDEV_DIR");
    if (root == nullptr || path == nullptr ||
        std::strncmp(path, kFolder, std::strlen(kFolder)) != 0) {
        return path != nullptr ? path : "";
    }
    return root + std::string(path);
}

template<typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

FILE* fopen64(const char* path, const char* mode) {
    static const auto original = next<FILE* (*)(const char*, const char*)>("fopen64");
    return original(redirected(path).c_str(), mode);
}

int access(const char* path, int mode) noexcept {
    static const auto original = next<int (*)(const char*, int)>("access");
    return original(redirected(path).c_str(), mode);
}

int open64(const char* path, int flags, ...) {
    static const auto original = next<int (*)(const char*, int, mode_t)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>(va_arg(arguments, int));
    va_end(arguments);
    return original(redirected(path).c_str(), flags, mode);
}

} // extern "C"
