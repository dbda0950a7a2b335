#include <algorithm>
#include <numbers>

#include "memorycast.h"
#include "variables/registry.h"
#include "variables/seawater/profile.h"
#include "variables/seawater/stability.h"

namespace variables {
namespace {

using testing_support::missing;
using testing_support::RMemoryCast;
using FLOATS = std::vector<float>;

void expectValues(const std::optional<FLOATS>& values, const FLOATS& expected, double tolerance, int row)
{
    ASSERT_EQ(values.has_value(), !expected.empty()) << "row " << row;
    if (!values) return;
    ASSERT_EQ(values->size(), expected.size()) << "row " << row;
    for (std::size_t k = 0; k < expected.size(); ++k)
        EXPECT_NEAR((*values)[k], expected[k], tolerance) << "row " << row << ", level " << k;
}

struct VERTICALROW {
    FLOATS depth, values;
    float bottomDepth, start;
    FLOATS expected; // empty: absent
    double tolerance;
};

template <std::size_t n>
void expectRows(const VERTICALROW (&rows)[n], int id)
{
    int number = 0;
    for (const VERTICALROW& row : rows) {
        RMemoryCast cast;
        cast.store({row.depth, row.values});
        cast.station.header.bottomDepth = row.bottomDepth;
        expectValues(cast.derived(id, {1, 2}, row.start), row.expected, row.tolerance, number++);
    }
}

TEST(VerticalDerivative, GivesTheCheckValues)
{
    const VERTICALROW rows[] = {
        {{0.0f, 100.0f, 900.0f, 1000.0f}, {20.0f, 18.0f, 6.0f, 5.0f}, 0.0f, 0.0f, {}, 0}, // a gap of 800 m:
                                                                                          // absent
        {{0.0f, 14.0f, 40.5f, 69.7f, 104.3f, 129.2f, 169.9f, 205.0f, 267.9f, 324.6f, 399.9f},
         {19.152f, 18.794f, 18.033f, 17.258f, 16.36f, 15.761f, 14.814f, 13.989f, 12.84f, 11.855f, 10.671f},
         0.0f,
         0.0f,
         {-25.71170998f, -27.16949272f, -27.53769684f, -26.38136673f, -24.93890381f, -23.90879059f,
          -23.3884449f, -20.81233597f, -17.73132896f, -16.57275009f, -15.65524006f},
         0.01},
        {{5.0f, 137.6f, 269.1f, 404.1f, 525.4f, 677.1f, 951.6f, 1217.7f, 1540.5f, 1999.9f},
         {20.299f, 16.528f, 13.678f, 11.123f, 9.428f, missing, 5.333f, 3.988f, 2.969f, 2.218f},
         0.0f,
         0.0f,
         {-28.43891144f, -25.0765686f, -20.42198372f, -16.38570786f, -11.92927837f, -10.21646023f,
          -7.239815712f, -4.330360889f, -2.561026812f, -1.586934686f},
         0.01},
        {{0.0f, 68.4f, 132.7f, 205.2f, 293.5f, 407.8f, 524.4f, 659.0f, 854.9f, 1000.0f},
         {14.216f, 12.917f, 11.82f, 10.519f, 9.257f, 8.062f, 6.734f, 5.776f, 4.623f, 3.885f},
         0.0f,
         0.0f,
         {-18.95391846f, -18.03932381f, -17.57242775f, -16.09475899f, -12.52708149f, -10.93340015f,
          -9.198235512f, -6.985878944f, -5.475763798f, -5.086150169f},
         0.01},
        {{0.0f, 16.4f, 38.7f, 68.8f, 100.7f, 141.7f, 183.4f, 224.7f, 263.0f, 332.7f, 400.0f},
         {18.14f, missing, 17.269f, 16.32f, 15.629f, 14.669f, 13.789f, 12.996f, 12.214f, 11.07f, 10.063f},
         0.0f,
         0.0f,
         {-22.50644875f, -22.50644684f, -27.08748055f, -26.19866753f, -23.28521347f, -22.16004562f,
          -20.22085381f, -19.81786346f, -18.18958092f, -15.68816948f, -14.96286774f},
         0.01},
        {{0.0f, 48.0f, 118.2f, 233.9f, 344.1f, 483.1f, 655.2f, 819.0f, 1000.0f},
         {22.131f, 20.552f, 18.341f, 15.469f, 13.21f, 10.708f, 8.356f, 6.724f, 5.409f},
         1006.8f,
         0.0f,
         {-32.89584732f, -32.21567917f, -28.33782005f, -22.62301826f, -19.51624298f, -15.90000916f,
          -11.72992611f, -8.658530235f, -7.265193939f},
         0.01},
        {{5.0f, 91.0f, 200.6f, 340.0f, 475.7f, 632.5f, 764.8f, 897.6f, 1121.8f, 1413.7f, 1773.3f, 2000.0f},
         {9.49f, 8.437f, 7.155f, 6.147f, 5.117f, 4.374f, 3.697f, 3.222f, 2.767f, 2.231f, 1.904f, 1.821f},
         0.0f,
         0.0f,
         {-12.22567463f, -11.97369385f, -9.493806839f, -7.282945156f, -6.134588718f, -4.820881367f,
          -4.303030491f, -3.019592047f, -2.003833532f, -1.385430455f, -0.6382443309f, -0.3629644215f},
         0.01},
    };
    expectRows(rows, idVerticalDerivative);
}

TEST(SecondVerticalDerivative, GivesTheCheckValues)
{
    const VERTICALROW rows[] = {
        {{0.0f, 100.0f, 900.0f, 1000.0f}, {20.0f, 18.0f, 6.0f, 5.0f}, 0.0f, 0.0f, {}, 0}, // a gap of 800 m:
                                                                                          // absent
        {{5.0f, 161.2f, 392.0f, 599.0f, 884.5f, 1284.8f, 1615.3f, 1999.9f},
         {19.099f, 15.058f, 10.753f, 8.036f, 5.603f, 3.549f, 2.701f, 2.12f},
         0.0f,
         0.0f,
         {5.032443523f, 18.37888336f, 20.87242126f, 21.50513649f, 11.50666618f, 5.365215302f, 3.590613365f,
          -0.7119860649f},
         0.05},
        {{5.0f, 190.0f, 431.8f, 673.1f, 868.2f, 1270.7f, 1638.4f, 2000.0f},
         {27.282f, 20.358f, 14.027f, 9.896f, 7.614f, 4.605f, 3.219f, 2.359f},
         0.0f,
         0.0f,
         {8.185665131f, 25.60169029f, 29.5922699f, 22.95127487f, 16.3392849f, 5.891492844f, 3.388217449f,
          -1.917267323f},
         0.05},
        {{5.0f, 95.3f, 159.4f, 244.7f, 366.1f, 552.2f, 776.3f, 1000.1f},
         {23.708f, 20.519f, 18.612f, 16.337f, 13.605f, 10.494f, 7.624f, 5.687f},
         0.0f,
         0.0f,
         {1.127810955f, 58.69388962f, 59.80784607f, 36.16175842f, 31.72790527f, 22.45838165f, 13.13712215f,
          -8.429380417f},
         0.05},
        {{0.0f, 16.6f, 36.2f, 66.6f, 104.1f, 138.5f, 176.6f, 251.7f, 331.8f, 399.9f},
         {10.865f, 10.553f, 10.349f, 9.902f, 9.402f, 8.95f, 8.507f, 7.613f, 6.915f, 6.306f},
         0.0f,
         0.0f,
         {158.8409882f, 215.2988892f, 76.50691223f, -36.94058228f, 16.94130898f, 24.60461044f, 11.13024521f,
          19.11642647f, 1.090261817f, 2.33403182f},
         0.05},
        {{0.0f, 111.6f, 212.4f, 356.3f, 510.4f, 759.7f, 973.1f, 1211.8f, 1499.1f, 1999.8f},
         {6.419f, 5.766f, 5.093f, 4.262f, 3.621f, 3.02f, 2.52f, 2.164f, 1.895f, 1.597f},
         2012.6f,
         0.0f,
         {-2.593119144f, -1.312502146f, 0.7209216952f, 8.467482567f, 8.173958778f, 1.805956721f, 2.582145691f,
          2.843071938f, 1.126591802f, -0.5769851804f},
         0.05},
        {{5.0f, 24.3f, 50.8f, 83.2f, 114.7f, 160.6f, 235.1f, 313.3f, 400.0f},
         {14.798f, 14.268f, 13.762f, 13.15f, 12.443f, 11.67f, 10.592f, 9.467f, 8.398f},
         0.0f,
         0.0f,
         {145.4224854f, 186.4680634f, 151.1271362f, 17.22271156f, 23.18475723f, 63.62843323f, 20.68477631f,
          13.30110168f, -14.12870312f},
         0.05},
    };
    expectRows(rows, idSecondDerivative);
}

TEST(VerticalIntegral, GivesTheCheckValues)
{
    const VERTICALROW rows[] = {
        {{0.0f, 100.0f, 900.0f, 1000.0f}, {20.0f, 18.0f, 6.0f, 5.0f}, 0.0f, 100.0f, {}, 0}, // a gap of 800 m:
                                                                                            // absent
        {{0.0f, 24.2f, 48.4f, 69.8f, 105.4f, 132.5f, 180.3f, 238.0f, 282.0f, 333.0f, 400.0f},
         {24.38f, 23.508f, 22.636f, 21.941f, 20.664f, 19.862f, 18.493f, 16.95f, 15.83f, 14.628f, 13.211f},
         0.0f,
         9000.0f,
         {-7.294763565f, -6.715602398f, -6.156716824f, -5.68173027f, -4.923420906f, -4.376449108f,
          -3.465156317f, -2.43949914f, -1.717707992f, -0.9461355805f, 0.005290393718f},
         0.0002},
        {{0.0f, 23.4f, 44.4f, 74.6f, 107.0f, 146.3f, 186.1f, 220.5f, 267.6f, 335.0f, 400.0f},
         {19.353f, 18.598f, 18.102f, 17.195f, 16.403f, 15.473f, 14.449f, 13.751f, 12.937f, 11.67f, 10.626f},
         425.0f,
         0.0f,
         {-0.002645179862f, 0.4414988756f, 0.8265278339f, 1.357739329f, 1.901387572f, 2.526148081f,
          3.124114275f, 3.609125376f, 4.232096672f, 5.060770988f, 5.797795773f},
         0.0002},
        {{2.0f, 26.1f, 61.4f, 97.7f, 141.6f, 221.7f, 319.3f, 400.0f},
         {12.48f, 12.041f, 11.436f, 10.886f, 10.163f, 9.158f, 7.968f, 7.18f},
         0.0f,
         0.0f,
         {0.02351493575f, 0.3177739978f, 0.7315930724f, 1.135856628f, 1.593137741f, 2.358950138f,
          3.197301149f, 3.825128794f},
         0.0002},
        {{0.0f, 91.8f, 225.9f, 410.0f, 575.5f, 726.3f, 972.9f, 1193.2f, 1546.7f, 2000.0f},
         {17.843f, 15.399f, 12.605f, missing, 7.726f, 6.272f, 4.68f, 3.671f, 2.776f, 2.077f},
         0.0f,
         9000.0f,
         {-12.55942249f, -11.05416679f, -9.191356659f, -7.099966049f, -5.612391472f, -4.565939426f,
          -3.216592789f, -2.2901752f, -1.153449774f, 0.01599032432f},
         0.0002},
        {{5.0f, 29.7f, 52.9f, 73.8f, 98.1f, 136.2f, 192.8f, 241.7f, 316.8f, 400.1f},
         {20.488f, 19.836f, 19.02f, 18.414f, 17.818f, 16.689f, 15.435f, 14.29f, missing, 11.302f},
         0.0f,
         100.0f,
         {-1.815987229f, -1.319175482f, -0.8676146865f, -0.476310879f, -0.03871050477f, 0.6138291359f,
          1.522022605f, 2.247933626f, 3.260329962f, 4.293859482f},
         0.0002},
        {{0.0f, 109.0f, 244.9f, 401.8f, 688.9f, 1074.4f, 1546.7f, 1999.9f},
         {8.291f, 7.247f, 6.056f, 4.996f, 3.66f, 2.752f, 1.913f, 1.701f},
         0.0f,
         0.0f,
         {-0.0165485926f, 0.8236852884f, 1.725674748f, 2.565695524f, 3.790911674f, 5.036780357f, 6.158480644f,
          7.023148537f},
         0.0002},
    };
    expectRows(rows, idVerticalIntegral);
}

struct WATERROW {
    FLOATS depth, temperature, salinity;
    float latitude, bottomDepth, reference;
    const char* type;
    FLOATS expected; // empty: absent
    double tolerance;
};

void store(RMemoryCast& cast, const WATERROW& row)
{
    cast.store({row.depth, row.temperature, row.salinity});
    cast.station.header.latitude = row.latitude;
    cast.station.header.bottomDepth = row.bottomDepth;
    common::copyText(cast.station.header.type, row.type);
}

template <std::size_t n>
void expectRows(const WATERROW (&rows)[n], int id)
{
    int number = 0;
    for (const WATERROW& row : rows) {
        RMemoryCast cast;
        store(cast, row);
        expectValues(cast.derived(id, {1, 2, 3}, row.reference), row.expected, row.tolerance, number++);
    }
}

TEST(DynamicHeight, GivesTheCheckValues)
{
    const WATERROW rows[] = {
        {{0.0f, 100.0f, 900.0f, 1000.0f},
         {20.0f, 18.0f, 6.0f, 5.0f},
         {35.2f, 35.1f, 34.7f, 34.7f},
         -3.18f,
         0.0f,
         0.0f,
         "C",
         {},
         0}, // a gap of 800 m: absent
        {{0.0f, 29.5f, 63.3f, 95.7f, 124.8f, 163.6f, 201.3f, 268.6f, 340.4f, 400.0f},
         {20.132f, 19.379f, 18.352f, 17.464f, 16.761f, 15.86f, 14.915f, 13.48f, 12.194f, 11.218f},
         {34.964f, 34.945f, 34.933f, 34.921f, 34.918f, 34.884f, 34.873f, 34.837f, missing, 34.778f},
         24.35f,
         407.6f,
         100.0f,
         "C",
         {0.293135792f, 0.1995386779f, 0.09895594418f, 0.009337007999f, -0.06621140242f, -0.1608563066f,
          -0.246250838f, -0.3840748966f, -0.5151867867f, -0.6134537458f},
         0.0005},
        {{0.0f, 21.2f, 58.1f, 87.3f, 139.1f, 195.4f, 239.3f, 325.2f, 399.9f},
         {14.998f, 14.57f, 13.748f, 13.251f, 12.252f, 11.23f, 10.54f, 9.36f, 8.469f},
         {34.437f, 34.477f, 34.473f, 34.509f, 34.525f, 34.543f, 34.559f, 34.595f, 34.609f},
         49.39f,
         450.0f,
         399.9f,
         "C",
         {0.6910167933f, 0.6401215196f, 0.5564338565f, 0.4941497743f, 0.3915796876f, 0.2906606495f,
          0.2187465429f, 0.0921472311f, -0.005118966103f},
         0.0005},
        {{2.0f, 95.6f, 173.6f, 265.1f, 390.4f, 523.3f, 653.4f, 805.1f, 1000.0f},
         {8.64f, 7.709f, missing, 6.196f, 5.226f, 4.537f, 3.896f, 3.347f, 2.92f},
         {35.637f, 35.425f, 35.306f, 35.189f, 35.036f, 34.944f, 34.879f, 34.84f, 34.784f},
         8.73f,
         0.0f,
         100.0f,
         "C",
         {0.04201562703f, 0.001698929816f, -0.03342155367f, -0.07454516739f, -0.1314092577f, -0.1925113946f,
          -0.2516954541f, -0.3183642626f, -0.4030889273f},
         0.0005},
        {{5.0f, 55.7f, 115.5f, 158.9f, 232.5f, 310.5f, 378.1f, 467.8f, 553.3f, 721.2f, 879.6f, 1000.0f},
         {16.208f, 15.034f, 13.732f, 12.978f, 11.684f, 10.434f, 9.528f, 8.301f, 7.438f, 5.995f, 4.876f,
          4.375f},
         {34.474f, 34.493f, 34.542f, 34.53f, missing, 34.601f, 34.608f, 34.628f, 34.655f, 34.646f, 34.675f,
          34.686f},
         31.6f,
         0.0f,
         300.0f,
         "C",
         {0.6060917377f, 0.4762218297f, 0.3391131163f, 0.2485860288f, 0.1083553135f, -0.0214895606f,
          -0.1207967997f, -0.2374562621f, -0.3345825076f, -0.4994091988f, -0.6293137074f, -0.7154550552f},
         0.0005},
        {{2.0f, 22.6f, 51.0f, 73.0f, 116.4f, 149.4f, 193.7f, 255.6f, 330.2f, 400.0f},
         {7.594f, 7.158f, 7.043f, 6.777f, 6.487f, 6.101f, 5.869f, 5.494f, 4.994f, 4.512f},
         {34.453f, 34.468f, 34.498f, 34.516f, 34.532f, 34.538f, 34.564f, 34.549f, 34.588f, 34.622f},
         -12.55f,
         0.0f,
         320.0f,
         "C",
         {0.2908113599f, 0.2678913474f, 0.2377176881f, 0.2152065337f, 0.1727123708f, 0.1419159174f,
          0.102590844f, 0.0497701019f, -0.009923636913f, -0.06042474508f},
         0.0005},
        {{0.0f, 43.0f, 100.8f, 167.4f, 227.6f, 280.0f, 366.2f, 447.0f, 555.2f, 699.9f, 830.6f, 999.9f},
         {12.82f, 11.993f, 11.102f, 10.108f, 9.311f, 8.686f, 7.698f, 6.967f, 6.071f, 5.025f, 4.418f, 3.667f},
         {35.771f, 35.682f, 35.539f, 35.413f, 35.319f, 35.238f, 35.128f, 35.065f, 34.962f, 34.874f, 34.845f,
          34.776f},
         27.96f,
         0.0f,
         100.0f,
         "C",
         {0.0949710384f, 0.05239406601f, -0.001424305141f, -0.06003210694f, -0.1096876189f, -0.1509095728f,
          -0.2152793407f, -0.2717100382f, -0.3432088494f, -0.4328942597f, -0.5079467297f, -0.5998985171f},
         0.0005},
    };
    expectRows(rows, idDynamicHeight);
}

TEST(BruntVaisala, GivesTheCheckValues)
{
    const WATERROW rows[] = {
        {{0.0f, 100.0f, 900.0f, 1000.0f},
         {20.0f, 18.0f, 6.0f, 5.0f},
         {35.2f, 35.1f, 34.7f, 34.7f},
         -28.27f,
         0.0f,
         0.0f,
         "B",
         {},
         0}, // a gap of 800 m: absent
        {{5.0f, 28.3f, 64.8f, 111.4f, 168.4f, 221.7f, 305.9f, 400.0f},
         {10.118f, 9.809f, 9.256f, 8.659f, 8.016f, 7.459f, 6.682f, 5.988f},
         {35.422f, 35.393f, 35.325f, 35.272f, 35.18f, 35.108f, missing, 34.972f},
         20.61f,
         409.6f,
         0.0f,
         "B",
         {2.085148811f, 1.960295796f, 1.916321278f, 1.612472177f, 1.291703939f, 1.416401505f, 1.359335661f,
          1.132551193f},
         0.005},
        {{5.0f, 35.4f, 73.6f, 109.6f, 160.8f, 241.5f, 316.2f, 400.0f},
         {18.65f, 17.763f, 16.84f, 15.85f, 14.831f, 13.066f, 11.651f, 10.463f},
         {34.878f, 34.86f, 34.876f, 34.832f, 34.825f, 34.78f, 34.778f, 34.763f},
         66.48f,
         441.5f,
         0.0f,
         "B",
         {4.695838928f, 4.52280426f, 4.281320572f, 3.964176416f, 3.742209673f, 3.54018116f, 3.148649693f,
          2.670809269f},
         0.005},
        {{0.0f, 114.3f, 255.6f, 420.1f, 587.1f, 794.4f, 1015.7f, 1336.2f, 1600.2f, 1999.8f},
         {15.589f, 13.207f, 10.814f, 8.503f, 6.8f, 5.182f, 4.078f, 3.015f, 2.484f, 2.026f},
         {34.785f, 34.763f, 34.745f, 34.723f, 34.717f, 34.731f, 34.686f, 34.723f, 34.72f, 34.707f},
         -65.16f,
         2044.8f,
         0.0f,
         "C",
         {3.928576946f, 3.467313051f, 2.97134614f, 2.488069057f, 2.102979898f, 1.63720572f, 1.27450037f,
          1.091988444f, 0.8110686541f, 0.4440754056f},
         0.005},
        {{5.0f, 120.2f, 237.3f, 342.5f, 462.9f, 574.8f, 716.2f, 890.7f, 1129.6f, 1387.2f, 1619.1f, 2000.0f},
         {8.271f, 7.101f, 6.091f, 5.408f, 4.626f, 4.231f, 3.618f, 3.089f, 2.517f, 2.19f, 2.002f, 1.822f},
         {35.436f, 35.26f, 35.125f, 35.008f, 34.928f, 34.884f, 34.811f, 34.781f, 34.73f, 34.721f, 34.721f,
          34.715f},
         12.65f,
         0.0f,
         0.0f,
         "C",
         {1.487823009f, 0.995716691f, 0.3995020688f, 0.3509949744f, 0.8118298054f, 0.6268895864f,
          0.7048562765f, 0.7483658195f, 0.6163515449f, 0.606436193f, 0.525416851f, 0.3663528562f},
         0.005},
        {{5.0f, 63.2f, 144.4f, 218.8f, 294.1f, 380.0f, 517.2f, 638.7f, 815.1f, 1000.0f},
         {17.462f, 15.916f, missing, 12.639f, 11.247f, 10.051f, 8.246f, 7.09f, 5.588f, 4.561f},
         {35.499f, 35.372f, 35.243f, 35.168f, 35.08f, 34.991f, 34.912f, 34.864f, 34.822f, 34.772f},
         -25.56f,
         0.0f,
         0.0f,
         "B",
         {3.953347683f, 3.571653605f, 3.335700274f, 3.138842106f, 2.664173126f, 2.449584484f, 2.170949459f,
          1.94359827f, 1.604712725f, 1.210490346f},
         0.005},
        {{0.0f, 21.8f, 46.7f, 71.7f, 103.9f, 132.4f, 161.3f, 205.3f, 269.2f, 321.4f, 399.9f},
         {16.077f, 15.56f, 15.024f, 14.461f, 13.794f, 13.166f, 12.625f, 11.829f, 10.742f, 9.966f, 9.019f},
         {35.747f, 35.735f, 35.643f, 35.586f, 35.525f, 35.466f, missing, 35.319f, 35.221f, 35.171f, 35.075f},
         -69.89f,
         419.5f,
         0.0f,
         "B",
         {4.003722191f, 3.256554365f, 2.846574783f, 3.06755209f, 3.072444439f, 2.883526802f, 2.64889884f,
          2.550063372f, 2.507738113f, 2.214912415f, 1.78175652f},
         0.005},
    };
    expectRows(rows, idBruntVaisala);
}

// A cast of warm water over cold every 50 m down to `deepest`.
WATERROW castTo(float deepest, const char* type = "C")
{
    WATERROW row{{}, {}, {}, 20, 0, 0, type, {}, 0};
    for (float depth = 0; depth <= deepest; depth += 50) {
        row.depth.push_back(depth);
        row.temperature.push_back(4 + 16 * std::exp(-depth / 400));
        row.salinity.push_back(34.7f + 0.5f * std::exp(-depth / 300));
    }
    return row;
}

TEST(DynamicHeight, IsAbsentForAGapThatTheCoverageRefusesWhilePotentialTemperatureExists)
{
    RMemoryCast cast;
    cast.store({{0, 100, 900, 1000}, {20, 18, 6, 5}, {35.2f, 35.1f, 34.7f, 34.7f}});
    const int height = cast.add(idDynamicHeight, {1, 2, 3});
    const int theta = cast.add(idPotentialTemperature, {1, 2, 3});
    cast.compute();
    EXPECT_FALSE(cast.present(height).has_value());
    EXPECT_EQ(cast.count(height), 0);
    EXPECT_TRUE(cast.present(theta).has_value());
}

TEST(DynamicHeight, IsAbsentForAReferenceBelowTheCast)
{
    RMemoryCast cast;
    store(cast, castTo(1500));
    EXPECT_FALSE(cast.derived(idDynamicHeight, {1, 2, 3}, 2000).has_value());
    EXPECT_TRUE(cast.derived(idDynamicHeight, {1, 2, 3}, 1500).has_value());
}

TEST(DynamicHeight, IsZeroAtTheFirstLevelForAReferenceOfZero)
{
    RMemoryCast cast;
    store(cast, castTo(1500));
    const auto heights = cast.derived(idDynamicHeight, {1, 2, 3}, 0);
    ASSERT_TRUE(heights.has_value());
    EXPECT_NEAR(heights->front(), 0, 1e-6);
    EXPECT_LT(heights->back(), -1);
}

TEST(DynamicHeight, ALevelWithoutTemperatureIsFilled)
{
    WATERROW row = castTo(1000);
    RMemoryCast whole, holed;
    store(whole, row);
    row.temperature[7] = missing;
    store(holed, row);
    const auto expected = whole.derived(idDynamicHeight, {1, 2, 3});
    const auto heights = holed.derived(idDynamicHeight, {1, 2, 3});
    ASSERT_TRUE(expected && heights);
    EXPECT_NEAR((*heights)[7], (*expected)[7], 0.005);
    EXPECT_NEAR(heights->back(), expected->back(), 0.005);
}

TEST(DynamicHeight, ALevelWithoutADepthIsMissingAndLeavesTheOthersAlone)
{
    WATERROW row = castTo(1000);
    row.depth[7] = missing;
    RMemoryCast cast;
    cast.store({row.depth, row.temperature, row.salinity});
    const auto heights = cast.derived(idDynamicHeight, {1, 2, 3});
    ASSERT_TRUE(heights.has_value());
    EXPECT_EQ((*heights)[7], missing);
    EXPECT_NE((*heights)[8], missing);
    EXPECT_EQ(cast.count(4), 20);
}

// Below 101 m there is no temperature, and the windows of the last two levels, which reach far down, hold too
// narrow a part of the profile for a line.
void storeWithAGapBelow101Metres(RMemoryCast& cast)
{
    WATERROW row = castTo(100);
    row.depth.insert(row.depth.end(), {101, 800});
    row.temperature.insert(row.temperature.end(), {12, missing});
    row.salinity.insert(row.salinity.end(), {35, 35});
    store(cast, row);
    cast.with.coverage = {2, 10, 5000, 0, 5000};
}

TEST(DynamicHeight, IsMissingFromTheFirstGapThatCantBeFilled)
{
    RMemoryCast cast;
    storeWithAGapBelow101Metres(cast);
    const auto heights = cast.derived(idDynamicHeight, {1, 2, 3});
    ASSERT_TRUE(heights.has_value());
    EXPECT_NE((*heights)[2], missing);
    EXPECT_EQ((*heights)[3], missing);
    EXPECT_EQ((*heights)[4], missing);
    EXPECT_EQ(cast.count(4), 3);
}

TEST(DynamicHeight, IsAbsentIfItIsMissingAtTheReference)
{
    RMemoryCast cast;
    storeWithAGapBelow101Metres(cast);
    EXPECT_TRUE(cast.derived(idDynamicHeight, {1, 2, 3}, 50).has_value());
    EXPECT_FALSE(cast.derived(idDynamicHeight, {1, 2, 3}, 800).has_value());
}

TEST(DynamicHeight, TheFlagIsTheLargestOfTheSources)
{
    RMemoryCast cast;
    store(cast, castTo(1000));
    cast.station.flags[static_cast<std::size_t>(cast.station.offset[3]) + 5] = 4;
    const int height = cast.add(idDynamicHeight, {1, 2, 3});
    cast.compute();
    EXPECT_EQ(cast.flag(height, 5), 4);
    EXPECT_EQ(cast.flag(height, 6), 0);
}

// Published: 14.57836 cycles an hour at 1001 dbar, computed with 3600 / (2 pi) (Fofonoff and Millard, 1983).
TEST(BuoyancyFrequency, AgreesWithThePublishedValue)
{
    const double published = 14.57836 * 573.066 / (1800 / std::numbers::pi);
    EXPECT_NEAR(seawater::buoyancyFrequency({1000, 5, 35}, {1002, 4, 35}, 9.80655), published, 5e-4);
}

TEST(BuoyancyFrequency, IsNegativeForHeavyWaterOverLight)
{
    EXPECT_LT(seawater::buoyancyFrequency({1000, 4, 35}, {1002, 5, 35}, 9.80655), -14);
}

// A step of 3 degC within a metre.
WATERROW castWithAStep(const char* type)
{
    WATERROW row{{}, {}, {}, 20, 0, 0, type, {}, 0};
    for (int k = 0; k <= 1000; ++k) {
        row.depth.push_back(static_cast<float>(k));
        row.temperature.push_back((k > 700 ? 7.0f : 10.0f) - 0.002f * static_cast<float>(k));
        row.salinity.push_back(35);
    }
    return row;
}

TEST(BruntVaisala, ACtdCastIsTakenAtItsOwnLevelsAndABottleCastOnAGrid)
{
    RMemoryCast ctd, bottle;
    store(ctd, castWithAStep("C"));
    store(bottle, castWithAStep("B"));
    const auto sharp = ctd.derived(idBruntVaisala, {1, 2, 3});
    const auto smooth = bottle.derived(idBruntVaisala, {1, 2, 3});
    ASSERT_TRUE(sharp && smooth);
    EXPECT_GT(*std::max_element(sharp->begin(), sharp->end()),
              2 * *std::max_element(smooth->begin(), smooth->end()));
}

TEST(BruntVaisala, HeavyWaterOverLightIsNegative)
{
    RMemoryCast cast;
    cast.store({{0, 100, 200, 300}, {5, 8, 11, 14}, {35, 35, 35, 35}});
    const auto values = cast.derived(idBruntVaisala, {1, 2, 3});
    ASSERT_TRUE(values.has_value());
    for (const float value : *values) EXPECT_LT(value, 0);
}

TEST(BruntVaisala, LevelsAtOneDepthGiveNoFrequency)
{
    RMemoryCast cast;
    cast.store({{0, 100, 100, 200, 300}, {14, 11, 5, 8, 5}, {35, 35, 35, 35, 35}});
    const auto values = cast.derived(idBruntVaisala, {1, 2, 3});
    ASSERT_TRUE(values.has_value());
    for (const float value : *values) {
        EXPECT_NE(value, missing);
        EXPECT_LT(std::abs(value), 20);
    }
}

TEST(VerticalDerivative, OfALineIsItsSlopeAKilometre)
{
    RMemoryCast cast;
    FLOATS depth, values;
    for (int k = 0; k <= 20; ++k) {
        depth.push_back(50.0f * static_cast<float>(k));
        values.push_back(20 - 0.01f * depth.back());
    }
    cast.store({depth, values});
    const int first = cast.add(idVerticalDerivative, {1, 2});
    const int second = cast.add(idSecondDerivative, {1, 2});
    cast.compute();
    const auto slopes = cast.present(first), curvatures = cast.present(second);
    ASSERT_TRUE(slopes && curvatures);
    for (const float slope : *slopes) EXPECT_NEAR(slope, -10, 1e-2);
    for (const float curvature : *curvatures) EXPECT_NEAR(curvature, 0, 0.5);
    EXPECT_EQ(cast.count(first), 21);
}

TEST(VerticalDerivative, ALevelWithoutADepthIsMissingAndLeavesTheOthersAlone)
{
    RMemoryCast whole, holed;
    whole.store({{0, 100, 200, 300, 400}, {5, 4, 3, 2, 1}});
    holed.store({{0, 100, missing, 200, 300, 400}, {5, 4, 9, 3, 2, 1}});
    const auto expected = whole.derived(idVerticalDerivative, {1, 2});
    const auto values = holed.derived(idVerticalDerivative, {1, 2});
    ASSERT_TRUE(expected && values);
    EXPECT_EQ((*values)[2], missing);
    EXPECT_FLOAT_EQ((*values)[1], (*expected)[1]);
    EXPECT_FLOAT_EQ((*values)[3], (*expected)[2]);
    EXPECT_EQ(holed.count(3), 6); // whole profiles count all of their levels
}

TEST(VerticalQuantities, OfWholeProfilesCountAllLevelsAndOthersTheirValues)
{
    WATERROW row = castTo(1000);
    row.depth[7] = missing;
    RMemoryCast cast;
    cast.store({row.depth, row.temperature, row.salinity});
    const int levels = cast.station.levels();
    for (const int id : {idVerticalDerivative, idVerticalIntegral, idSecondDerivative}) {
        const int number = cast.add(id, {1, 2});
        cast.compute();
        EXPECT_EQ(cast.count(number), levels) << id;
    }
    for (const int id : {idDynamicHeight, idBruntVaisala}) {
        const int number = cast.add(id, {1, 2, 3});
        cast.compute();
        EXPECT_EQ(cast.count(number), levels - 1) << id;
    }
}

TEST(VerticalIntegral, OfAConstantIsDepthInKilometresTimesIt)
{
    RMemoryCast cast;
    cast.store({{0, 200, 400, 600, 800, 1000}, {2, 2, 2, 2, 2, 2}});
    const auto fromSurface = cast.derived(idVerticalIntegral, {1, 2}, 0);
    const auto from400 = cast.derived(idVerticalIntegral, {1, 2}, 400);
    const auto fromBelow = cast.derived(idVerticalIntegral, {1, 2}, 5000); // from the deepest level then
    ASSERT_TRUE(fromSurface && from400 && fromBelow);
    EXPECT_NEAR(fromSurface->back(), 2, 1e-4);
    EXPECT_NEAR(from400->front(), -0.8, 1e-4);
    EXPECT_NEAR(from400->back(), 1.2, 1e-4);
    EXPECT_NEAR(fromBelow->back(), 0, 1e-4);
}

// The running integral at each level, from the surface on, summed over so many points of the grid.
FLOATS integralOver(const FLOATS& depth, const FLOATS& values, std::size_t points)
{
    std::array<float, seawater::stretchedPoints> grid{}, onGrid{};
    seawater::stretchedGrid(grid, depth.front(), depth.back(), seawater::stretchFactor);
    seawater::interpolateProfile(depth, values, missing, grid, onGrid, nullptr);
    FLOATS sums(1, 0.0f), result(depth.size());
    double sum = 0;
    for (std::size_t i = 1; i < points; ++i) {
        sum += 0.0005 * (static_cast<double>(grid[i]) - grid[i - 1]) *
               (static_cast<double>(onGrid[i]) + onGrid[i - 1]);
        sums.push_back(static_cast<float>(sum));
    }
    seawater::interpolateProfile(std::span(grid).first(points), sums, missing, depth, result, nullptr);
    return result;
}

TEST(VerticalIntegral, TheLastPointOfTheGridPlaysNoPart)
{
    FLOATS depth, values;
    for (int k = 0; k <= 10; ++k) {
        depth.push_back(100.0f * static_cast<float>(k));
        values.push_back(k < 10 ? 0.0f : 1000.0f);
    }
    RMemoryCast cast;
    cast.store({depth, values});
    const auto integral = cast.derived(idVerticalIntegral, {1, 2});
    ASSERT_TRUE(integral.has_value());
    const float without = integralOver(depth, values, 61).back(),
                with = integralOver(depth, values, 62).back();
    ASSERT_GT(std::abs(with - without), 0.1) << "the cast tells the two apart";
    EXPECT_NEAR(integral->back(), without, 0.01);
}

TEST(VerticalIntegral, AReferenceAboveTheFirstPointFollowsTheLineThere)
{
    RMemoryCast cast;
    cast.store({{50, 200, 400, 600, 800, 1000}, {2, 2, 2, 2, 2, 2}});
    const auto values = cast.derived(idVerticalIntegral, {1, 2}, 0);
    ASSERT_TRUE(values.has_value());
    EXPECT_NEAR(values->front(), 0.1, 1e-3);
    EXPECT_NEAR(values->back(), 2, 1e-3);
}

TEST(VerticalQuantities, AreAbsentWithoutTheirSources)
{
    RMemoryCast cast;
    cast.store({{0, 100, 200, 300}, {5, 4, 3, 2}, {}});
    for (const int id : {idDynamicHeight, idBruntVaisala})
        EXPECT_FALSE(cast.derived(id, {1, 2, 3}).has_value()) << id;
    for (const int id : {idVerticalDerivative, idVerticalIntegral, idSecondDerivative})
        EXPECT_FALSE(cast.derived(id, {1, 3}).has_value()) << id;
}

} // namespace
} // namespace variables
