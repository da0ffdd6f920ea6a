#include "platform/ffmpeg/MovieFragments.h"

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

/// More than any fragment's tables need; what claims more is damaged.
constexpr std::uint64_t kMostTableBytes = std::uint64_t{64} << 20;

/// More than any fragment of ours has, by far.
constexpr std::uint32_t kMostSamples = 1 << 20;

/// No fragment begins later, in ticks.
constexpr std::int64_t kLatest = std::int64_t{1} << 56;

constexpr std::uint32_t kIsNoKey = 0x10000;

/// What a sample is where its run doesn't say so.
struct Defaults {
    std::uint32_t duration = 0;
    std::uint32_t size = 0;
    std::uint32_t flags = 0;
};

/// Reads numbers from a box's content; 0 and not isWhole() past its end.
class BoxReader {
public:
    explicit BoxReader(std::span<const std::uint8_t> content) : m_rest(content) {}

    std::uint64_t number(std::size_t size) {
        if (m_rest.size() < size) {
            m_isWhole = false;
            return 0;
        }
        const std::uint64_t value = bigEndian(m_rest.first(size));
        m_rest = m_rest.subspan(size);
        return value;
    }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint32_t u32If(bool isThere, std::uint32_t otherwise) {
        return isThere ? u32() : otherwise;
    }
    bool isWhole() const { return m_isWhole; }

private:
    std::span<const std::uint8_t> m_rest;
    bool m_isWhole = true;
};

std::uint32_t trackId(const MovieBox& trak) {
    const MovieBox* tkhd = trak.child(fourCC("tkhd"));
    if (!tkhd || tkhd->content.empty()) {
        return 0;
    }
    const std::size_t place = tkhd->content[0] == 1 ? 20 : 12;
    BoxReader reader(std::span(tkhd->content).subspan(std::min(place, tkhd->content.size())));
    return reader.u32();
}

Defaults defaultsOf(const MovieBox& moov, std::uint32_t id) {
    const MovieBox* mvex = moov.child(fourCC("mvex"));
    for (const MovieBox& box : mvex ? mvex->children : std::vector<MovieBox>{}) {
        BoxReader reader(box.content);
        reader.u32();
        if (box.type == fourCC("trex") && reader.u32() == id) {
            reader.u32();
            const std::uint32_t duration = reader.u32();
            const std::uint32_t size = reader.u32();
            return {duration, size, reader.u32()};
        }
    }
    return {};
}

/// Where offsets in a fragment count from.
struct FragmentPlace {
    std::uint64_t start = 0;   ///< Of the "moof".
    std::uint64_t dataEnd = 0; ///< Of the track's data before this one's; `start` for the first.
    std::uint64_t limit = 0;   ///< Where the fragment's data ends.
};

/// One fragment's part of one track.
class RunReader {
public:
    RunReader(FragmentedTrack& track, Defaults defaults, const FragmentPlace& place)
        : m_track(track),
          m_defaults(defaults),
          m_start(place.start),
          m_base(place.dataEnd),
          m_position(place.dataEnd) {}

    bool readHeader(const MovieBox& tfhd) {
        BoxReader reader(tfhd.content);
        const std::uint32_t flags = reader.u32();
        reader.u32();
        if (flags & 0x1) {
            m_base = reader.number(8);
        } else if (flags & 0x20000) {
            m_base = m_start;
        }
        m_position = m_base;
        reader.u32If(flags & 0x2, 0);
        m_defaults.duration = reader.u32If(flags & 0x8, m_defaults.duration);
        m_defaults.size = reader.u32If(flags & 0x10, m_defaults.size);
        m_defaults.flags = reader.u32If(flags & 0x20, m_defaults.flags);
        return reader.isWhole();
    }

    bool readTime(const MovieBox& tfdt) {
        BoxReader reader(tfdt.content);
        const bool isLong = reader.u32() >> 24 == 1;
        m_time = static_cast<std::int64_t>(reader.number(isLong ? 8 : 4));
        return reader.isWhole() && m_time >= 0 && m_time <= kLatest;
    }

    bool readRun(const MovieBox& trun) {
        BoxReader reader(trun.content);
        const std::uint32_t flags = reader.u32();
        const std::uint32_t count = reader.u32();
        if (flags & 0x1) {
            const std::int64_t away = static_cast<std::int32_t>(reader.u32());
            m_position = m_base + static_cast<std::uint64_t>(away);
        }
        const std::uint32_t firstFlags = reader.u32If(flags & 0x4, m_defaults.flags);
        if (count > kMostSamples) {
            return false;
        }
        if (count > 0) {
            m_track.chunks.push_back({m_position, count});
        }
        for (std::uint32_t i = 0; i < count && reader.isWhole(); ++i) {
            readSample(reader, flags, i == 0 ? firstFlags : m_defaults.flags);
        }
        return reader.isWhole();
    }

    /// Of the data of what was read.
    std::uint64_t end() const { return m_position; }

private:
    void readSample(BoxReader& reader, std::uint32_t flags, std::uint32_t defaultFlags) {
        FragmentedTrack::Sample sample;
        sample.time = m_time;
        sample.duration = reader.u32If(flags & 0x100, m_defaults.duration);
        sample.size = reader.u32If(flags & 0x200, m_defaults.size);
        sample.isKey = !(reader.u32If(flags & 0x400, defaultFlags) & kIsNoKey);
        sample.offset = static_cast<std::int32_t>(reader.u32If(flags & 0x800, 0));
        m_track.samples.push_back(sample);
        m_time += sample.duration;
        m_position += sample.size;
    }

    FragmentedTrack& m_track;
    Defaults m_defaults;
    const std::uint64_t m_start;
    std::uint64_t m_base;
    std::uint64_t m_position;
    std::int64_t m_time = 0;
};

/// Adds one fragment's part of one track; false where it is damaged or reaches beyond it.
bool readTrack(const MovieBox& traf, const MovieBox& moov, FragmentPlace& place,
               std::vector<FragmentedTrack>& tracks) {
    const MovieBox* tfhd = traf.child(fourCC("tfhd"));
    if (!tfhd || tfhd->content.size() < 8) {
        return false;
    }
    const auto id = static_cast<std::uint32_t>(bigEndian(std::span(tfhd->content).subspan(4, 4)));
    const auto track = std::find_if(tracks.begin(), tracks.end(),
                                    [&](const FragmentedTrack& one) { return one.id == id; });
    if (track == tracks.end()) {
        return false;
    }
    RunReader runs(*track, defaultsOf(moov, id), place);
    bool isWhole = runs.readHeader(*tfhd);
    for (const MovieBox& box : traf.children) {
        if (box.type == fourCC("tfdt")) {
            isWhole = isWhole && runs.readTime(box);
        } else if (box.type == fourCC("trun")) {
            isWhole = isWhole && runs.readRun(box) && runs.end() <= place.limit;
        }
    }
    place.dataEnd = runs.end();
    return isWhole;
}

/// Adds one fragment, or nothing and false where it isn't whole.
bool readFragment(const MovieBox& moof, const MovieBox& moov, FragmentPlace place,
                  std::vector<FragmentedTrack>& tracks) {
    std::vector<std::pair<std::size_t, std::size_t>> before;
    before.reserve(tracks.size());
    for (const FragmentedTrack& track : tracks) {
        before.emplace_back(track.samples.size(), track.chunks.size());
    }
    bool isWhole = !moof.children.empty();
    for (const MovieBox& box : moof.children) {
        isWhole = isWhole && (box.type != fourCC("traf") || readTrack(box, moov, place, tracks));
    }
    for (std::size_t i = 0; i < tracks.size() && !isWhole; ++i) {
        tracks[i].samples.resize(before[i].first);
        tracks[i].chunks.resize(before[i].second);
    }
    return isWhole;
}

/// The content of a box; empty for one of unreasonable size.
std::vector<std::uint8_t> contentOf(const ReadBytes& read, const BoxRange& box) {
    const std::uint64_t size = box.end - box.begin;
    std::vector<std::uint8_t> content(size <= kMostTableBytes ? size : 0);
    return read(box.begin, content) ? content : std::vector<std::uint8_t>{};
}

} // namespace

MovieFragments noFragments(const MovieBox& moov, std::uint64_t start) {
    MovieFragments none{{}, start};
    for (const MovieBox& box : moov.children) {
        if (box.type == fourCC("trak")) {
            none.tracks.push_back({trackId(box), {}, {}});
        }
    }
    return none;
}

void readFragments(const ReadBytes& read, std::uint64_t size, const MovieBox& moov,
                   MovieFragments& found) {
    while (true) {
        const auto moof = readBox(read, found.end, size);
        const auto mdat = moof ? readBox(read, moof->end, size) : std::nullopt;
        if (!mdat || moof->type != fourCC("moof") || mdat->type != fourCC("mdat")) {
            return;
        }
        if (!readFragment({moof->type, {}, parseBoxes(contentOf(read, *moof))}, moov,
                          {moof->start, moof->start, mdat->end}, found.tracks)) {
            return;
        }
        found.end = mdat->end;
    }
}

} // namespace tavi
