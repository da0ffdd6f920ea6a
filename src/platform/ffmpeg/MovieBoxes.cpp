#include "platform/ffmpeg/MovieBoxes.h"

#include <algorithm>
#include <array>

namespace tavi {

namespace {

/// Containers that hold nothing but boxes.
bool isContainer(std::uint32_t type) {
    constexpr std::array kTypes{fourCC("moov"), fourCC("trak"), fourCC("mdia"),
                                fourCC("minf"), fourCC("stbl"), fourCC("edts"),
                                fourCC("mvex"), fourCC("moof"), fourCC("traf")};
    return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

/// Deeper than any box of a movie lies; a bound on what damaged bytes can cause.
constexpr int kDeepest = 8;

std::vector<MovieBox> parse(std::span<const std::uint8_t> bytes, int depth) {
    const ReadBytes read = [bytes](std::uint64_t offset, std::span<std::uint8_t> to) {
        if (offset > bytes.size() || to.size() > bytes.size() - offset) {
            return false;
        }
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
        return true;
    };
    std::vector<MovieBox> boxes;
    std::uint64_t offset = 0;
    while (const auto range = readBox(read, offset, bytes.size())) {
        const auto content = bytes.subspan(range->begin, range->end - range->begin);
        MovieBox box{range->type, {}, {}};
        if (isContainer(box.type) && depth < kDeepest) {
            box.children = parse(content, depth + 1);
        } else {
            box.content.assign(content.begin(), content.end());
        }
        boxes.push_back(std::move(box));
        offset = range->end;
    }
    return boxes;
}

std::uint64_t sizeOf(const MovieBox& box) {
    std::uint64_t size = 8 + box.content.size();
    for (const MovieBox& child : box.children) {
        size += sizeOf(child);
    }
    return size;
}

} // namespace

std::uint64_t bigEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8 | byte;
    }
    return value;
}

std::optional<BoxRange> readBox(const ReadBytes& read, std::uint64_t offset, std::uint64_t limit) {
    std::array<std::uint8_t, 16> head{};
    const std::span<std::uint8_t> bytes(head);
    if (limit < 8 || offset > limit - 8 || !read(offset, bytes.first(8))) {
        return std::nullopt;
    }
    std::uint64_t size = bigEndian(bytes.first(4));
    std::uint64_t headSize = 8;
    if (size == 1) {
        if (limit - offset < 16 || !read(offset, bytes)) {
            return std::nullopt;
        }
        size = bigEndian(bytes.subspan(8, 8));
        headSize = 16;
    } else if (size == 0) {
        size = limit - offset;
    }
    if (size < headSize) {
        return std::nullopt;
    }
    const auto type = static_cast<std::uint32_t>(bigEndian(bytes.subspan(4, 4)));
    return BoxRange{type, offset, offset + headSize, offset + std::min(size, limit - offset)};
}

MovieBox* MovieBox::child(std::uint32_t wanted) {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const MovieBox& box) { return box.type == wanted; });
    return found == children.end() ? nullptr : &*found;
}

const MovieBox* MovieBox::child(std::uint32_t wanted) const {
    return const_cast<MovieBox*>(this)->child(wanted);
}

void MovieBox::remove(std::uint32_t unwanted) {
    std::erase_if(children, [&](const MovieBox& box) { return box.type == unwanted; });
}

std::vector<MovieBox> parseBoxes(std::span<const std::uint8_t> bytes) {
    return parse(bytes, 0);
}

BoxWriter& BoxWriter::bytes(std::span<const std::uint8_t> more) {
    m_bytes.insert(m_bytes.end(), more.begin(), more.end());
    return *this;
}

BoxWriter& BoxWriter::number(std::uint64_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
        m_bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
    return *this;
}

void appendBox(std::vector<std::uint8_t>& to, const MovieBox& box) {
    const auto head = BoxWriter().u32(sizeOf(box)).u32(box.type).take();
    to.insert(to.end(), head.begin(), head.end());
    to.insert(to.end(), box.content.begin(), box.content.end());
    for (const MovieBox& child : box.children) {
        appendBox(to, child);
    }
}

} // namespace tavi
