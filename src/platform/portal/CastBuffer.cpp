#include "platform/portal/CastBuffer.h"

#include <cerrno>
#include <linux/dma-buf.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavi {

namespace {

/// Reading past the end of a file kills a process; graphics memory tells no size that way.
bool isInFile(int descriptor, std::uint64_t end) {
    struct stat facts {};
    return fstat(descriptor, &facts) == 0 &&
           (facts.st_size == 0 || static_cast<std::uint64_t>(facts.st_size) >= end);
}

} // namespace

MappedPlane::MappedPlane(const spa_data& data) {
    if (data.type == SPA_DATA_MemPtr) {
        m_bytes = {static_cast<const std::uint8_t*>(data.data),
                   data.data != nullptr ? data.maxsize : 0};
        return;
    }
    if (data.type != SPA_DATA_MemFd && data.type != SPA_DATA_DmaBuf) {
        return;
    }
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t before = data.mapoffset % page;
    const auto descriptor = static_cast<int>(data.fd);
    const std::size_t length = before + data.maxsize;
    if (data.maxsize == 0 || !isInFile(descriptor, std::uint64_t{data.mapoffset} + data.maxsize)) {
        return;
    }
    void* mapping = mmap(nullptr, length, PROT_READ, MAP_SHARED, descriptor,
                         static_cast<off_t>(data.mapoffset - before));
    if (mapping == MAP_FAILED) {
        return;
    }
    m_mapping = mapping;
    m_mappedBytes = length;
    m_bytes = {static_cast<const std::uint8_t*>(mapping) + before, data.maxsize};
    m_isPlainMemory = data.type == SPA_DATA_MemFd;
    if (data.type == SPA_DATA_DmaBuf) {
        m_dmaBuf = dup(descriptor);
    }
}

MappedPlane::~MappedPlane() {
    if (m_mapping != nullptr) {
        munmap(m_mapping, m_mappedBytes);
    }
    if (m_dmaBuf >= 0) {
        close(m_dmaBuf);
    }
}

void MappedPlane::beginReading() const {
    sync(DMA_BUF_SYNC_START | DMA_BUF_SYNC_READ);
}

void MappedPlane::endReading() const {
    sync(DMA_BUF_SYNC_END | DMA_BUF_SYNC_READ);
}

/// A driver without such a call needs none.
void MappedPlane::sync(std::uint64_t flags) const {
    if (m_dmaBuf < 0) {
        return;
    }
    dma_buf_sync call{};
    call.flags = flags;
    while (ioctl(m_dmaBuf, DMA_BUF_IOCTL_SYNC, &call) != 0 && (errno == EINTR || errno == EAGAIN)) {
    }
}

} // namespace tavi
