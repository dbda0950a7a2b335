#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tools {

// A netCDF file, read whole variables at a time. The first failure stands in error(), and every later read
// gives nothing.
class RNetcdfFile {
public:
    explicit RNetcdfFile(const std::string& path);
    ~RNetcdfFile();
    RNetcdfFile(const RNetcdfFile&) = delete;
    RNetcdfFile& operator=(const RNetcdfFile&) = delete;

    // All values of a variable that must have exactly this shape.
    [[nodiscard]] std::vector<float> floats(const std::string& name, const std::vector<std::size_t>& shape);
    [[nodiscard]] std::vector<std::int32_t> integers(const std::string& name,
                                                     const std::vector<std::size_t>& shape);
    [[nodiscard]] const std::string& error() const { return error_; } // empty while all is well

private:
    bool hasShape(int variable, const std::vector<std::size_t>& shape);
    template <typename Number, typename Reader>
    std::vector<Number> read(const std::string& name, const std::vector<std::size_t>& shape, Reader reader);
    int id_ = -1;
    std::string error_;
};

} // namespace tools
