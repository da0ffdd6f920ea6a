#include "keys/InputFolderWatch.h"

#include <array>
#include <cstdint>
#include <sys/inotify.h>
#include <unistd.h>

namespace tavi {

namespace {

constexpr const char* kParent = "/dev";
constexpr const char* kFolder = "/dev/input";

} // namespace

InputFolderWatch::InputFolderWatch() : m_inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    watch();
}

InputFolderWatch::~InputFolderWatch() {
    close(m_inotify);
}

/// The folder is there only while there are devices: until it is, its parent tells of it.
void InputFolderWatch::watch() {
    constexpr std::uint32_t kChanges = IN_ATTRIB | IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF;
    if (inotify_add_watch(m_inotify, kFolder, kChanges) < 0) {
        inotify_add_watch(m_inotify, kParent, IN_CREATE | IN_MOVED_TO);
    }
}

bool InputFolderWatch::takeNews() {
    std::array<char, 4096> events{};
    bool isNews = false;
    while (read(m_inotify, events.data(), events.size()) > 0) {
        isNews = true;
    }
    if (isNews) {
        watch(); // the folder may be a new one; a watch that is there already stays one
    }
    return isNews;
}

} // namespace tavi
