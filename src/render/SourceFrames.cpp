#include "render/SourceFrames.h"

#include <cstring>

namespace tavi {

namespace {

bool isSamePicture(const PixelBuffer& a, const PixelBuffer& b) {
    if (a.width() != b.width() || a.height() != b.height()) {
        return false;
    }
    const std::size_t bytes =
        static_cast<std::size_t>(a.width()) * std::size_t{PixelBuffer::kBytesPerPixel};
    for (int y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.row(y), b.row(y), bytes) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace

double endOfVideo(const Asset& asset) {
    const double end = asset.videoTracks.front().end.seconds();
    return end > 0 ? end : asset.duration.seconds();
}

SourceFrames::SourceFrames(std::unique_ptr<VideoReader> reader) : m_reader(std::move(reader)) {
    m_next = m_reader->copyNextSample();
    if (m_next) {
        take();
    }
}

void SourceFrames::advance(double sourceTime) {
    while (m_next && m_next->presentationTime.seconds() <= sourceTime) {
        take();
    }
}

void SourceFrames::take() {
    const PixelBufferPtr& image = m_next->image;
    if (image && !(m_current && isSamePicture(*m_current, *image))) {
        m_current = std::move(m_next->image);
    }
    m_next = m_reader->copyNextSample();
}

} // namespace tavi
