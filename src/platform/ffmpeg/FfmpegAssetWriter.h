#pragma once

#include "media/AssetWriter.h"
#include "platform/ffmpeg/AlphaVideoInput.h"
#include "platform/ffmpeg/EncoderChoice.h"
#include "platform/ffmpeg/FfmpegAudioInput.h"
#include "platform/ffmpeg/FfmpegVideoInput.h"
#include "platform/ffmpeg/MovieFile.h"
#include "platform/ffmpeg/WriterState.h"

#include <filesystem>
#include <vector>

namespace tavi {

/// Writes one file through the media libraries; the steps of a life are told
/// in AssetWriter, what lies on the disk meanwhile in MovieFile.
class FfmpegAssetWriter final : public AssetWriter {
public:
    /// `colours`: see PictureEncoding.
    FfmpegAssetWriter(std::filesystem::path path, FileType type, EncoderChoice& encoders,
                      std::shared_ptr<const ColorConverter> colours);
    ~FfmpegAssetWriter() override;

    Result<VideoWriterInput*, MediaError> addVideoInput(const VideoSettings& settings) override;
    Result<AudioWriterInput*, MediaError> addAudioInput(const AudioSettings& settings) override;
    Result<void, MediaError> startWriting() override;
    void startSession(MediaTime time) override;
    void endSession(MediaTime time) override;
    Result<void, MediaError> finishWriting() override;
    void cancelWriting() override;
    AssetWriterStatus status() const override { return m_state.status(); }
    std::optional<MediaError> error() const override { return m_state.error(); }
    std::string encoderName() const override;

private:
    Result<FfmpegVideoInput*, MediaError> addTrack(const VideoSettings& settings,
                                                   PictureContent content);
    Result<void, MediaError> completeFile();
    std::optional<double> picturesEnd() const;
    void drainInputs();

    const std::filesystem::path m_path;
    const int m_timescale;
    EncoderChoice& m_encoders;
    const std::shared_ptr<const ColorConverter> m_colours;
    WriterState m_state;
    MovieFile m_file;
    std::vector<std::unique_ptr<FfmpegVideoInput>>
        m_inputs;                                          ///< Their threads use all of the above.
    std::vector<std::unique_ptr<AlphaVideoInput>> m_pairs; ///< Of inputs in m_inputs.
    std::vector<std::unique_ptr<FfmpegAudioInput>> m_sounds; ///< The same; they ask m_inputs.
    std::optional<MediaTime> m_sessionStart;
    std::optional<MediaTime> m_sessionEnd;
};

} // namespace tavi
