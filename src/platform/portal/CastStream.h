#pragma once

#include "capture/ScreenStream.h"
#include "media/ColorConversion.h"
#include "media/PixelBufferPool.h"
#include "platform/pipewire/PipeWireGraph.h"
#include "platform/portal/CastBuffer.h"
#include "platform/portal/CastFormat.h"
#include "platform/portal/CastPicture.h"
#include "platform/portal/FramePace.h"
#include "platform/portal/PortalPointer.h"
#include "platform/portal/SampleOutlet.h"
#include "platform/portal/SilentStart.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace tavi {

/// The pictures and the pointer of one node of a compositor, over a connection that the portal
/// opened.
///
/// From open() on the newest picture is kept, so that a take can begin with what is on the
/// screen: a compositor sends pictures only when something changes. A source that changes its
/// size stays at the top left of the picture, cut off or continued by its last column and row.
/// A picture that could not be used is sent again until one can, and the newest then. Pictures are
/// those of the compositor's memory where it lies as the program's do, else copies. Threads: as
/// told in ScreenStream; everything of PipeWire on the connection's own.
class CastStream final : public ScreenStream, private PipeWireGraph::Observer {
public:
    /// Where pictures and pointer go beyond the handler; both outlive the stream.
    struct Ports {
        std::shared_ptr<const ColorConverter> colours; ///< For NV12; may be null.
        PortalPointer& pointer;
    };

    /// Connects to the node. Blocks until the size of its pictures is known: for the first one, or
    /// a moment where none comes. `remote` is taken over. Errors: castRefused.
    static Result<std::unique_ptr<CastStream>, CaptureError>
    open(int remote, std::uint32_t node, Ports ports, CastAlpha alpha = CastAlpha::unwanted);
    ~CastStream() override;

    /// Of the source, in pixels, when the stream was opened.
    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Whether its pictures have an alpha channel: where it was wanted, and the compositor has one.
    bool hasAlpha() const { return m_hasAlpha; }

    /// What pictures are to be like; before startCapture().
    void configure(const ScreenStreamConfiguration& configuration);

    Result<void, CaptureError> addStreamOutput(SerialQueue& queue, Handler handler) override;
    Result<void, CaptureError> startCapture() override;
    Result<void, CaptureError> stopCapture() override;
    std::optional<CaptureError> failure() const override;

    /// The cast is over: the stream has failed. Any thread.
    void end();

private:
    struct Callbacks;

    /// A picture that waits for its turn, or for the take to begin.
    struct Waiting {
        CastBufferPtr buffer;
        CastPicture picture;   ///< In the buffer.
        std::int64_t time = 0; ///< When it was taken, host nanoseconds.
    };

    CastStream(int remote, std::uint32_t node, Ports ports, CastAlpha alpha);

    void nodeRemoved(const PipeWireNode& node) override;
    void connectionLost() override;

    Result<void, CaptureError> connect();
    void openStream();
    void closeStream();
    void fail(CaptureError::Kind kind);
    void takeFormat(const spa_pod* pod);
    void addBuffer(pw_buffer& buffer);
    void removeBuffer(pw_buffer& buffer);
    void process();
    void giveBack();
    void look(pw_buffer& buffer);
    CastPicture pictureIn(const CastBuffer& buffer) const;
    void follow(const spa_buffer& buffer, const CastPicture& picture);
    void deliver(std::int64_t now);
    void send(PixelBufferPtr image, std::int64_t time);
    void sendAgain(std::int64_t now);
    PixelBufferPtr pixelsOf(const Waiting& waiting);
    PixelBufferPtr lend(const Waiting& waiting);
    void release(CastBufferPtr buffer);
    void wakeAt(std::int64_t time);

    Ports m_ports;
    std::uint32_t m_node;
    CastAlpha m_alpha;
    ScreenStreamConfiguration m_configuration;
    int m_width = 0;
    int m_height = 0;
    bool m_hasAlpha = false;

    mutable std::mutex m_failureMutex;
    std::optional<CaptureError> m_failure; ///< By its mutex.

    PipeWireGraph m_graph;
    // All below belong to the connection's thread; others look with its lock.
    spa_source* m_timer = nullptr; ///< For a picture that came too early, or comes again.
    SilentStart m_silence;
    pw_stream* m_stream = nullptr;
    spa_hook m_streamHook{};
    std::optional<CastFormat> m_format;
    std::map<pw_buffer*, CastBufferPtr> m_buffers;
    std::optional<Waiting> m_waiting;
    std::optional<CastArea> m_firstArea; ///< Of the first picture.
    std::optional<FramePace> m_pace;     ///< While samples are sent.
    std::shared_ptr<PixelBufferPool> m_pool;
    std::shared_ptr<ReturnedBuffers> m_returned = std::make_shared<ReturnedBuffers>();
    std::optional<SampleOutlet> m_outlet; ///< Set before samples are sent.
};

} // namespace tavi
