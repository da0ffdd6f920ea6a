#include "export/RawFilm.h"

#include "render/YuvConverter.h"

#include <vector>

namespace tavi::bench {

namespace {

MediaError writeFailure(const std::filesystem::path& path) {
    return {MediaError::Kind::cannotWrite, path.string(), "raw film"};
}

class RawInput final : public VideoWriterInput {
public:
    RawInput(std::FILE* file, const VideoSettings& settings)
        : m_file(file),
          m_width(settings.width),
          m_height(settings.height),
          m_samples(static_cast<std::size_t>(settings.width) *
                    static_cast<std::size_t>(settings.height) * 3 / 2) {}

    bool isReadyForMoreMediaData() const override { return true; }
    bool append(PixelBufferPtr image, MediaTime time) override {
        const std::ptrdiff_t luma = std::ptrdiff_t{m_width} * m_height;
        YuvView view;
        view.width = m_width;
        view.height = m_height;
        view.y = {m_samples.data(), m_width};
        view.u = {m_samples.data() + luma, m_width / 2};
        view.v = {m_samples.data() + luma + luma / 4, m_width / 2};
        m_converter.fromBgra(*image, view);
        return appendRepeat(time);
    }
    bool appendRepeat(MediaTime) override {
        return std::fwrite(m_samples.data(), 1, m_samples.size(), m_file) == m_samples.size();
    }
    void markAsFinished() override {}
    std::shared_ptr<PixelBuffer> makePixelBuffer() override {
        return std::make_shared<PixelBuffer>(m_width, m_height);
    }

private:
    std::FILE* m_file;
    int m_width;
    int m_height;
    std::vector<std::uint8_t> m_samples;
    YuvConverter m_converter;
};

class RawWriter final : public AssetWriter {
public:
    explicit RawWriter(std::filesystem::path path) : m_path(std::move(path)) {}
    ~RawWriter() override { close(); }

    Result<VideoWriterInput*, MediaError> addVideoInput(const VideoSettings& settings) override {
        m_file = std::fopen(m_path.c_str(), "wb");
        if (!m_file) {
            return fail(writeFailure(m_path));
        }
        m_input = std::make_unique<RawInput>(m_file, settings);
        return m_input.get();
    }
    Result<AudioWriterInput*, MediaError> addAudioInput(const AudioSettings&) override {
        return fail(writeFailure(m_path));
    }
    Result<void, MediaError> startWriting() override {
        m_status = AssetWriterStatus::writing;
        return {};
    }
    void startSession(MediaTime) override {}
    void endSession(MediaTime) override {}
    Result<void, MediaError> finishWriting() override {
        m_status = close() ? AssetWriterStatus::completed : AssetWriterStatus::failed;
        if (m_status == AssetWriterStatus::failed) {
            return fail(writeFailure(m_path));
        }
        return {};
    }
    void cancelWriting() override { m_status = AssetWriterStatus::cancelled; }
    AssetWriterStatus status() const override { return m_status; }
    std::optional<MediaError> error() const override {
        return m_status == AssetWriterStatus::failed ? std::optional(writeFailure(m_path))
                                                     : std::nullopt;
    }
    std::string encoderName() const override { return "raw"; }

private:
    /// False where not everything could be written.
    bool close() {
        std::FILE* file = std::exchange(m_file, nullptr);
        const bool isGood = file && std::ferror(file) == 0;
        return file && std::fclose(file) == 0 && isGood;
    }

    std::filesystem::path m_path;
    std::FILE* m_file = nullptr;
    std::unique_ptr<RawInput> m_input;
    AssetWriterStatus m_status = AssetWriterStatus::unknown;
};

} // namespace

Result<std::unique_ptr<AssetWriter>, MediaError>
RawFilmLibrary::makeWriter(const std::filesystem::path& path, FileType) {
    return std::make_unique<RawWriter>(path);
}

} // namespace tavi::bench
