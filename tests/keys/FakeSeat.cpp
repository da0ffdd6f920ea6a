#include "keys/FakeSeat.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <linux/input.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <umockdev.h>
#include <unistd.h>
#include <utility>

namespace tavi::test {

namespace {

std::string devicePath(const std::string& name) {
    return "/devices/platform/fake/input/input-" + name;
}

std::string eventPath(const std::string& name) {
    return devicePath(name) + "/" + name;
}

std::string numbers(unsigned majorNumber, unsigned minorNumber) {
    return std::to_string(majorNumber) + ":" + std::to_string(minorNumber);
}

void relink(const std::string& link, const std::string& target) {
    std::filesystem::remove(link);
    std::filesystem::create_symlink(target, link);
}

std::string describe(const std::string& kind, const std::string& name, unsigned majorNumber,
                     unsigned minorNumber) {
    return "P: " + eventPath(name) + "\nN: input/" + name + "\nE: DEVNAME=/dev/input/" + name +
           "\nE: SUBSYSTEM=input\nE: MAJOR=" + std::to_string(majorNumber) +
           "\nE: MINOR=" + std::to_string(minorNumber) + "\nE: ID_INPUT=1\nE: ID_INPUT_" + kind +
           "=1\nE: ID_SEAT=seat0\nA: dev=" + numbers(majorNumber, minorNumber) +
           "\n\nP: " + devicePath(name) +
           "\nE: SUBSYSTEM=input\nE: NAME=\"Fake Keyboard\"\nE: PRODUCT=3/1234/5678/111\n"
           "E: ID_INPUT=1\nE: ID_INPUT_" +
           kind + "=1\n";
}

/// A field of bits as the kernel answers, in `bytes` bytes.
std::string bits(std::size_t bytes, const std::vector<unsigned>& set = {}) {
    std::vector<unsigned char> field(bytes);
    for (const unsigned bit : set) {
        field[bit / 8] = static_cast<unsigned char>(field[bit / 8] | 1U << bit % 8);
    }
    std::string hex;
    for (const unsigned char byte : field) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return hex;
}

std::string textAnswer(const std::string& request, const std::string& text) {
    constexpr std::size_t kAskedFor = 255;
    std::string hex;
    for (std::size_t i = 0; i < kAskedFor; ++i) {
        hex += i < text.size() ? "78" : "00"; // "x": nobody reads it
    }
    return request + " " + std::to_string(text.size() + 1) + " " + hex + "\n";
}

/// What a device has: the kernel's numbers.
struct Features {
    std::vector<unsigned> kinds;
    std::vector<unsigned> keys;
    std::vector<unsigned> axes;
};

Features featuresOf(const std::string& kind) {
    if (kind == "MOUSE") {
        return {{EV_SYN, EV_KEY, EV_REL},
                {BTN_LEFT, BTN_RIGHT},
                {REL_X, REL_Y, REL_WHEEL, REL_WHEEL_HI_RES}};
    }
    Features keyboard{{EV_SYN, EV_KEY, EV_MSC}, {}, {}};
    for (unsigned key = 1; key < 248; ++key) {
        keyboard.keys.push_back(key);
    }
    return keyboard;
}

/// What the kernel answers about the device, in the words of the recorder of devices.
std::string answers(const std::string& kind, const std::string& name, FakeSeat::Lock lit) {
    const Features features = featuresOf(kind);
    std::vector<unsigned> lights;
    if (lit != FakeSeat::Lock::none) {
        lights.push_back(lit == FakeSeat::Lock::num ? LED_NUML : LED_CAPSL);
    }
    std::string text =
        "@DEV /dev/input/" + name + "\nEVIOCGVERSION 0 01000100\nEVIOCGID 0 0300341278561101\n" +
        textAnswer("EVIOCGNAME", "x") + textAnswer("EVIOCGPHYS", "x") +
        textAnswer("EVIOCGUNIQ", "") + "EVIOCGPROP 8 " + bits(8) + "\nEVIOCGKEY 96 " + bits(96) +
        "\nEVIOCGLED 8 " + bits(8, lights) + "\nEVIOCGSW 8 " + bits(8) + "\nEVIOCGBIT(0) 8 " +
        bits(8, features.kinds) + "\nEVIOCGBIT(1) 96 " + bits(96, features.keys) + "\n";
    for (const unsigned type : {EV_REL, EV_ABS, EV_MSC, EV_SW, EV_LED, EV_SND}) {
        const std::vector<unsigned> set = type == EV_MSC   ? std::vector<unsigned>{MSC_SCAN}
                                          : type == EV_REL ? features.axes
                                                           : std::vector<unsigned>{};
        text += "EVIOCGBIT(" + std::to_string(type) + ") 8 " + bits(8, set) + "\n";
    }
    return text + "EVIOCGBIT(21) 16 " + bits(16) + "\n";
}

/// Programs of other users look in and leave sockets of their own.
void openToAll(const std::filesystem::path& path) {
    std::filesystem::permissions(path, std::filesystem::perms::all);
}

} // namespace

FakeSeat::FakeSeat() : m_testbed(umockdev_testbed_new()) {
    gchar* root = umockdev_testbed_get_root_dir(m_testbed);
    m_root = root;
    g_free(root);
    std::filesystem::create_directories(m_root + "/dev/input");
    writeFile(m_root + "/run/udev/control", ""); // the device manager runs
    openToAll(m_root);
}

FakeSeat::~FakeSeat() {
    g_object_unref(m_testbed);
}

std::map<std::string, std::string> FakeSeat::environment() const {
    return {{"LD_PRELOAD", TAVI_UDEV_DATABASE ":libumockdev-preload.so.0"},
            {"UMOCKDEV_DIR", m_root},
            {"ASAN_OPTIONS", "verify_asan_link_order=0"},
            {"XDG_SESSION_TYPE", "wayland"},
            {"XDG_SEAT", ""},
            {"XDG_VTNR", ""},
            {"XKB_DEFAULT_LAYOUT", "us"},
            {"LC_ALL", "en_US.UTF-8"}};
}

std::string FakeSeat::node(const std::string& name) const {
    return m_root + "/dev/input/" + name;
}

/// The device's node is a terminal, whose number is known only once it is there: a guess is
/// put right everywhere.
void FakeSeat::plugInAs(const std::string& kind, const std::string& name, Lock lit) {
    constexpr unsigned kMajor = 13;
    constexpr unsigned kMinor = 64;
    const std::string guess = numbers(kMajor, kMinor);
    ASSERT_TRUE(umockdev_testbed_add_from_string(
        m_testbed, describe(kind, name, kMajor, kMinor).c_str(), nullptr));
    struct stat status {};
    ASSERT_EQ(stat(node(name).c_str(), &status), 0) << node(name);
    const auto [majorNumber, minorNumber] = std::pair(major(status.st_rdev), minor(status.st_rdev));
    const std::string number = numbers(majorNumber, minorNumber);
    writeFile(m_root + "/sys" + eventPath(name) + "/dev", number);
    const std::string path = "/sys" + eventPath(name);
    umockdev_testbed_set_property_int(m_testbed, path.c_str(), "MAJOR",
                                      static_cast<int>(majorNumber));
    umockdev_testbed_set_property_int(m_testbed, path.c_str(), "MINOR",
                                      static_cast<int>(minorNumber));
    std::string terminal = std::filesystem::canonical(node(name));
    std::replace(terminal.begin(), terminal.end(), '/', '_');
    relink(m_root + "/dev/.node/input_" + name, number);
    relink(m_root + "/dev/.ptymap/" + terminal, number);
    std::filesystem::remove(m_root + "/sys/dev/char/" + guess);
    relink(m_root + "/sys/dev/char/" + number, "../.." + eventPath(name));
    writeFile(m_root + "/run/udev/data/c" + number,
              "I:1\nE:ID_INPUT=1\nE:ID_INPUT_" + kind + "=1\nE:ID_SEAT=seat0\nG:seat\nV:1\n");
    const std::string recorded = m_root + "/" + name + ".ioctl";
    writeFile(recorded, answers(kind, name, lit));
    GError* error = nullptr;
    EXPECT_TRUE(umockdev_testbed_load_ioctl(m_testbed, nullptr, recorded.c_str(), &error))
        << error->message;
    openToAll(m_root + "/ioctl");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_root + "/ioctl")) {
        openToAll(entry.path());
    }
}

void FakeSeat::plugIn(const std::string& name, Lock lit) {
    plugInAs("KEYBOARD", name, lit);
}

void FakeSeat::announce(const std::string& name) {
    umockdev_testbed_uevent(m_testbed, ("/sys" + eventPath(name)).c_str(), "add");
}

void FakeSeat::unplug(const std::string& name) {
    umockdev_testbed_uevent(m_testbed, ("/sys" + eventPath(name)).c_str(), "remove");
}

void FakeSeat::type(const std::string& name, const std::vector<unsigned>& keys) {
    for (const unsigned key : keys) {
        press(name, key);
        release(name, key);
    }
}

void FakeSeat::send(const std::string& name, unsigned key, int value) {
    send(name, {{EV_KEY, key, value}});
}

void FakeSeat::turnWheel(const std::string& name, int way) {
    constexpr int kNotch = 120;
    std::vector<Change> changes{{EV_REL, REL_WHEEL_HI_RES, way}};
    if (way % kNotch == 0) {
        changes.push_back({EV_REL, REL_WHEEL, way / kNotch});
    }
    send(name, changes);
}

void FakeSeat::move(const std::string& name, int x, int y) {
    send(name, {{EV_REL, REL_X, x}, {EV_REL, REL_Y, y}});
}

/// All at once, at this moment of the clock that readers ask the kernel for.
void FakeSeat::send(const std::string& name, const std::vector<Change>& changes) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::vector<input_event> events;
    for (const auto& [type, code, value] : changes) {
        input_event event{};
        event.type = static_cast<__u16>(type);
        event.code = static_cast<__u16>(code);
        event.value = value;
        events.push_back(event);
    }
    events.emplace_back(); // the end of the report
    for (input_event& event : events) {
        event.input_event_sec = now.tv_sec;
        event.input_event_usec = now.tv_nsec / 1000;
    }
    const int master = umockdev_testbed_get_dev_fd(m_testbed, ("/dev/input/" + name).c_str());
    ASSERT_GE(master, 0);
    const std::size_t size = events.size() * sizeof(input_event);
    ASSERT_EQ(write(master, events.data(), size), static_cast<ssize_t>(size));
}

void FakeSeat::allow(const std::string& name, bool isAllowed) {
    const std::string path = std::filesystem::canonical(node(name));
    ASSERT_EQ(chmod(path.c_str(), isAllowed ? 0666 : 0000), 0);
    // The folder's watchers learn of it through the node, which is a link here.
    ASSERT_EQ(utimensat(AT_FDCWD, node(name).c_str(), nullptr, AT_SYMLINK_NOFOLLOW), 0);
}

std::string FakeSeat::unprivileged(const std::string& program) const {
    for (const std::string& file : {program, std::string(TAVI_UDEV_DATABASE)}) {
        const auto copy = std::filesystem::path(m_root) / std::filesystem::path(file).filename();
        std::filesystem::copy_file(file, copy, std::filesystem::copy_options::skip_existing);
        openToAll(copy);
    }
    const std::string copy = m_root + "/" + std::filesystem::path(program).filename().string();
    if (geteuid() != 0) {
        return copy;
    }
    const std::string script = copy + ".sh";
    writeFile(script, "#!/bin/sh\nexec setpriv --reuid=65534 --regid=65534 --clear-groups -- " +
                          copy + " \"$@\"\n");
    openToAll(script);
    return script;
}

std::map<std::string, std::string> FakeSeat::unprivilegedEnvironment() const {
    auto variables = environment();
    const auto library = std::filesystem::path(TAVI_UDEV_DATABASE).filename().string();
    variables["LD_PRELOAD"] = m_root + "/" + library + ":libumockdev-preload.so.0";
    return variables;
}

int FakeSeat::devicesHeldBy(pid_t program) {
    int count = 0;
    const std::string held = "/proc/" + std::to_string(program) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(held)) {
        std::error_code ignored;
        const auto target = std::filesystem::read_symlink(entry.path(), ignored).string();
        count += target.rfind("/dev/pts/", 0) == 0 ? 1 : 0;
    }
    return count;
}

void FakeSeat::showConsole(const std::string& console) {
    writeFile(m_root + "/sys/class/tty/tty0/active", console + "\n");
}

} // namespace tavi::test
