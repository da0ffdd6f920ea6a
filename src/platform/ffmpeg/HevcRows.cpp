#include "platform/ffmpeg/HevcRows.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tavi {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kRecordHead = 22; ///< Bytes in front of the number of arrays.
constexpr int kPictureParameterSet = 34;
constexpr std::size_t kUnitHead = 2;
constexpr int kLongestCode = 32; ///< Leading zeros of a whole number, at most.

/// Reads a record byte by byte; zeros after its end.
class ByteReader {
public:
    explicit ByteReader(Bytes bytes) : m_bytes(bytes) {}

    bool isAtEnd() const { return m_bytes.empty(); }
    std::size_t byte() {
        const Bytes one = take(1);
        return one.empty() ? 0 : one.front();
    }
    std::size_t word() {
        const std::size_t high = byte();
        return high << 8U | byte();
    }
    Bytes take(std::size_t count) {
        const Bytes taken = m_bytes.first(std::min(count, m_bytes.size()));
        m_bytes = m_bytes.subspan(taken.size());
        return taken;
    }

private:
    Bytes m_bytes;
};

/// Reads the syntax elements of a parameter set; zeros after its end.
class BitReader {
public:
    explicit BitReader(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    bool isPastEnd() const { return m_position > m_bytes.size() * 8; }
    bool flag() {
        const std::size_t at = m_position++;
        return at / 8 < m_bytes.size() && (m_bytes[at / 8] >> (7 - at % 8) & 1) != 0;
    }
    void skip(int bits) { m_position += static_cast<std::size_t>(bits); }
    /// Exp-Golomb, with or without a sign: both are as long.
    void skipNumber() {
        int zeros = 0;
        while (zeros < kLongestCode && !isPastEnd() && !flag()) {
            ++zeros;
        }
        skip(zeros);
    }

private:
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_position = 0;
};

/// A unit's content without the bytes that keep it from looking like a start code.
std::vector<std::uint8_t> unescaped(Bytes unit) {
    std::vector<std::uint8_t> bytes;
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        bytes.push_back(byte);
    }
    return bytes;
}

/// The first unit of the type; absent where there is none.
std::optional<Bytes> firstUnit(Bytes configuration, int type) {
    ByteReader reader(configuration);
    reader.take(kRecordHead);
    for (std::size_t arrays = reader.byte(); arrays > 0 && !reader.isAtEnd(); --arrays) {
        const int kind = static_cast<int>(reader.byte() & 0x3FU);
        for (std::size_t units = reader.word(); units > 0 && !reader.isAtEnd(); --units) {
            const Bytes unit = reader.take(reader.word());
            if (kind == type && unit.size() > kUnitHead) {
                return unit.subspan(kUnitHead);
            }
        }
    }
    return std::nullopt;
}

} // namespace

/// The order of elements is that of pic_parameter_set_rbsp() (ITU-T H.265, 7.3.2.3.1).
bool hasParallelRows(std::span<const std::uint8_t> configuration) {
    const auto unit = firstUnit(configuration, kPictureParameterSet);
    if (!unit) {
        return false;
    }
    BitReader bits(unescaped(*unit));
    bits.skipNumber(); // id of the picture's set
    bits.skipNumber(); // id of the sequence's set
    bits.skip(1 + 1 + 3 + 1 + 1);
    bits.skipNumber(); // reference pictures, forward
    bits.skipNumber(); // and backward
    bits.skipNumber(); // first quantizer
    bits.skip(1 + 1);
    if (bits.flag()) { // quantizers of blocks
        bits.skipNumber();
    }
    bits.skipNumber(); // quantizer of Cb
    bits.skipNumber(); // and of Cr
    bits.skip(1 + 1 + 1 + 1);
    const bool hasTiles = bits.flag();
    return bits.flag() && !hasTiles && !bits.isPastEnd();
}

} // namespace tavi
