#pragma once

#include "media/SoundOutput.h"
#include "platform/pipewire/PipeWireGraph.h"

namespace tavi {

/// A stream of sound into PipeWire, made anew whenever the daemon or a speaker comes.
///
/// Asks its source on the library's data thread for what the graph takes next, and tells it when
/// that will be heard: the graph's own report, with all delays on the way to the device.
class PlaybackStream final : public SoundOutput, private PipeWireGraph::Observer {
public:
    explicit PlaybackStream(std::shared_ptr<SoundSource> source);
    ~PlaybackStream() override;

    void start() override { setActive(true); }
    void stop() override { setActive(false); }

private:
    struct Callbacks;

    void nodeAdded(const PipeWireNode& node) override;
    void defaultsChanged() override;
    void connectionLost() override;

    void setActive(bool isActive);
    void openStream();
    void closeStream();
    void process() noexcept;
    std::int64_t heardAt() const noexcept;

    const std::shared_ptr<SoundSource> m_source;
    PipeWireGraph m_graph;

    // On the connection's thread; the stream itself also on the data thread while it lives.
    pw_stream* m_stream = nullptr;
    spa_hook m_streamHook{};
    bool m_isActive = false;
};

} // namespace tavi
