#include "render/SourceFrames.h"

namespace tavi {

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
    if (m_next->image) {
        m_current = std::move(m_next->image);
    }
    m_next = m_reader->copyNextSample();
}

} // namespace tavi
