#pragma once

#include "capture/HelperLauncher.h"
#include "fakes/CallLog.h"

#include <string>
#include <utility>
#include <vector>

namespace tavi {

/// Helpers that say what the test wants, on the test's thread.
class FakeHelperLauncher final : public HelperLauncher {
public:
    /// Starts and ends are noted ("launch", "end helper").
    explicit FakeHelperLauncher(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    std::unique_ptr<HelperProcess> launch(const HelperCommand& command,
                                          ChunkHandler onChunk) override {
        m_log.note("launch");
        launches.push_back(command.path);
        lastArguments = command.arguments;
        if (fails) {
            return nullptr;
        }
        m_onChunk = std::move(onChunk);
        return std::make_unique<Process>(*this);
    }

    /// What one read of the pipe gives.
    void say(std::string_view chunk) const {
        if (m_onChunk) {
            m_onChunk(chunk);
        }
    }

    bool isRunning() const { return m_onChunk != nullptr; }

    bool fails = false;
    std::vector<std::string> launches;
    std::vector<std::string> lastArguments;

private:
    class Process final : public HelperProcess {
    public:
        explicit Process(FakeHelperLauncher& owner) : m_owner(owner) {}
        ~Process() override {
            m_owner.m_log.note("end helper");
            m_owner.m_onChunk = nullptr;
        }
        pid_t pid() const override { return 1; }

    private:
        FakeHelperLauncher& m_owner;
    };

    CallLog m_ownLog;
    CallLog& m_log;
    ChunkHandler m_onChunk;
};

/// A permission that the test grants.
class FakeKeyPermission final : public KeyPermission {
public:
    void setGranted() override { ++grants; }
    std::unique_ptr<Wait> whenGranted(std::function<void()> block) override {
        ++waits;
        m_block = std::move(block);
        return std::make_unique<FakeWait>(*this);
    }
    void stopProbe() override { ++probeStops; }

    /// The user grants: whoever waits is told, once.
    void grant() {
        if (const auto block = std::exchange(m_block, nullptr)) {
            block();
        }
    }
    bool isAwaited() const { return m_block != nullptr; }

    int grants = 0; ///< Calls of setGranted().
    int waits = 0;  ///< Calls of whenGranted().
    int probeStops = 0;

private:
    class FakeWait final : public Wait {
    public:
        explicit FakeWait(FakeKeyPermission& owner) : m_owner(owner) {}
        ~FakeWait() override { m_owner.m_block = nullptr; }

    private:
        FakeKeyPermission& m_owner;
    };

    std::function<void()> m_block;
};

} // namespace tavi
