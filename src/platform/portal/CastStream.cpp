#include "platform/portal/CastStream.h"

#include "base/Clock.h"
#include "platform/portal/CastCursor.h"

#include <algorithm>
#include <cstdlib>
#include <spa/param/param.h>
#include <utility>

namespace tavi {

namespace {

/// A compositor's time that is farther from the host's clock is of another clock. Nanoseconds.
constexpr std::int64_t kPlausible = 2'000'000'000;
/// Samples that the queue hasn't come to yet; more of them would only be dropped there.
constexpr int kMostQueued = 2;
constexpr std::int64_t kRetry = 4'000'000; ///< Until the queue is looked at again, nanoseconds.
/// When a picture that could not be used is sent again, if no newer one came until then: time for
/// an encoder to work off some. Nanoseconds.
constexpr std::int64_t kAgain = 50'000'000;
/// With fewer buffers a compositor has none to draw into while one is lent and one waits.
constexpr std::size_t kFewestToLend = 4;
constexpr std::size_t kMostKeptPictures = 3;
/// How often the format, which must come, is waited for; then the first picture, which may not.
constexpr int kFormatRounds = 4;

std::int64_t hostNow() {
    return SystemClock().hostTime().rescaled(MediaTime::kNanoseconds).value;
}

CastArea within(const spa_region& region, int width, int height) {
    const CastArea whole{0, 0, width, height};
    const int x = std::clamp(region.position.x, 0, width);
    const int y = std::clamp(region.position.y, 0, height);
    const CastArea cut{x, y, static_cast<int>(std::min<std::int64_t>(region.size.width, width - x)),
                       static_cast<int>(std::min<std::int64_t>(region.size.height, height - y))};
    return cut.width > 0 && cut.height > 0 ? cut : whole;
}

template<typename Meta>
const Meta* metaOf(const spa_buffer& buffer, std::uint32_t type) {
    return static_cast<const Meta*>(spa_buffer_find_meta_data(&buffer, type, sizeof(Meta)));
}

/// A buffer without one tells of the pointer only.
bool hasPicture(const spa_buffer& buffer) {
    const auto* header = metaOf<spa_meta_header>(buffer, SPA_META_Header);
    const bool isDamaged =
        header != nullptr && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED) != 0;
    const spa_chunk* chunk = buffer.n_datas > 0 ? buffer.datas[0].chunk : nullptr;
    return !isDamaged && chunk != nullptr && chunk->size > 0 &&
           (chunk->flags & SPA_CHUNK_FLAG_CORRUPTED) == 0;
}

/// When the picture was taken, as far as anybody tells.
std::int64_t timeOf(const spa_buffer& buffer, std::int64_t now) {
    const auto* header = metaOf<spa_meta_header>(buffer, SPA_META_Header);
    const bool isTold = header != nullptr && std::abs(header->pts - now) < kPlausible;
    return isTold ? std::min(header->pts, now) : now;
}

/// The bytes that a plane holds at this moment.
std::span<const std::uint8_t> bytesOf(const MappedPlane& plane, const spa_chunk& chunk) {
    const auto all = plane.bytes();
    const std::size_t offset = std::min<std::size_t>(chunk.offset, all.size());
    return all.subspan(offset, std::min<std::size_t>(chunk.size, all.size() - offset));
}

} // namespace

/// What the library calls: from C, with the stream as data.
struct CastStream::Callbacks {
    static CastStream& of(void* data) { return *static_cast<CastStream*>(data); }

    static void state(void* data, pw_stream_state, pw_stream_state now, const char*) {
        auto& stream = of(data);
        if (now == PW_STREAM_STATE_ERROR || now == PW_STREAM_STATE_UNCONNECTED) {
            stream.fail(CaptureError::Kind::castEnded);
        }
    }
    static void parameter(void* data, std::uint32_t id, const spa_pod* pod) {
        if (id == SPA_PARAM_Format) {
            of(data).takeFormat(pod);
        }
    }
    static void addBuffer(void* data, pw_buffer* buffer) { of(data).addBuffer(*buffer); }
    static void removeBuffer(void* data, pw_buffer* buffer) { of(data).removeBuffer(*buffer); }
    static void process(void* data) { of(data).process(); }
    static void turn(void* data, std::uint64_t) { of(data).deliver(hostNow()); }

    static constexpr pw_stream_events kStream{.version = PW_VERSION_STREAM_EVENTS,
                                              .state_changed = state,
                                              .param_changed = parameter,
                                              .add_buffer = addBuffer,
                                              .remove_buffer = removeBuffer,
                                              .process = process};
};

Result<std::unique_ptr<CastStream>, CaptureError> CastStream::open(int remote, std::uint32_t node,
                                                                   Ports ports, CastAlpha alpha) {
    std::unique_ptr<CastStream> stream(new CastStream(remote, node, std::move(ports), alpha));
    if (auto connected = stream->connect(); !connected) {
        return tavi::fail(connected.error());
    }
    return stream;
}

CastStream::CastStream(int remote, std::uint32_t node, Ports ports, CastAlpha alpha)
    : m_ports(std::move(ports)),
      m_node(node),
      m_alpha(alpha),
      m_graph("pw-screen", *this, remote),
      m_silence(*m_graph.loop()) {
    m_timer = pw_loop_add_timer(m_graph.loop(), Callbacks::turn, this);
}

CastStream::~CastStream() {
    m_graph.perform([this] { closeStream(); });
    m_graph.stop();
    pw_loop_destroy_source(m_graph.loop(), m_timer);
}

Result<void, CaptureError> CastStream::connect() {
    const CaptureError refused{CaptureError::Kind::castRefused, "PipeWire sends no pictures"};
    if (!m_graph.connect()) {
        return tavi::fail(CaptureError{CaptureError::Kind::castRefused, "no PipeWire answers"});
    }
    m_graph.perform([this] { openStream(); });
    const PipeWireGraph::Lock lock(m_graph);
    for (int round = 0; round < kFormatRounds && !m_format && !failure(); ++round) {
        m_graph.waitUntil([this] { return m_format || failure(); });
    }
    m_graph.waitUntil([this] { return m_firstArea || !m_format || failure(); });
    if (!m_format || failure()) {
        return tavi::fail(refused);
    }
    const CastArea area = m_firstArea.value_or(CastArea{0, 0, m_format->width, m_format->height});
    m_width = area.width;
    m_height = area.height;
    m_hasAlpha = m_alpha == CastAlpha::wanted && m_format->hasAlpha();
    return {};
}

void CastStream::openStream() {
    m_stream = pw_stream_new(m_graph.core(), "Tavlin",
                             pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY,
                                               "Capture", PW_KEY_MEDIA_ROLE, "Screen",
                                               PW_KEY_MEDIA_NAME, "Recording", PW_KEY_NODE_NAME,
                                               "tavlin-screen", PW_KEY_NODE_DONT_RECONNECT, "true",
                                               "node.dont-fallback", "true", nullptr));
    if (m_stream == nullptr) {
        fail(CaptureError::Kind::castRefused);
        return;
    }
    m_streamHook = {};
    pw_stream_add_listener(m_stream, &m_streamHook, &Callbacks::kStream, this);
    const auto wanted = castFormatParameters(60, m_alpha);
    std::vector<const spa_pod*> formats;
    for (const auto& format : wanted) {
        formats.push_back(format.get());
    }
    const auto flags =
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_DONT_RECONNECT);
    if (pw_stream_connect(m_stream, PW_DIRECTION_INPUT, m_node, flags, formats.data(),
                          static_cast<std::uint32_t>(formats.size())) < 0) {
        fail(CaptureError::Kind::castRefused);
    }
}

void CastStream::closeStream() {
    wakeAt(0);
    m_silence.stop();
    m_waiting.reset();
    m_pace.reset();
    if (m_stream == nullptr) {
        return;
    }
    m_graph.closeStream(*m_stream, m_streamHook);
    m_stream = nullptr;
    for (const auto& [raw, buffer] : m_buffers) {
        buffer->raw = nullptr;
    }
    m_buffers.clear();
}

void CastStream::configure(const ScreenStreamConfiguration& configuration) {
    m_configuration = configuration;
}

Result<void, CaptureError> CastStream::addStreamOutput(SerialQueue& queue, Handler handler) {
    m_outlet.emplace(queue, std::move(handler));
    return {};
}

Result<void, CaptureError> CastStream::startCapture() {
    if (auto error = failure()) {
        return tavi::fail(*error);
    }
    m_graph.perform([this] {
        m_pool = std::make_shared<PixelBufferPool>(m_configuration.width, m_configuration.height,
                                                   kMostKeptPictures);
        m_pace.emplace(m_configuration.minimumFrameInterval);
        if (m_waiting) {
            // It is on the screen since some time, and in the take from now on.
            m_waiting->time = hostNow();
            deliver(m_waiting->time);
        }
    });
    return {};
}

Result<void, CaptureError> CastStream::stopCapture() {
    m_graph.perform([this] { closeStream(); });
    return {};
}

std::optional<CaptureError> CastStream::failure() const {
    const std::lock_guard lock(m_failureMutex);
    return m_failure;
}

void CastStream::end() {
    m_graph.perform([this] { fail(CaptureError::Kind::castEnded); });
}

void CastStream::fail(CaptureError::Kind kind) {
    {
        const std::lock_guard lock(m_failureMutex);
        if (!m_failure) {
            m_failure = CaptureError{kind, ""};
        }
    }
    m_graph.signal();
}

void CastStream::nodeRemoved(const PipeWireNode& node) {
    if (node.id == m_node) {
        fail(CaptureError::Kind::castEnded);
    }
}

void CastStream::connectionLost() {
    closeStream();
    fail(CaptureError::Kind::connectionLost);
}

void CastStream::takeFormat(const spa_pod* pod) {
    m_format = pod != nullptr ? readCastFormat(*pod) : std::nullopt;
    m_graph.signal();
    if (!m_format) {
        return;
    }
    const auto wanted = castBufferParameters(*m_format);
    std::vector<const spa_pod*> parameters;
    for (const auto& parameter : wanted) {
        parameters.push_back(parameter.get());
    }
    pw_stream_update_params(m_stream, parameters.data(),
                            static_cast<std::uint32_t>(parameters.size()));
}

void CastStream::addBuffer(pw_buffer& buffer) {
    auto added = std::make_shared<CastBuffer>();
    added->raw = &buffer;
    for (std::uint32_t i = 0; i < buffer.buffer->n_datas; ++i) {
        added->planes.push_back(std::make_unique<MappedPlane>(buffer.buffer->datas[i]));
    }
    m_buffers[&buffer] = std::move(added);
    m_silence.watch(*m_stream);
}

/// A picture that waits goes with its buffer: a new one follows the change that took it away.
void CastStream::removeBuffer(pw_buffer& buffer) {
    const auto entry = m_buffers.extract(&buffer);
    if (!entry) {
        return;
    }
    entry.mapped()->raw = nullptr;
    if (m_waiting && m_waiting->buffer == entry.mapped()) {
        m_waiting.reset();
    }
}

void CastStream::process() {
    giveBack();
    while (pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream)) {
        look(*buffer);
    }
    if (m_waiting && m_pace) {
        deliver(hostNow());
    }
}

/// Buffers whose pictures were let go since.
void CastStream::giveBack() {
    for (const auto& buffer : m_returned->takeAll()) {
        release(buffer);
    }
}

void CastStream::release(CastBufferPtr buffer) {
    if (buffer->raw != nullptr && m_stream != nullptr) {
        pw_stream_queue_buffer(m_stream, buffer->raw);
    }
}

/// Takes the pointer out of a buffer, and its picture if it has one: only the newest counts.
void CastStream::look(pw_buffer& buffer) {
    const auto known = m_buffers.find(&buffer);
    if (known == m_buffers.end() || !m_format) {
        pw_stream_queue_buffer(m_stream, &buffer);
        return;
    }
    const CastPicture picture = pictureIn(*known->second);
    follow(*buffer.buffer, picture);
    if (!hasPicture(*buffer.buffer) || picture.bytes.empty()) {
        pw_stream_queue_buffer(m_stream, &buffer);
        return;
    }
    if (m_waiting) {
        release(std::move(m_waiting->buffer));
    }
    m_waiting = Waiting{known->second, picture, timeOf(*buffer.buffer, hostNow())};
    m_silence.pictureCame();
    if (!m_firstArea) {
        m_firstArea = shownArea(picture);
        m_graph.signal();
    }
}

CastPicture CastStream::pictureIn(const CastBuffer& buffer) const {
    const spa_buffer& raw = *buffer.raw->buffer;
    CastPicture picture;
    picture.format = m_format->format;
    picture.width = m_format->width;
    picture.height = m_format->height;
    picture.encoding = m_format->encoding;
    if (raw.n_datas > 0 && raw.datas[0].chunk != nullptr) {
        picture.stride = raw.datas[0].chunk->stride;
        picture.bytes = bytesOf(*buffer.planes[0], *raw.datas[0].chunk);
    }
    if (raw.n_datas > 1 && raw.datas[1].chunk != nullptr) {
        picture.chromaStride = raw.datas[1].chunk->stride;
        picture.chroma = bytesOf(*buffer.planes[1], *raw.datas[1].chunk);
    }
    const auto* crop = metaOf<spa_meta_region>(raw, SPA_META_VideoCrop);
    picture.crop =
        within(crop != nullptr ? crop->region : spa_region{}, picture.width, picture.height);
    if (const auto* turn = metaOf<spa_meta_videotransform>(raw, SPA_META_VideoTransform);
        turn != nullptr && turn->transform <= SPA_META_TRANSFORMATION_Flipped270) {
        picture.transform = static_cast<spa_meta_videotransform_value>(turn->transform);
    }
    return picture;
}

void CastStream::follow(const spa_buffer& buffer, const CastPicture& picture) {
    auto cursor = readCastCursor(buffer);
    if (!cursor) {
        return;
    }
    if (cursor->image) {
        m_ports.pointer.setImage(std::move(*cursor->image));
    }
    const CastPoint point = shownPoint(picture, {cursor->x, cursor->y});
    if (cursor->isThere) {
        const int shown = m_firstArea.value_or(shownArea(picture)).height;
        m_ports.pointer.show(point.x, point.y, m_height > 0 ? m_height : shown);
    } else {
        m_ports.pointer.hide();
    }
}

/// Sends the picture that waits when it is its turn, and else comes back then: what
/// was drawn last is never left out.
void CastStream::deliver(std::int64_t now) {
    if (!m_pace || !m_outlet) {
        return;
    }
    if (!m_waiting) {
        sendAgain(now);
        return;
    }
    if (m_outlet->queued() >= kMostQueued) {
        wakeAt(now + kRetry);
        return;
    }
    const auto time = m_pace->admit(m_waiting->time, now);
    if (!time) {
        wakeAt(m_pace->nextTurn());
        return;
    }
    auto image = pixelsOf(*m_waiting);
    m_waiting.reset();
    if (image) {
        send(std::move(image), *time);
        wakeAt(now + kAgain);
    }
}

void CastStream::send(PixelBufferPtr image, std::int64_t time) {
    ScreenSample sample;
    sample.presentationTime = MediaTime::fromNanoseconds(time);
    sample.image = std::move(image);
    m_outlet->send(std::move(sample));
}

/// Looks after the picture that was sent last until it is known to be used.
void CastStream::sendAgain(std::int64_t now) {
    auto refused = m_outlet->refused();
    if (refused) {
        if (const auto time = m_pace->admit(now, now)) {
            send(std::move(refused), *time);
        }
    } else if (m_outlet->queued() == 0) {
        return;
    }
    wakeAt(now + kAgain);
}

PixelBufferPtr CastStream::pixelsOf(const Waiting& waiting) {
    if (auto lent = lend(waiting)) {
        return lent;
    }
    auto copy = m_pool->make();
    for (const auto& plane : waiting.buffer->planes) {
        plane->beginReading();
    }
    const bool isDrawn = drawCastPicture(waiting.picture, m_ports.colours.get(), *copy);
    for (const auto& plane : waiting.buffer->planes) {
        plane->endReading();
    }
    release(waiting.buffer);
    return isDrawn ? copy : nullptr;
}

/// The compositor's own memory as a picture, where it lies as one. Null where it doesn't, and
/// when so many are lent already that the compositor would run out of them.
PixelBufferPtr CastStream::lend(const Waiting& waiting) {
    const std::uint8_t* first =
        asPixelBuffer(waiting.picture, m_configuration.width, m_configuration.height);
    const bool canSpare = m_buffers.size() >= kFewestToLend &&
                          m_returned->lent() < static_cast<int>(m_buffers.size()) / 2;
    if (first == nullptr || !canSpare || !waiting.buffer->planes[0]->isPlainMemory()) {
        return nullptr;
    }
    m_returned->lend();
    // Nobody writes through a picture that is shared.
    auto* picture = new PixelBuffer(PixelBuffer::over(
        const_cast<std::uint8_t*>(first), m_configuration.width, m_configuration.height));
    return {picture, [buffer = waiting.buffer, returned = m_returned](const PixelBuffer* looked) {
                delete looked;
                returned->add(buffer);
            }};
}

/// 0: not at all.
void CastStream::wakeAt(std::int64_t time) {
    timespec when{static_cast<time_t>(time / MediaTime::kNanoseconds),
                  static_cast<long>(time % MediaTime::kNanoseconds)};
    pw_loop_update_timer(m_graph.loop(), m_timer, time == 0 ? nullptr : &when, nullptr, true);
}

} // namespace tavi
