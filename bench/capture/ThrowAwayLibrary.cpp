#include "capture/ThrowAwayLibrary.h"

#include <vector>

namespace tavi::bench {

namespace {

class Input final : public VideoWriterInput {
public:
    Input(const VideoSettings& settings, std::shared_ptr<const ColorConverter> colours)
        : m_width(settings.width),
          m_height(settings.height),
          m_colours(std::move(colours)),
          m_samples(m_colours ? luma() * 3 / 2 : 0) {}

    bool isReadyForMoreMediaData() const override { return true; }
    bool append(PixelBufferPtr image, MediaTime) override {
        if (m_colours) {
            m_colours->fromBgra(*image, view());
        }
        return true;
    }
    bool appendRepeat(MediaTime) override { return true; }
    void markAsFinished() override {}
    std::shared_ptr<PixelBuffer> makePixelBuffer() override { return nullptr; }

private:
    std::size_t luma() const {
        return static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height);
    }

    YuvView view() {
        YuvView view;
        view.width = m_width;
        view.height = m_height;
        view.y = {m_samples.data(), m_width};
        view.u = {m_samples.data() + luma(), m_width / 2};
        view.v = {m_samples.data() + luma() * 5 / 4, m_width / 2};
        return view;
    }

    int m_width;
    int m_height;
    std::shared_ptr<const ColorConverter> m_colours;
    std::vector<std::uint8_t> m_samples;
};

class Writer final : public AssetWriter {
public:
    explicit Writer(std::shared_ptr<const ColorConverter> colours)
        : m_colours(std::move(colours)) {}

    Result<VideoWriterInput*, MediaError> addVideoInput(const VideoSettings& settings) override {
        m_input = std::make_unique<Input>(settings, m_colours);
        return m_input.get();
    }
    Result<AudioWriterInput*, MediaError> addAudioInput(const AudioSettings&) override {
        return fail(MediaError{});
    }
    Result<void, MediaError> startWriting() override { return {}; }
    void startSession(MediaTime) override {}
    void endSession(MediaTime) override {}
    Result<void, MediaError> finishWriting() override { return {}; }
    void cancelWriting() override {}
    AssetWriterStatus status() const override { return AssetWriterStatus::writing; }
    std::optional<MediaError> error() const override { return std::nullopt; }
    std::string encoderName() const override { return "none"; }

private:
    std::shared_ptr<const ColorConverter> m_colours;
    std::unique_ptr<Input> m_input;
};

} // namespace

Result<Asset, MediaError> ThrowAwayLibrary::openAsset(const std::filesystem::path&) {
    return fail(MediaError{});
}

Result<std::unique_ptr<VideoReader>, MediaError>
ThrowAwayLibrary::makeVideoReader(const Asset&, const VideoTrack&, MediaTimeRange) {
    return fail(MediaError{});
}

Result<std::unique_ptr<AudioReader>, MediaError>
ThrowAwayLibrary::makeAudioReader(const Asset&, const AudioTrack&) {
    return fail(MediaError{});
}

Result<std::unique_ptr<AssetWriter>, MediaError>
ThrowAwayLibrary::makeWriter(const std::filesystem::path&, FileType) {
    return std::make_unique<Writer>(m_colours);
}

} // namespace tavi::bench
