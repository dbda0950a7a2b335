#include "gammatables.h"

#include <cstdlib>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netcdf.h>

#include "temporarydirectory.h"
#include "variables/gammaatlas.h"
#include "variables/sampleatlas.h"

namespace {

using namespace testing_support;
using seawater::GAMMAATLAS;

// Writes an atlas in the netCDF form of its authors, without the variable `leftOut`.
class RAtlasWriter {
public:
    explicit RAtlasWriter(const std::string& path) { check(nc_create(path.c_str(), NC_CLOBBER, &file_)); }
    ~RAtlasWriter() { nc_close(file_); }
    RAtlasWriter(const RAtlasWriter&) = delete;
    RAtlasWriter& operator=(const RAtlasWriter&) = delete;

    void write(const GAMMAATLAS& atlas, const std::string& leftOut, std::size_t latitudes)
    {
        leftOut_ = leftOut;
        int lon = 0, lat = 0, pressure = 0;
        check(nc_def_dim(file_, "lon", 90, &lon));
        check(nc_def_dim(file_, "lat", latitudes, &lat));
        check(nc_def_dim(file_, "pressure", 33, &pressure));
        define("lon", NC_FLOAT, {lon});
        define("lat", NC_FLOAT, {lat});
        define("pressure", NC_FLOAT, {pressure});
        for (const char* const name : {"n", "iocean"}) define(name, NC_INT, {lat, lon});
        for (const char* const name : {"s", "t", "gamma", "a"}) define(name, NC_FLOAT, {lat, lon, pressure});
        check(nc_enddef(file_));
        putNumbers(atlas);
    }

private:
    static void check(int status) { ASSERT_EQ(status, NC_NOERR) << nc_strerror(status); }
    void define(const std::string& name, nc_type type, const std::vector<int>& dimensions)
    {
        int variable = 0;
        if (name == leftOut_) return;
        check(nc_def_var(file_, name.c_str(), type, static_cast<int>(dimensions.size()), dimensions.data(),
                         &variable));
    }
    void put(const std::string& name, const float* values)
    {
        int variable = 0;
        if (nc_inq_varid(file_, name.c_str(), &variable) == NC_NOERR)
            check(nc_put_var_float(file_, variable, values));
    }
    void put(const std::string& name, const std::int32_t* values)
    {
        int variable = 0;
        if (nc_inq_varid(file_, name.c_str(), &variable) == NC_NOERR)
            check(nc_put_var_int(file_, variable, values));
    }
    void putNumbers(const GAMMAATLAS& atlas)
    {
        put("lon", atlas.longitudes.data());
        put("lat", atlas.latitudes.data());
        put("pressure", atlas.pressures.data());
        put("n", atlas.depthIndex.data());
        put("iocean", atlas.ocean.data());
        constexpr const char* names[] = {"s", "t", "gamma", "a"};
        for (std::size_t q = 0; q < 4; ++q) {
            std::vector<float> values;
            for (std::size_t cell = 0; cell < seawater::atlasCells; ++cell) {
                const float* const cast = atlas.casts.data() + cell * 132 + q * 33;
                values.insert(values.end(), cast, cast + 33);
            }
            put(names[q], values.data());
        }
    }
    int file_ = -1;
    std::string leftOut_;
};

class GammaTables : public testing::Test {
protected:
    GammaTables()
    {
        // Something of its own in every table.
        for (std::size_t cell = 0; cell < seawater::atlasCells; ++cell) {
            atlas.depthIndex[cell] = static_cast<std::int32_t>(2 + cell % 32);
            atlas.ocean[cell] = static_cast<std::int32_t>(1 + cell % 6);
            castOf(atlas, cell, Quantity::salinity)[7] = 34 + 0.0001f * static_cast<float>(cell);
            castOf(atlas, cell, Quantity::a)[cell % 33] = 0.001f * static_cast<float>(cell);
        }
    }
    std::string writeNetcdf(const std::string& leftOut = "", std::size_t latitudes = 45)
    {
        const std::string path = directory.file("gamma.nc");
        RAtlasWriter(path).write(atlas, leftOut, latitudes);
        return path;
    }
    std::string errorOf(const std::string& path)
    {
        std::string error;
        EXPECT_FALSE(tools::readGammaTables(path, error));
        return error;
    }
    // Runs the program where users find it; its exit code, and what it said in `said`.
    int run(const std::string& arguments)
    {
        const std::string command =
            NVQ_BUILD_DIR "/installed/bin/make_gamma_atlas " + arguments + " 2>" + directory.file("said");
        const int status = std::system(command.c_str());
        said = common::readFile(directory.file("said")).value_or("");
        return status;
    }
    const RTemporaryDirectory directory;
    GAMMAATLAS atlas = sampleAtlas();
    std::string said;
};

TEST_F(GammaTables, BecomeTheTwoFilesByteByByte)
{
    ASSERT_EQ(run(writeNetcdf() + " " + directory.file("support/gamma_n")), 0) << said;
    EXPECT_EQ(common::readFile(directory.file("support/gamma_n/llp.fdt")), gridBytes(atlas));
    EXPECT_EQ(common::readFile(directory.file("support/gamma_n/stga.fdt")), bytesOf(atlas.casts));
    std::string fault;
    EXPECT_TRUE(variables::loadGammaAtlas(directory.file("support/gamma_n/"), fault)) << fault;
}

TEST_F(GammaTables, TheAtlasOfTheAuthorsComesBackByteByByte)
{
    const char* const named = std::getenv("NVQ_SHARED_DATA");
    const std::string folder = std::string(named ? named : NVQ_SOURCE_DIR "/../shared/data") + "/gamma_n/";
    std::string fault;
    const auto loaded = variables::loadGammaAtlas(folder, fault);
    if (!loaded) GTEST_SKIP() << "no atlas: " << fault;
    atlas = *loaded;
    ASSERT_EQ(run(writeNetcdf() + " " + directory.file("made")), 0) << said;
    EXPECT_EQ(common::readFile(directory.file("made/llp.fdt")), common::readFile(folder + "llp.fdt"));
    EXPECT_EQ(common::readFile(directory.file("made/stga.fdt")), common::readFile(folder + "stga.fdt"));
}

TEST_F(GammaTables, AMissingVariableIsNamed)
{
    for (const std::string name : {"lon", "lat", "pressure", "n", "iocean", "s", "t", "gamma", "a"}) {
        const std::string path = writeNetcdf(name);
        EXPECT_EQ(errorOf(path), path + ": no variable " + name + " of the expected shape");
    }
}

TEST_F(GammaTables, AVariableOfAnotherShapeIsNamed)
{
    const std::string path = writeNetcdf("", 44);
    EXPECT_EQ(errorOf(path), path + ": no variable lat of the expected shape");
}

TEST_F(GammaTables, WhatCannotBeTrueIsNotConverted)
{
    castOf(atlas, 3, Quantity::temperature)[0] = -99;
    const std::string path = writeNetcdf();
    EXPECT_EQ(errorOf(path), path + ": the temperature of level 1 of cell 4 can't be true");
}

TEST_F(GammaTables, AFileThatIsNoNetcdfIsNamed)
{
    EXPECT_THAT(errorOf(directory.file("none.nc")), testing::StartsWith(directory.file("none.nc") + ": "));
    ASSERT_TRUE(common::writeFile(directory.file("text.nc"), "lon lat pressure\n"));
    EXPECT_THAT(errorOf(directory.file("text.nc")), testing::StartsWith(directory.file("text.nc") + ": "));
}

TEST_F(GammaTables, AFailedConversionLeavesTheOldFiles)
{
    ASSERT_TRUE(writeAtlas(directory.path(), atlas));
    atlas.ocean[0] = 9;
    EXPECT_NE(run(writeNetcdf() + " " + directory.path()), 0);
    EXPECT_THAT(said, testing::HasSubstr("gamma.nc: the ocean of cell 1 is 9"));
    std::string fault;
    EXPECT_TRUE(variables::loadGammaAtlas(directory.path(), fault)) << fault;
}

TEST_F(GammaTables, AnUnwritablePlaceIsSaidAndLeavesNothing)
{
    ASSERT_TRUE(std::filesystem::create_directories(directory.file("made/llp.fdt")));
    EXPECT_NE(run(writeNetcdf() + " " + directory.file("made")), 0);
    EXPECT_THAT(said, testing::HasSubstr("made: can't be written to"));
    EXPECT_FALSE(common::existsAtAll(directory.file("made/stga.fdt")));
    EXPECT_NE(run(writeNetcdf() + " /proc/nowhere"), 0);
    EXPECT_THAT(said, testing::HasSubstr("/proc/nowhere: can't be made"));
}

TEST_F(GammaTables, WithoutItsArgumentsTheProgramTellsThem)
{
    EXPECT_NE(run(""), 0);
    EXPECT_EQ(said, "make_gamma_atlas: usage: make_gamma_atlas ATLAS.nc FOLDER\n");
}

} // namespace
