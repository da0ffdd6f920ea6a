#include "platform/pipewire/MicrophoneCapture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <spa/param/audio/format-utils.h>
#include <spa/param/format-utils.h>
#include <spa/param/param.h>
#include <spa/pod/builder.h>

namespace tavi {

namespace {

/// What is wanted of a device that says nothing: as sound servers deliver.
constexpr std::uint32_t kUsualRate = 48000;

/// Sound in portions of at most 21 ms, as a desktop at rest has it.
constexpr const char* kLatency = "1024/48000";

/// Of a portion of sound; a graph at 192 kHz has such.
constexpr int kLongestPortion = 8192; // frames

/// Half a second of the usual portions: so long a busy machine may leave the thread waiting without
/// a loss. Of a range the library takes the least.
constexpr int kBuffers = 24;
constexpr int kMostBuffers = 32;

/// The description of raw sound, each choice decided as its device would; absent for sound of
/// another kind.
std::optional<spa_audio_info_raw> audioInfo(const spa_pod& pod) {
    const PodCopy fixed = copyPod(pod);
    spa_pod_fixate(fixed.get());
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    if (spa_format_parse(fixed.get(), &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_audio) {
        return std::nullopt;
    }
    spa_audio_info_raw info{};
    if (subtype == SPA_MEDIA_SUBTYPE_dsp) {
        info.format = SPA_AUDIO_FORMAT_F32;
    } else if (subtype != SPA_MEDIA_SUBTYPE_raw ||
               spa_format_audio_raw_parse(fixed.get(), &info) < 0) {
        return std::nullopt;
    }
    return info;
}

} // namespace

std::uint32_t bitsPerChannel(std::uint32_t format) {
    switch (format) {
    case SPA_AUDIO_FORMAT_S8:
    case SPA_AUDIO_FORMAT_U8:
    case SPA_AUDIO_FORMAT_ULAW:
    case SPA_AUDIO_FORMAT_ALAW:
    case SPA_AUDIO_FORMAT_U8P:
    case SPA_AUDIO_FORMAT_S8P:
        return 8;
    case SPA_AUDIO_FORMAT_S16_LE:
    case SPA_AUDIO_FORMAT_S16_BE:
    case SPA_AUDIO_FORMAT_U16_LE:
    case SPA_AUDIO_FORMAT_U16_BE:
    case SPA_AUDIO_FORMAT_S16P:
        return 16;
    case SPA_AUDIO_FORMAT_S18_LE:
    case SPA_AUDIO_FORMAT_S18_BE:
    case SPA_AUDIO_FORMAT_U18_LE:
    case SPA_AUDIO_FORMAT_U18_BE:
        return 18;
    case SPA_AUDIO_FORMAT_S20_LE:
    case SPA_AUDIO_FORMAT_S20_BE:
    case SPA_AUDIO_FORMAT_U20_LE:
    case SPA_AUDIO_FORMAT_U20_BE:
        return 20;
    case SPA_AUDIO_FORMAT_S24_32_LE:
    case SPA_AUDIO_FORMAT_S24_32_BE:
    case SPA_AUDIO_FORMAT_U24_32_LE:
    case SPA_AUDIO_FORMAT_U24_32_BE:
    case SPA_AUDIO_FORMAT_S24_LE:
    case SPA_AUDIO_FORMAT_S24_BE:
    case SPA_AUDIO_FORMAT_U24_LE:
    case SPA_AUDIO_FORMAT_U24_BE:
    case SPA_AUDIO_FORMAT_S24_32P:
    case SPA_AUDIO_FORMAT_S24P:
        return 24;
    case SPA_AUDIO_FORMAT_S32_LE:
    case SPA_AUDIO_FORMAT_S32_BE:
    case SPA_AUDIO_FORMAT_U32_LE:
    case SPA_AUDIO_FORMAT_U32_BE:
    case SPA_AUDIO_FORMAT_F32_LE:
    case SPA_AUDIO_FORMAT_F32_BE:
    case SPA_AUDIO_FORMAT_S32P:
    case SPA_AUDIO_FORMAT_F32P:
        return 32;
    case SPA_AUDIO_FORMAT_F64_LE:
    case SPA_AUDIO_FORMAT_F64_BE:
    case SPA_AUDIO_FORMAT_F64P:
        return 64;
    default:
        return 0;
    }
}

std::optional<AudioSampleFormat> MicrophoneCapture::format() const {
    const std::lock_guard lock(m_formatMutex);
    return m_format;
}

void MicrophoneCapture::setFormat(const spa_audio_info_raw& info) {
    m_deviceInfo = info;
    const std::uint32_t bits = bitsPerChannel(info.format);
    const std::lock_guard lock(m_formatMutex);
    m_format.reset();
    if (bits != 0) {
        m_format =
            AudioSampleFormat{bits, static_cast<int>(info.channels), static_cast<int>(info.rate)};
    }
}

bool MicrophoneCapture::describe(const Parameters& parameters) {
    std::optional<spa_audio_info_raw> info;
    if (parameters.current) {
        info = audioInfo(*parameters.current);
    }
    for (const auto& pod : parameters.enumerated) {
        if (!info) {
            info = audioInfo(*pod);
        }
    }
    if (!info) {
        return parameters.enumerated.empty() && !parameters.current;
    }
    info->rate = info->rate == 0 ? kUsualRate : info->rate;
    info->channels = std::clamp<std::uint32_t>(info->channels, 1, kMaximumChannels);
    setFormat(*info);
    return true;
}

void MicrophoneCapture::parametersChanged(const Parameters& parameters) {
    describe(parameters);
}

DeviceCapture::StreamPlan MicrophoneCapture::plan() {
    spa_audio_info_raw info = m_deviceInfo;
    info.format = SPA_AUDIO_FORMAT_F32;
    info.rate = info.rate == 0 ? kUsualRate : info.rate;
    info.channels = std::max<std::uint32_t>(info.channels, 1);
    m_rate = 0;
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    StreamPlan made;
    made.formats.push_back(
        copyPod(*spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)));
    made.properties = pw_properties_new(
        PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE,
        "Production", PW_KEY_MEDIA_NAME, "Recording", PW_KEY_NODE_NAME, "tavlin",
        "stream.dont-remix", "true", PW_KEY_NODE_LATENCY, kLatency, nullptr);
    return made;
}

bool MicrophoneCapture::formatAgreed(pw_stream& stream, const spa_pod& format) {
    spa_audio_info_raw info{};
    if (spa_format_audio_raw_parse(&format, &info) < 0 || info.format != SPA_AUDIO_FORMAT_F32 ||
        info.rate == 0 || info.channels == 0) {
        m_rate = 0;
        return false;
    }
    m_rate = static_cast<int>(info.rate);
    m_channels = static_cast<int>(info.channels);
    m_clock = SampleClock(m_rate);
    askForBuffers(stream);
    return true;
}

void MicrophoneCapture::askForBuffers(pw_stream& stream) const {
    std::array<std::uint8_t, 256> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    const int stride = m_channels * static_cast<int>(sizeof(float));
    std::array<const spa_pod*, 1> answer{static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
        SPA_POD_CHOICE_RANGE_Int(kBuffers, kBuffers, kMostBuffers), SPA_PARAM_BUFFERS_blocks,
        SPA_POD_Int(1), SPA_PARAM_BUFFERS_size,
        SPA_POD_CHOICE_RANGE_Int(kLongestPortion * stride, stride, std::numeric_limits<int>::max()),
        SPA_PARAM_BUFFERS_stride, SPA_POD_Int(stride)))};
    pw_stream_update_params(&stream, answer.data(), answer.size());
}

std::int64_t MicrophoneCapture::startOf(pw_stream& stream, std::size_t frames) const {
    pw_time time{};
    if (pw_stream_get_time_n(&stream, &time, sizeof time) < 0 || time.now <= 0 ||
        time.rate.denom == 0) {
        const double length = static_cast<double>(frames) / m_rate;
        return hostNanoseconds() - std::llround(length * 1e9);
    }
    // How old the newest buffer's first sample was when its cycle began, and how much newer
    // than this buffer that one is.
    const double way = static_cast<double>(time.delay) * time.rate.num / time.rate.denom;
    const double waiting =
        static_cast<double>(time.buffered + time.avail_buffers * frames) / m_rate;
    return time.now - std::llround((way + waiting) * 1e9);
}

std::optional<CaptureSample> MicrophoneCapture::read(pw_stream& stream, const spa_buffer& buffer) {
    const spa_data& data = buffer.datas[0];
    if (m_rate == 0 || data.data == nullptr || data.chunk == nullptr) {
        return std::nullopt;
    }
    const std::uint32_t offset = std::min(data.chunk->offset, data.maxsize);
    const std::uint32_t bytes = std::min(data.chunk->size, data.maxsize - offset);
    const std::size_t frames = bytes / (sizeof(float) * static_cast<std::size_t>(m_channels));
    if (frames == 0) {
        return std::nullopt;
    }
    auto sound = std::make_shared<AudioBuffer>();
    sound->sampleRate = m_rate;
    sound->channels = m_channels;
    const auto* first =
        reinterpret_cast<const float*>(static_cast<const std::uint8_t*>(data.data) + offset);
    sound->samples.assign(first, first + frames * static_cast<std::size_t>(m_channels));
    CaptureSample sample;
    sample.kind = CaptureSampleKind::sound;
    sample.presentationTime =
        MediaTime::fromNanoseconds(m_clock.place(startOf(stream, frames), frames));
    sample.sound = std::move(sound);
    sample.format = format();
    sample.isValid = (data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED) == 0;
    return sample;
}

} // namespace tavi
