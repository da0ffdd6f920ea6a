#pragma once

#include "media/MediaLibrary.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tavi {

/// A media stack that plays a script: one video of plain pictures, and a writer
/// that keeps the times and the middle pixel of what it is given. No file is made.
class FakeFilm final : public MediaLibrary {
public:
    struct ScriptedSample {
        double time = 0;
        bool hasImage = true;
        std::uint8_t shade = 0; ///< Of every channel of colour.
    };

    struct WrittenFrame {
        MediaTime time;
        std::uint8_t shade = 0; ///< Blue of the middle pixel.
        bool isRepeat = false;
    };

    // The source.
    double duration = 1;
    double videoEnd = 0; ///< Of the track, where it isn't the duration.
    Size naturalSize{32, 18};
    bool hasVideoTrack = true;
    std::vector<ScriptedSample> samples;
    std::optional<MediaError> openError;
    std::optional<MediaError> readerError;
    bool readerFails = false; ///< Its status at the end.

    // Its sound: pieces of 1024 moments at 48 kHz, told by their times.
    bool hasAudioTrack = false;
    std::vector<double> audioTimes;
    std::optional<MediaError> audioReaderError;

    // The camera's film, "camera.mov"; its pictures are `naturalSize` large, too.
    bool hasCamera = false;
    bool hasCameraTrack = true;
    double cameraDuration = 1;
    std::vector<ScriptedSample> cameraSamples;
    std::optional<MediaError> cameraReaderError;

    // The writer.
    std::optional<MediaError> writerError;
    std::optional<MediaError> inputError;
    std::optional<MediaError> audioInputError;
    std::optional<MediaError> startError;
    int notReadyPolls = 0; ///< Times that the input says "not ready" before each frame.
    std::function<bool(const FakeFilm&)> isAudioReady; ///< Always, where absent.
    int failsAfterFrames = -1; ///< The writer fails once it has that many; -1 never.
    std::set<std::size_t> framesWithoutBuffer; ///< Requests, from 0, that get no buffer.

    std::set<std::size_t> framesNotTaken; ///< Appends, from 0, that are refused.

    // What happened.
    std::vector<WrittenFrame> written;
    std::vector<MediaTime> writtenAudio;
    std::size_t audioSamplesRead = 0;
    std::vector<std::string> calls;
    std::vector<MediaTimeRange> readRanges;
    std::vector<MediaTimeRange> cameraReadRanges;
    int cameraOpenings = 0;
    std::filesystem::path openedPath;
    std::filesystem::path writtenPath;
    VideoSettings settings;
    std::optional<AudioSettings> audioSettings;
    AssetWriterStatus writerStatus = AssetWriterStatus::unknown;

    Result<Asset, MediaError> openAsset(const std::filesystem::path& path) override {
        if (path.filename() == "camera.mov") {
            return openCamera(path);
        }
        openedPath = path;
        if (openError) {
            return fail(*openError);
        }
        Asset asset{path, MediaTime::fromSeconds(duration, 90000), {}, {}};
        if (hasVideoTrack) {
            asset.videoTracks.push_back({0, naturalSize, MediaTime::fromSeconds(videoEnd, 90000)});
        }
        if (hasAudioTrack) {
            asset.audioTracks.push_back({1, 48000, 2});
        }
        return asset;
    }

    Result<std::unique_ptr<AudioReader>, MediaError>
    makeAudioReader(const Asset&, const AudioTrack& track) override {
        calls.push_back("makeAudioReader " + std::to_string(track.index));
        if (audioReaderError) {
            return fail(*audioReaderError);
        }
        return std::make_unique<SoundReader>(*this);
    }

    Result<std::unique_ptr<VideoReader>, MediaError>
    makeVideoReader(const Asset& asset, const VideoTrack&, MediaTimeRange range) override {
        if (asset.path.filename() == "camera.mov") {
            cameraReadRanges.push_back(range);
            if (cameraReaderError) {
                return fail(*cameraReaderError);
            }
            return std::make_unique<Reader>(*this, cameraSamples, range);
        }
        readRanges.push_back(range);
        if (readerError) {
            return fail(*readerError);
        }
        return std::make_unique<Reader>(*this, samples, range);
    }

    Result<std::unique_ptr<AssetWriter>, MediaError> makeWriter(const std::filesystem::path& path,
                                                                FileType type) override {
        writtenPath = path;
        calls.push_back(type == FileType::mp4 ? "makeWriter mp4" : "makeWriter mov");
        if (writerError) {
            return fail(*writerError);
        }
        return std::make_unique<Writer>(*this);
    }

private:
    Result<Asset, MediaError> openCamera(const std::filesystem::path& path) {
        ++cameraOpenings;
        if (!hasCamera) {
            return fail(MediaError{MediaError::Kind::notFound, path.string(), "none"});
        }
        Asset asset{path, MediaTime::fromSeconds(cameraDuration, 90000), {}, {}};
        if (hasCameraTrack) {
            asset.videoTracks.push_back({0, naturalSize, {}});
        }
        return asset;
    }

    class Reader final : public VideoReader {
    public:
        /// Like a real one: begins with the picture in force at the start.
        Reader(FakeFilm& film, const std::vector<ScriptedSample>& samples, MediaTimeRange range)
            : m_film(film) {
            const double start = range.start.seconds();
            for (const ScriptedSample& sample : samples) {
                if (sample.time <= start) {
                    m_samples.clear();
                }
                if (sample.time < range.end().seconds()) {
                    m_samples.push_back(sample);
                }
            }
        }
        std::optional<VideoSample> copyNextSample() override {
            if (m_status != AssetReaderStatus::reading || m_next == m_samples.size()) {
                if (m_status == AssetReaderStatus::reading) {
                    m_status = m_film.readerFails ? AssetReaderStatus::failed
                                                  : AssetReaderStatus::completed;
                }
                return std::nullopt;
            }
            const ScriptedSample& sample = m_samples[m_next++];
            return VideoSample{MediaTime::fromSeconds(sample.time, 90000),
                               sample.hasImage ? m_film.picture(sample.shade) : nullptr};
        }
        AssetReaderStatus status() const override { return m_status; }
        void cancelReading() override {
            m_film.calls.push_back("cancelReading");
            m_status = AssetReaderStatus::cancelled;
        }

    private:
        FakeFilm& m_film;
        std::vector<ScriptedSample> m_samples;
        std::size_t m_next = 0;
        AssetReaderStatus m_status = AssetReaderStatus::reading;
    };

    class SoundReader final : public AudioReader {
    public:
        explicit SoundReader(FakeFilm& film) : m_film(film) {}
        std::optional<AudioSample> copyNextSample() override {
            if (m_status != AssetReaderStatus::reading) {
                return std::nullopt;
            }
            if (m_film.audioSamplesRead == m_film.audioTimes.size()) {
                m_status = AssetReaderStatus::completed;
                return std::nullopt;
            }
            const double time = m_film.audioTimes[m_film.audioSamplesRead++];
            auto buffer = std::make_shared<AudioBuffer>();
            *buffer = {48000, 2, std::vector<float>(2 * kFramesPerBuffer)};
            return AudioSample{MediaTime::fromSeconds(time, 48000), std::move(buffer)};
        }
        AssetReaderStatus status() const override { return m_status; }
        void cancelReading() override {
            m_film.calls.push_back("cancelReading sound");
            m_status = AssetReaderStatus::cancelled;
        }

    private:
        FakeFilm& m_film;
        AssetReaderStatus m_status = AssetReaderStatus::reading;
    };

    class SoundInput final : public AudioWriterInput {
    public:
        explicit SoundInput(FakeFilm& film) : m_film(film) {}
        bool isReadyForMoreMediaData() const override {
            return m_film.writerStatus == AssetWriterStatus::writing &&
                   (!m_film.isAudioReady || m_film.isAudioReady(m_film));
        }
        bool append(AudioBufferPtr, MediaTime time) override {
            m_film.writtenAudio.push_back(time);
            return true;
        }
        void markAsFinished() override { m_film.calls.push_back("markAsFinished sound"); }

    private:
        FakeFilm& m_film;
    };

    class Input final : public VideoWriterInput {
    public:
        explicit Input(FakeFilm& film) : m_film(film), m_polls(film.notReadyPolls) {}
        bool isReadyForMoreMediaData() const override {
            return m_film.writerStatus == AssetWriterStatus::writing && m_polls-- <= 0;
        }
        bool append(PixelBufferPtr image, MediaTime time) override {
            m_polls = m_film.notReadyPolls;
            const std::uint8_t* middle =
                image->row(image->height() / 2) + std::ptrdiff_t{4} * (image->width() / 2);
            return keep({time, *middle});
        }
        bool appendRepeat(MediaTime time) override {
            if (m_film.written.empty()) {
                return false;
            }
            m_polls = m_film.notReadyPolls;
            return keep({time, m_film.written.back().shade, true});
        }
        void markAsFinished() override { m_film.calls.push_back("markAsFinished"); }
        std::shared_ptr<PixelBuffer> makePixelBuffer() override {
            if (m_film.framesWithoutBuffer.count(m_requests++) > 0) {
                return nullptr;
            }
            return std::make_shared<PixelBuffer>(m_film.settings.width, m_film.settings.height);
        }

    private:
        bool keep(WrittenFrame frame) {
            if (m_film.framesNotTaken.count(m_appends++) > 0) {
                return false;
            }
            m_film.written.push_back(frame);
            if (static_cast<int>(m_film.written.size()) == m_film.failsAfterFrames) {
                m_film.writerStatus = AssetWriterStatus::failed;
            }
            return true;
        }

        FakeFilm& m_film;
        mutable int m_polls;
        std::size_t m_requests = 0;
        std::size_t m_appends = 0;
    };

    class Writer final : public AssetWriter {
    public:
        explicit Writer(FakeFilm& film) : m_film(film), m_input(film), m_sound(film) {}
        ~Writer() override {
            if (m_film.writerStatus == AssetWriterStatus::writing) {
                m_film.calls.push_back("dropped while writing");
            }
        }
        Result<VideoWriterInput*, MediaError>
        addVideoInput(const VideoSettings& settings) override {
            m_film.settings = settings;
            m_film.calls.push_back("addVideoInput");
            if (m_film.inputError) {
                return fail(*m_film.inputError);
            }
            return &m_input;
        }
        Result<AudioWriterInput*, MediaError>
        addAudioInput(const AudioSettings& settings) override {
            m_film.audioSettings = settings;
            m_film.calls.push_back("addAudioInput");
            if (m_film.audioInputError) {
                return fail(*m_film.audioInputError);
            }
            return &m_sound;
        }
        Result<void, MediaError> startWriting() override {
            m_film.calls.push_back("startWriting");
            if (m_film.startError) {
                return fail(*m_film.startError);
            }
            m_film.writerStatus = AssetWriterStatus::writing;
            return {};
        }
        void startSession(MediaTime time) override {
            m_film.calls.push_back("startSession " + std::to_string(time.value));
        }
        void endSession(MediaTime) override { m_film.calls.push_back("endSession"); }
        Result<void, MediaError> finishWriting() override {
            m_film.calls.push_back("finishWriting");
            if (m_film.writerStatus == AssetWriterStatus::failed) {
                return fail(*error());
            }
            m_film.writerStatus = AssetWriterStatus::completed;
            return {};
        }
        void cancelWriting() override {
            m_film.calls.push_back("cancelWriting");
            m_film.writerStatus = AssetWriterStatus::cancelled;
        }
        AssetWriterStatus status() const override { return m_film.writerStatus; }
        std::optional<MediaError> error() const override {
            return m_film.writerStatus == AssetWriterStatus::failed
                       ? std::optional(MediaError{MediaError::Kind::diskFull, "film.mp4", ""})
                       : std::nullopt;
        }
        std::string encoderName() const override { return "fake"; }

    private:
        FakeFilm& m_film;
        Input m_input;
        SoundInput m_sound;
    };

    PixelBufferPtr picture(std::uint8_t shade) const {
        auto image = std::make_shared<PixelBuffer>(static_cast<int>(naturalSize.width),
                                                   static_cast<int>(naturalSize.height));
        for (int y = 0; y < image->height(); ++y) {
            for (int x = 0; x < image->width() * 4; ++x) {
                image->row(y)[x] = x % 4 == 3 ? 255 : shade;
            }
        }
        return image;
    }
};

} // namespace tavi
