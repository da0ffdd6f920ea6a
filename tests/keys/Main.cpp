#include <gmock/gmock.h>

#include <cstdlib>
#include <string_view>
#include <unistd.h>

/// Announcing devices takes a process that sees the fake machine itself: it starts once more
/// with the library of fake devices loaded first.
int main(int argc, char** argv) {
    constexpr const char* kLibrary = "libumockdev-preload.so.0";
    const char* loaded = std::getenv("LD_PRELOAD");
    if (loaded == nullptr || std::string_view(loaded) != kLibrary) {
        setenv("LD_PRELOAD", kLibrary, 1);
        setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 0);
        execv("/proc/self/exe", argv);
        return EXIT_FAILURE;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
