// Compiled once into the library of each floor, so that a floor which holds only headers, or nothing yet,
// still makes a library.
namespace {
[[maybe_unused]] constexpr const char* floorName = NVQ_FLOOR;
}
