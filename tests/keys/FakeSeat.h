#pragma once

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

using UMockdevTestbed = struct _UMockdevTestbed;

namespace tavi::test {

/// A machine of its own: what a program that is started with environment() sees as devices.
class FakeSeat {
public:
    FakeSeat();
    ~FakeSeat();
    FakeSeat(const FakeSeat&) = delete;
    FakeSeat& operator=(const FakeSeat&) = delete;

    std::map<std::string, std::string> environment() const;

    enum class Lock { none, num, caps };

    /// A keyboard that is there; running programs are told only by announce().
    void plugIn(const std::string& name, Lock lit = Lock::none);
    /// A mouse with two buttons and a wheel.
    void plugInMouse(const std::string& name) { plugInAs("MOUSE", name, Lock::none); }
    void announce(const std::string& name);
    void unplug(const std::string& name);

    /// Puts a key of a keyboard down or lets it go, by the number of input-event-codes.h.
    void press(const std::string& name, unsigned key) { send(name, key, 1); }
    void release(const std::string& name, unsigned key) { send(name, key, 0); }
    void type(const std::string& name, const std::vector<unsigned>& keys);
    /// What the kernel sends while a key is held.
    void repeat(const std::string& name, unsigned key) { send(name, key, 2); }

    /// Turns a mouse's wheel; a notch is 120, as a wheel of high resolution reports it.
    void turnWheel(const std::string& name, int way);
    void move(const std::string& name, int x, int y);

    /// Gives or takes everyone the right to read a device.
    void allow(const std::string& name, bool isAllowed);

    /// A copy of a program that runs as a user without special rights, and what it takes to
    /// start it.
    std::string unprivileged(const std::string& program) const;
    std::map<std::string, std::string> unprivilegedEnvironment() const;

    /// How many devices a program holds open.
    static int devicesHeldBy(pid_t program);

    /// Says which console is shown ("tty2").
    void showConsole(const std::string& console);

private:
    void plugInAs(const std::string& kind, const std::string& name, Lock lit);
    struct Change {
        unsigned type;
        unsigned code;
        int value;
    };
    void send(const std::string& name, const std::vector<Change>& changes);
    void send(const std::string& name, unsigned key, int value);
    std::string node(const std::string& name) const;

    UMockdevTestbed* m_testbed;
    std::string m_root;
};

} // namespace tavi::test
