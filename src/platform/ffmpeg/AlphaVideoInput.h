#pragma once

#include "platform/ffmpeg/FfmpegVideoInput.h"

namespace tavi {

/// Pictures with alpha on their way into two tracks: their colours and their alpha.
///
/// Threads: as told in VideoWriterInput.
class AlphaVideoInput final : public VideoWriterInput {
public:
    /// Both outlive it.
    AlphaVideoInput(FfmpegVideoInput& colours, FfmpegVideoInput& alpha)
        : m_colours(colours),
          m_alpha(alpha) {}

    bool isReadyForMoreMediaData() const override {
        return m_colours.isReadyForMoreMediaData() && m_alpha.isReadyForMoreMediaData();
    }
    bool append(PixelBufferPtr image, MediaTime time) override {
        return isReadyForMoreMediaData() && m_colours.append(image, time) &&
               m_alpha.append(std::move(image), time);
    }
    /// The alpha lasts on.
    bool appendRepeat(MediaTime time) override { return m_colours.appendRepeat(time); }
    void markAsFinished() override {
        m_colours.markAsFinished();
        m_alpha.markAsFinished();
    }
    std::shared_ptr<PixelBuffer> makePixelBuffer() override { return m_colours.makePixelBuffer(); }

private:
    FfmpegVideoInput& m_colours;
    FfmpegVideoInput& m_alpha;
};

} // namespace tavi
