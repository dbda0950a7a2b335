#include "netcdffile.h"

#include <functional>
#include <numeric>

#include <netcdf.h>

namespace tools {

RNetcdfFile::RNetcdfFile(const std::string& path)
{
    const int status = nc_open(path.c_str(), NC_NOWRITE, &id_);
    if (status == NC_NOERR) return;
    error_ = nc_strerror(status);
    id_ = -1;
}

RNetcdfFile::~RNetcdfFile()
{
    if (id_ >= 0) nc_close(id_);
}

bool RNetcdfFile::hasShape(int variable, const std::vector<std::size_t>& shape)
{
    int rank = 0, dimensions[NC_MAX_VAR_DIMS] = {};
    if (nc_inq_varndims(id_, variable, &rank) != NC_NOERR || std::size_t(rank) != shape.size()) return false;
    if (nc_inq_vardimid(id_, variable, dimensions) != NC_NOERR) return false;
    for (int i = 0; i < rank; ++i) {
        std::size_t length = 0;
        if (nc_inq_dimlen(id_, dimensions[i], &length) != NC_NOERR) return false;
        if (length != shape[std::size_t(i)]) return false;
    }
    return true;
}

template <typename Number, typename Reader>
std::vector<Number> RNetcdfFile::read(const std::string& name, const std::vector<std::size_t>& shape,
                                      Reader reader)
{
    int variable = -1;
    if (!error_.empty()) return {};
    if (nc_inq_varid(id_, name.c_str(), &variable) != NC_NOERR || !hasShape(variable, shape)) {
        error_ = "no variable " + name + " of the expected shape";
        return {};
    }
    const auto size = std::accumulate(shape.begin(), shape.end(), std::size_t{1}, std::multiplies<>());
    std::vector<Number> values(size);
    if (const int status = reader(id_, variable, values.data()); status != NC_NOERR) {
        error_ = name + ": " + nc_strerror(status);
        return {};
    }
    return values;
}

std::vector<float> RNetcdfFile::floats(const std::string& name, const std::vector<std::size_t>& shape)
{
    return read<float>(name, shape, nc_get_var_float);
}

std::vector<std::int32_t> RNetcdfFile::integers(const std::string& name,
                                                const std::vector<std::size_t>& shape)
{
    return read<std::int32_t>(name, shape, nc_get_var_int);
}

} // namespace tools
