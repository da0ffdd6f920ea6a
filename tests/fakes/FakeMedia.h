#pragma once

#include "fakes/CallLog.h"
#include "media/ImageGenerator.h"
#include "media/MediaLibrary.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tavi {

/// Takes sound and writes down what is asked of it ("appendAudio 1.000").
class FakeAudioInput final : public AudioWriterInput {
public:
    explicit FakeAudioInput(CallLog& log, std::string prefix = "")
        : m_log(log),
          m_prefix(std::move(prefix)) {}

    bool isReadyForMoreMediaData() const override { return isReady; }
    bool append(AudioBufferPtr, MediaTime time) override {
        if (whileAppending) {
            whileAppending();
        }
        char text[64];
        std::snprintf(text, sizeof text, "appendAudio %.3f", time.seconds());
        m_log.note(m_prefix + text);
        return true;
    }
    void markAsFinished() override { m_log.note(m_prefix + "markAudioAsFinished"); }

    std::atomic<bool> isReady = true;
    /// Runs inside append(), before it returns; set while nobody appends.
    std::function<void()> whileAppending;

private:
    CallLog& m_log;
    std::string m_prefix;
};

/// A media stack that writes down what is asked of its writers, in order
/// ("addVideoInput", "startSession 1.000"; of a file other than "video.mov" with its
/// name, "camera.mov startSession 1.000"), and makes no file.
class FakeMediaLibrary final : public MediaLibrary {
public:
    explicit FakeMediaLibrary(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    Result<Asset, MediaError> openAsset(const std::filesystem::path&) override {
        if (asset) {
            return *asset;
        }
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
        const std::string name = path.filename().string();
        const std::string prefix = name == "video.mov" ? "" : name + " ";
        lastPath = path;
        lastType = type;
        m_log.note(prefix + "makeWriter");
        if (whileMaking) {
            whileMaking();
        }
        if (makeError && (failingFile.empty() || failingFile == name)) {
            return fail(*makeError);
        }
        return std::make_unique<Writer>(*this, prefix);
    }

    std::vector<std::string> calls() const { return m_log.calls(); }

    /// Runs inside makeWriter(), before it returns, on the caller's thread.
    std::function<void()> whileMaking;
    std::optional<Asset> asset; ///< What every file is.
    std::filesystem::path lastPath;
    FileType lastType = FileType::mp4;
    VideoSettings lastSettings;
    AudioSettings lastAudioSettings;
    std::string failingFile; ///< The only file that `makeError` concerns; empty: every one.
    std::optional<MediaError> makeError;
    std::optional<MediaError> inputError;
    std::optional<MediaError> audioInputError;
    std::optional<MediaError> startError;
    std::optional<MediaError> finishError;
    std::atomic<bool> isReady = true;
    std::atomic<bool> hasFailed = false;    ///< The writer's status.
    std::atomic<bool> takesPictures = true; ///< What append() returns.

private:
    static std::string at(const char* call, MediaTime time) {
        char text[64];
        std::snprintf(text, sizeof text, "%s %.3f", call, time.seconds());
        return text;
    }

    class Input final : public VideoWriterInput {
    public:
        Input(FakeMediaLibrary& owner, std::string prefix)
            : m_owner(owner),
              m_prefix(std::move(prefix)) {}
        bool isReadyForMoreMediaData() const override { return m_owner.isReady; }
        bool append(PixelBufferPtr, MediaTime time) override {
            note(at("append", time));
            return m_owner.takesPictures;
        }
        bool appendRepeat(MediaTime time) override {
            note(at("appendRepeat", time));
            return m_owner.takesPictures;
        }
        void markAsFinished() override { note("markAsFinished"); }
        std::shared_ptr<PixelBuffer> makePixelBuffer() override { return nullptr; }

    private:
        void note(const std::string& call) { m_owner.m_log.note(m_prefix + call); }

        FakeMediaLibrary& m_owner;
        std::string m_prefix;
    };

    class Writer final : public AssetWriter {
    public:
        Writer(FakeMediaLibrary& owner, const std::string& prefix)
            : m_owner(owner),
              m_prefix(prefix),
              m_input(owner, prefix),
              m_audioInput(owner.m_log, prefix) {}
        Result<VideoWriterInput*, MediaError>
        addVideoInput(const VideoSettings& settings) override {
            m_owner.lastSettings = settings;
            note("addVideoInput");
            if (m_owner.inputError) {
                return fail(*m_owner.inputError);
            }
            return &m_input;
        }
        Result<AudioWriterInput*, MediaError>
        addAudioInput(const AudioSettings& settings) override {
            m_owner.lastAudioSettings = settings;
            note("addAudioInput");
            if (m_owner.audioInputError) {
                return fail(*m_owner.audioInputError);
            }
            return &m_audioInput;
        }
        Result<void, MediaError> startWriting() override {
            note("startWriting");
            if (m_owner.startError) {
                return fail(*m_owner.startError);
            }
            return {};
        }
        void startSession(MediaTime time) override { note(at("startSession", time)); }
        void endSession(MediaTime time) override { note(at("endSession", time)); }
        Result<void, MediaError> finishWriting() override {
            note("finishWriting");
            if (m_owner.finishError) {
                return fail(*m_owner.finishError);
            }
            return {};
        }
        void cancelWriting() override { note("cancelWriting"); }
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
        void note(const std::string& call) { m_owner.m_log.note(m_prefix + call); }

        FakeMediaLibrary& m_owner;
        std::string m_prefix;
        Input m_input;
        FakeAudioInput m_audioInput;
    };

    CallLog m_ownLog;
    CallLog& m_log;
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
        if (whileWriting) {
            whileWriting();
        }
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
    /// Runs inside writePng(), before anything is written.
    std::function<void()> whileWriting;
    std::map<std::string, PixelBufferPtr> written;
};

} // namespace tavi
