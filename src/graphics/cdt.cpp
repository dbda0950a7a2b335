#include "graphics/cdt.h"

#include <array>
#include <cmath>
#include <cstring>

#include "common/byteorder.h"
#include "common/files.h"

namespace graphics {

namespace {

constexpr float largestDegree = 1e4f; // beyond it a number can't be meant as a position
constexpr std::size_t headerBytes = 8, pointBytes = 8;

bool isCount(std::int32_t n)
{
    return n >= 1 && n <= maxCdtPoints;
}

bool isDegree(float value)
{
    return std::abs(value) <= largestDegree; // false for NaN
}

// The buffers that every record passes through.
class RRecordBuffer {
public:
    // Reads the next record. False at the end of the file, or when nothing can follow.
    bool next(std::FILE* file)
    {
        damage_ = CdtDamage::none;
        std::array<std::int32_t, 2> header{};
        const std::size_t got = std::fread(header.data(), 1, headerBytes, file);
        if (got == 0) return false;
        if (got < headerBytes) return stop(CdtDamage::truncated);
        const bool swap = !isCount(header[0]);
        if (swap) common::reverseBytes(header.data(), 2, 4, header.data());
        if (!isCount(header[0])) return stop(CdtDamage::badCount);
        return readPoints(file, std::size_t(header[0]), header[1], swap);
    }

    [[nodiscard]] CdtDamage damage() const { return damage_; }
    [[nodiscard]] std::size_t bytes() const { return headerBytes + n_ * pointBytes; }
    [[nodiscard]] CDTRECORD record() const
    {
        return {std::span(lon_).first(n_), std::span(lat_).first(n_), outline_};
    }

private:
    bool stop(CdtDamage damage)
    {
        damage_ = damage;
        return false;
    }

    bool readPoints(std::FILE* file, std::size_t n, std::int32_t outline, bool swap)
    {
        if (std::fread(raw_.data(), pointBytes, n, file) < n) return stop(CdtDamage::truncated);
        if (swap) common::reverseBytes(raw_.data(), 2 * n, 4, raw_.data());
        n_ = n;
        outline_ = outline;
        if (outline < 0 || std::size_t(outline) > n) damage_ = CdtDamage::badOutline;
        for (std::size_t i = 0; i < n; ++i) {
            lon_[i] = raw_[2 * i];
            lat_[i] = raw_[2 * i + 1];
            if (!isDegree(lon_[i]) || !isDegree(lat_[i])) damage_ = CdtDamage::badPosition;
        }
        return true;
    }

    std::array<float, 2 * std::size_t(maxCdtPoints)> raw_;
    std::array<float, std::size_t(maxCdtPoints)> lon_, lat_;
    std::size_t n_ = 0;
    int outline_ = 0;
    CdtDamage damage_ = CdtDamage::none;
};

void keepFirst(CDTSCAN& scan, CdtDamage damage, std::int64_t offset)
{
    if (damage == CdtDamage::none || scan.damage != CdtDamage::none) return;
    scan.damage = damage;
    scan.offset = offset;
}

} // namespace

const char* cdtDamageText(CdtDamage damage)
{
    static constexpr std::array<const char*, 5> texts = {"", "impossible number of points",
                                                         "impossible length of the outline",
                                                         "impossible position", "the file ends in a polygon"};
    return texts[std::size_t(damage)];
}

CDTSCAN scanCdt(std::FILE* file, const CdtVisitor& visit)
{
    CDTSCAN scan;
    RRecordBuffer buffer;
    std::int64_t offset = 0;
    while (buffer.next(file)) {
        keepFirst(scan, buffer.damage(), offset);
        offset += std::int64_t(buffer.bytes());
        if (buffer.damage() != CdtDamage::none) continue;
        ++scan.records;
        if (!visit(buffer.record())) return scan;
    }
    keepFirst(scan, buffer.damage(), offset);
    return scan;
}

int readCdtFile(const std::string& path, const CdtVisitor& visit)
{
    const common::FilePtr file = common::openFile(path, "rb");
    return file ? scanCdt(file.get(), visit).records : -1;
}

} // namespace graphics
