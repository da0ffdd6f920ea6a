#include "platform/ffmpeg/MovieIndex.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <limits>

namespace tavi {

namespace {

using Samples = std::vector<FragmentedTrack::Sample>;

constexpr std::int64_t kLongest32 = std::numeric_limits<std::int32_t>::max();

/// The boxes that a track can't do without.
struct TrackBoxes {
    MovieBox* header = nullptr;      ///< "tkhd"
    MovieBox* mediaHeader = nullptr; ///< "mdhd"
    MovieBox* handler = nullptr;     ///< "hdlr"
    MovieBox* table = nullptr;       ///< "stbl"

    bool isWhole() const { return header && mediaHeader && handler && table; }
};

TrackBoxes boxesOf(MovieBox& trak) {
    TrackBoxes boxes;
    boxes.header = trak.child(fourCC("tkhd"));
    MovieBox* media = trak.child(fourCC("mdia"));
    MovieBox* information = media ? media->child(fourCC("minf")) : nullptr;
    boxes.mediaHeader = media ? media->child(fourCC("mdhd")) : nullptr;
    boxes.handler = media ? media->child(fourCC("hdlr")) : nullptr;
    boxes.table = information ? information->child(fourCC("stbl")) : nullptr;
    return boxes;
}

/// The number of `size` bytes at a place; 0 where the content is shorter.
std::uint64_t numberAt(const MovieBox& box, std::size_t place, std::size_t size) {
    return box.content.size() < place + size
               ? 0
               : bigEndian(std::span(box.content).subspan(place, size));
}

bool isLong(const MovieBox& box) {
    return numberAt(box, 0, 1) == 1;
}

/// Of a "mvhd" or "mdhd".
std::int64_t timescaleOf(const MovieBox& header) {
    return static_cast<std::int64_t>(numberAt(header, isLong(header) ? 20 : 12, 4));
}

bool isSound(const MovieBox& handler) {
    return numberAt(handler, 8, 4) == fourCC("soun");
}

/// Puts a duration into a "mvhd", "mdhd" (between = 4) or "tkhd" (between = 8):
/// version and flags, two times, `between` bytes, the duration. A duration that
/// needs it makes the box a long one.
void setDuration(MovieBox& header, std::size_t between, std::int64_t duration) {
    const std::size_t time = isLong(header) ? 8 : 4;
    const std::size_t middle = 4 + 2 * time;
    if (header.content.size() < middle + between + time) {
        return;
    }
    const std::span<const std::uint8_t> old(header.content);
    const bool mustBeLong = isLong(header) || duration > kLongest32;
    const std::uint64_t version = mustBeLong ? 1U << 24 : 0U;
    BoxWriter writer;
    writer.u32(version | numberAt(header, 1, 3));
    for (const std::size_t place : {std::size_t{4}, 4 + time}) {
        writer.number(numberAt(header, place, time), mustBeLong ? 8 : 4);
    }
    writer.bytes(old.subspan(middle, between));
    writer.number(static_cast<std::uint64_t>(duration), mustBeLong ? 8 : 4);
    writer.bytes(old.subspan(middle + between + time));
    header.content = writer.take();
}

/// Makes each sample last until the next one: a fragment doesn't know when the
/// next one begins.
void setDurations(Samples& samples, std::optional<std::int64_t> last) {
    constexpr std::int64_t kLongest = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t i = 0; i + 1 < samples.size(); ++i) {
        const std::int64_t length = samples[i + 1].time - samples[i].time;
        samples[i].duration =
            static_cast<std::uint32_t>(std::clamp<std::int64_t>(length, 0, kLongest));
    }
    if (last) {
        samples.back().duration =
            static_cast<std::uint32_t>(std::clamp<std::int64_t>(*last, 1, kLongest));
    }
}

/// A table of runs of equal values ("stts", "ctts").
template<typename Value>
MovieBox makeRuns(std::uint32_t type, const Samples& samples, Value value) {
    BoxWriter runs;
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < samples.size();) {
        std::size_t end = i + 1;
        while (end < samples.size() && value(samples[end]) == value(samples[i])) {
            ++end;
        }
        runs.u32(end - i).u32(value(samples[i]));
        ++count;
        i = end;
    }
    return {type, BoxWriter().u32(0).u32(count).bytes(runs.take()).take(), {}};
}

MovieBox makeKeys(const Samples& samples) {
    BoxWriter keys;
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (samples[i].isKey) {
            keys.u32(i + 1);
            ++count;
        }
    }
    return {fourCC("stss"), BoxWriter().u32(0).u32(count).bytes(keys.take()).take(), {}};
}

MovieBox makeSizes(const Samples& samples) {
    BoxWriter sizes;
    sizes.u32(0).u32(0).u32(samples.size());
    for (const FragmentedTrack::Sample& sample : samples) {
        sizes.u32(sample.size);
    }
    return {fourCC("stsz"), sizes.take(), {}};
}

/// How many samples the chunks have ("stsc").
MovieBox makeChunkLengths(const std::vector<FragmentedTrack::Chunk>& chunks) {
    BoxWriter runs;
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        if (i == 0 || chunks[i].samples != chunks[i - 1].samples) {
            runs.u32(i + 1).u32(chunks[i].samples).u32(1);
            ++count;
        }
    }
    return {fourCC("stsc"), BoxWriter().u32(0).u32(count).bytes(runs.take()).take(), {}};
}

MovieBox makeChunkOffsets(const std::vector<FragmentedTrack::Chunk>& chunks) {
    const bool isFar = std::any_of(chunks.begin(), chunks.end(), [](const auto& chunk) {
        return chunk.offset > std::numeric_limits<std::uint32_t>::max();
    });
    BoxWriter offsets;
    offsets.u32(0).u32(chunks.size());
    for (const FragmentedTrack::Chunk& chunk : chunks) {
        offsets.number(chunk.offset, isFar ? 8 : 4);
    }
    return {isFar ? fourCC("co64") : fourCC("stco"), offsets.take(), {}};
}

void fillTable(MovieBox& table, const FragmentedTrack& track) {
    const Samples& samples = track.samples;
    for (const std::uint32_t old : {fourCC("stts"), fourCC("ctts"), fourCC("stss"), fourCC("stsc"),
                                    fourCC("stsz"), fourCC("stco"), fourCC("co64")}) {
        table.remove(old);
    }
    const auto is = [&](auto what) { return std::any_of(samples.begin(), samples.end(), what); };
    table.children.push_back(
        makeRuns(fourCC("stts"), samples, [](const auto& sample) { return sample.duration; }));
    if (is([](const auto& sample) { return sample.offset != 0; })) {
        table.children.push_back(makeRuns(fourCC("ctts"), samples, [](const auto& sample) {
            return static_cast<std::uint32_t>(sample.offset);
        }));
    }
    if (is([](const auto& sample) { return !sample.isKey; })) {
        table.children.push_back(makeKeys(samples));
    }
    table.children.push_back(makeChunkLengths(track.chunks));
    table.children.push_back(makeSizes(samples));
    table.children.push_back(makeChunkOffsets(track.chunks));
}

/// Where the track's own time stands at the movie's zero, as its edit list says.
std::int64_t mediaTimeAtZero(const MovieBox& trak) {
    const MovieBox* edits = trak.child(fourCC("edts"));
    const MovieBox* list = edits ? edits->child(fourCC("elst")) : nullptr;
    if (!list || isLong(*list) || numberAt(*list, 4, 4) != 1) {
        return 0;
    }
    return static_cast<std::int32_t>(numberAt(*list, 12, 4));
}

/// When the last picture shown (the last sound heard) ends, in ticks after the
/// first sample's time of decoding.
std::int64_t presentationEnd(const Samples& samples) {
    std::int64_t end = 0;
    for (const FragmentedTrack::Sample& sample : samples) {
        end = std::max(end, sample.time + sample.offset + sample.duration - samples[0].time);
    }
    return end;
}

/// Fills in one track; returns when it ends, in ticks of the movie.
std::int64_t fillTrack(MovieBox& trak, const TrackBoxes& boxes, const FragmentedTrack& track,
                       std::int64_t movieTimescale, std::optional<std::int64_t> latestEnd) {
    const Samples& samples = track.samples;
    const std::int64_t timescale = std::max<std::int64_t>(timescaleOf(*boxes.mediaHeader), 1);
    const std::int64_t first = samples[0].time + samples[0].offset - mediaTimeAtZero(trak);
    const std::int64_t mediaTime = samples[0].offset + std::max<std::int64_t>(-first, 0);
    const std::int64_t empty =
        av_rescale(std::max<std::int64_t>(first, 0), movieTimescale, timescale);
    std::int64_t shown = av_rescale(std::max<std::int64_t>(presentationEnd(samples) - mediaTime, 1),
                                    movieTimescale, timescale);
    if (latestEnd) {
        shown = std::clamp<std::int64_t>(*latestEnd - empty, 1, shown);
    }
    fillTable(*boxes.table, track);
    setDuration(*boxes.mediaHeader, 4,
                samples.back().time + samples.back().duration - samples[0].time);
    setDuration(*boxes.header, 8, empty + shown);
    trak.remove(fourCC("edts")); // Moves no box in front of "tkhd", the first one.
    trak.children.insert(trak.children.begin() + 1, makeEditList(empty, shown, mediaTime));
    return empty + shown;
}

} // namespace

MovieBox makeEditList(std::int64_t empty, std::int64_t duration, std::int64_t mediaTime) {
    const bool mustBeLong = std::max({empty, duration, mediaTime}) > kLongest32;
    const int size = mustBeLong ? 8 : 4;
    constexpr std::uint32_t kNormalSpeed = 0x10000;
    BoxWriter list;
    list.u32(mustBeLong ? 1U << 24 : 0U).u32(empty > 0 ? 2 : 1);
    if (empty > 0) {
        list.number(static_cast<std::uint64_t>(empty), size);
        list.number(~std::uint64_t{0}, size).u32(kNormalSpeed);
    }
    list.number(static_cast<std::uint64_t>(duration), size);
    list.number(static_cast<std::uint64_t>(mediaTime), size).u32(kNormalSpeed);
    return {fourCC("edts"), {}, {{fourCC("elst"), list.take(), {}}}};
}

std::optional<MovieBox> makePlainIndex(MovieBox moov, MovieFragments fragments,
                                       const MovieEnds& ends) {
    MovieBox* movieHeader = moov.child(fourCC("mvhd"));
    const std::int64_t movieTimescale = movieHeader ? timescaleOf(*movieHeader) : 0;
    if (movieTimescale == 0) {
        return std::nullopt;
    }
    std::int64_t end = 0;
    std::size_t index = 0;
    for (MovieBox& trak : moov.children) {
        if (trak.type != fourCC("trak")) {
            continue;
        }
        const TrackBoxes boxes = boxesOf(trak);
        if (!boxes.isWhole() || index >= fragments.tracks.size()) {
            return std::nullopt;
        }
        FragmentedTrack& track = fragments.tracks[index];
        if (track.samples.empty()) {
            trak.type = 0; // Nothing in it: taken out below.
        } else {
            setDurations(track.samples, index < ends.lastDurations.size()
                                            ? ends.lastDurations[index]
                                            : std::nullopt);
            end = std::max(end, fillTrack(trak, boxes, track, movieTimescale,
                                          isSound(*boxes.handler) ? ends.sound : std::nullopt));
        }
        ++index;
    }
    moov.remove(0);
    moov.remove(fourCC("mvex"));
    setDuration(*moov.child(fourCC("mvhd")), 4, end);
    return moov;
}

} // namespace tavi
