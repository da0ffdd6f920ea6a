#pragma once

#include "platform/pipewire/FakeSource.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <pipewire/pipewire.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>
#include <string>
#include <vector>

namespace tavi::test {

/// How a fake compositor lays a picture out.
struct CastLayout {
    spa_video_format format = SPA_VIDEO_FORMAT_BGRx;
    int width = 64;
    int height = 48;
    int padding = 0;          ///< Bytes behind each row.
    bool isBottomUp = false;  ///< With a negative stride.
    bool isTwoPlanes = false; ///< NV12 in two pieces of memory.
    bool isDmaBuf = false;    ///< Offered as linear graphics memory only.
    int fewestBuffers = 4;
    int mostBuffers = 16;
    std::vector<spa_video_format> offered = {}; ///< Else `format` alone.
};

/// A pointer as it stands in a buffer's metadata.
struct CastPointerNews {
    std::uint32_t id = 1;
    int x = 0;
    int y = 0;
    int hotSpotX = 0;
    int hotSpotY = 0;
    std::vector<std::uint32_t> pixels; ///< Empty: no new picture.
    int width = 0;
    spa_video_format format = SPA_VIDEO_FORMAT_BGRA;
    std::int32_t lie = 0; ///< Added to the bitmap's place, to lead readers astray.
};

/// What one buffer carries. Colours are 0xAARRGGBB.
struct CastFrame {
    /// The colour of a pixel of the buffer; null: a buffer without a picture.
    std::function<std::uint32_t(int x, int y)> pixel;
    bool isChunkCorrupted = false;
    bool isHeaderCorrupted = false;
    std::int64_t pts = 0; ///< Nanoseconds; 0: none.
    spa_region crop{};    ///< Empty: none.
    std::uint32_t transform = 0;
    std::vector<CastPointerNews> pointer; ///< None or one.
};

/// A compositor's stream on the test's own PipeWire: one buffer at each send(), and the newest
/// picture again whenever the stream begins.
class FakeCast : private FakeSource {
public:
    enum class Metas { all, none };

    explicit FakeCast(const CastLayout& layout, Metas metas = Metas::all);
    ~FakeCast();

    std::uint32_t node() const { return m_node; }

    /// Waits until a reader is connected and takes buffers.
    bool waitForReader();

    /// False when there is no free buffer.
    bool send(const CastFrame& frame);

    /// What is sent when the stream begins the next time, and not before.
    void paintLater(const CastFrame& frame);

    /// Another size from now on; waits until it is agreed upon.
    void resize(int width, int height);

    /// A connection with the same PipeWire, as a portal opens one.
    static int openRemote();

private:
    static void stateChanged(void* data, pw_stream_state, pw_stream_state now, const char*);
    static void parameterChanged(void* data, std::uint32_t id, const spa_pod* pod);
    static void addBuffer(void* data, pw_buffer* buffer);
    static void removeBuffer(void* data, pw_buffer* buffer);
    static void process(void*) {}
    static void paint(void* data, std::uint64_t);
    static FakeCast& of(void* data);

    bool isTaken();
    bool queue(const CastFrame& frame);
    std::vector<const spa_pod*> offers(std::vector<std::uint8_t>& memory) const;
    int rowBytes() const;
    int chromaRowBytes() const;
    int planeBytes(int plane) const;
    void fill(pw_buffer& buffer, const CastFrame& frame) const;
    void fillPicture(pw_buffer& buffer, const CastFrame& frame) const;
    static void fillMetas(const spa_buffer& buffer, const CastFrame& frame);
    static void fillPointer(const spa_buffer& buffer, const CastPointerNews& news);

    CastLayout m_layout;
    Metas m_metas;
    spa_source* m_painter = nullptr; ///< When the stream begins again.
    std::uint32_t m_node = 0;
    bool m_isStreaming = false; ///< With the loop's lock, as the next.
    int m_buffers = 0;
    CastFrame m_shown; ///< Of the newest picture.
};

} // namespace tavi::test
