#pragma once

#include "media/ImageGenerator.h"
#include "media/MediaLibrary.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace tavi {

/// A media stack that writes down what is asked of its writer, in order
/// ("addVideoInput", "startSession 1.000"), and makes no file.
class FakeMediaLibrary final : public MediaLibrary {
public:
    Result<Asset, MediaError> openAsset(const std::filesystem::path&) override {
        return fail(MediaError{MediaError::Kind::notFound, "", ""});
    }
    Result<std::unique_ptr<VideoReader>, MediaError>
    makeVideoReader(const Asset&, const VideoTrack&, MediaTimeRange) override {
        return fail(MediaError{MediaError::Kind::notFound, "", ""});
    }
    Result<std::unique_ptr<AudioReader>, MediaError> makeAudioReader(const Asset&,
                                                                     const AudioTrack&) override {
        return fail(MediaError{MediaError::Kind::notFound, "", ""});
    }
    Result<std::unique_ptr<AssetWriter>, MediaError> makeWriter(const std::filesystem::path& path,
                                                                FileType type) override {
        lastPath = path;
        lastType = type;
        note("makeWriter");
        if (makeError) {
            return fail(*makeError);
        }
        return std::make_unique<Writer>(*this);
    }

    std::vector<std::string> calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    std::filesystem::path lastPath;
    FileType lastType = FileType::mp4;
    VideoSettings lastSettings;
    std::optional<MediaError> makeError;
    std::optional<MediaError> inputError;
    std::optional<MediaError> startError;
    std::optional<MediaError> finishError;
    std::atomic<bool> isReady = true;
    std::atomic<bool> hasFailed = false;    ///< The writer's status.
    std::atomic<bool> takesPictures = true; ///< What append() returns.

private:
    void note(const std::string& call) {
        const std::lock_guard lock(m_mutex);
        m_calls.push_back(call);
    }
    static std::string at(const char* call, MediaTime time) {
        char text[64];
        std::snprintf(text, sizeof text, "%s %.3f", call, time.seconds());
        return text;
    }

    class Input final : public VideoWriterInput {
    public:
        explicit Input(FakeMediaLibrary& owner) : m_owner(owner) {}
        bool isReadyForMoreMediaData() const override { return m_owner.isReady; }
        bool append(PixelBufferPtr, MediaTime time) override {
            m_owner.note(at("append", time));
            return m_owner.takesPictures;
        }
        bool appendRepeat(MediaTime time) override {
            m_owner.note(at("appendRepeat", time));
            return m_owner.takesPictures;
        }
        void markAsFinished() override { m_owner.note("markAsFinished"); }
        std::shared_ptr<PixelBuffer> makePixelBuffer() override { return nullptr; }

    private:
        FakeMediaLibrary& m_owner;
    };

    class Writer final : public AssetWriter {
    public:
        explicit Writer(FakeMediaLibrary& owner) : m_owner(owner), m_input(owner) {}
        Result<VideoWriterInput*, MediaError>
        addVideoInput(const VideoSettings& settings) override {
            m_owner.lastSettings = settings;
            m_owner.note("addVideoInput");
            if (m_owner.inputError) {
                return fail(*m_owner.inputError);
            }
            return &m_input;
        }
        Result<AudioWriterInput*, MediaError> addAudioInput(const AudioSettings&) override {
            m_owner.note("addAudioInput");
            return fail(MediaError{MediaError::Kind::noEncoder, "video.mov", "sound"});
        }
        Result<void, MediaError> startWriting() override {
            m_owner.note("startWriting");
            if (m_owner.startError) {
                return fail(*m_owner.startError);
            }
            return {};
        }
        void startSession(MediaTime time) override { m_owner.note(at("startSession", time)); }
        void endSession(MediaTime time) override { m_owner.note(at("endSession", time)); }
        Result<void, MediaError> finishWriting() override {
            m_owner.note("finishWriting");
            if (m_owner.finishError) {
                return fail(*m_owner.finishError);
            }
            return {};
        }
        void cancelWriting() override { m_owner.note("cancelWriting"); }
        AssetWriterStatus status() const override {
            return m_owner.hasFailed ? AssetWriterStatus::failed : AssetWriterStatus::writing;
        }
        std::optional<MediaError> error() const override {
            return m_owner.hasFailed
                       ? std::optional(MediaError{MediaError::Kind::diskFull, "video.mov", ""})
                       : std::nullopt;
        }
        std::string encoderName() const override { return "fake"; }

    private:
        FakeMediaLibrary& m_owner;
        Input m_input;
    };

    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
};

/// Still pictures kept in memory.
class FakeImageFiles final : public ImageFiles {
public:
    Result<PixelBufferPtr, MediaError> readPng(const std::filesystem::path& path) override {
        const auto found = written.find(path.filename().string());
        if (found == written.end()) {
            return fail(MediaError{MediaError::Kind::notFound, path.string(), ""});
        }
        return found->second;
    }
    Result<void, MediaError> writePng(const std::filesystem::path& path,
                                      const PixelBuffer& image) override {
        const std::string name = path.filename().string();
        if (name == unwritable) {
            return fail(MediaError{MediaError::Kind::cannotWrite, path.string(), ""});
        }
        auto copy = std::make_shared<PixelBuffer>(image.width(), image.height());
        for (int y = 0; y < image.height(); ++y) {
            std::memcpy(copy->row(y), image.row(y), image.stride());
        }
        written[name] = copy;
        return {};
    }

    std::string unwritable; ///< A name that fails.
    std::map<std::string, PixelBufferPtr> written;
};

} // namespace tavi
