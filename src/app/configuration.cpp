#include "app/configuration.h"

#include <array>

#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr std::size_t versionBytes = 8, nameBytes = 31, modeBytes = 4;
constexpr std::size_t headBytes = versionBytes + nameBytes + modeBytes;
constexpr std::string_view mark = "CFG1.";

constexpr auto reasons = std::to_array<std::string_view>(
    {"", "not found!", "is out-dated!", "belongs to different collection!",
     "not supported by installed NVQ version!\n\nUpgrade to the latest NVQ version.",
     "can't be loaded by this version of NVQ yet!"});
static_assert(reasons.size() == static_cast<std::size_t>(ConfigurationResult::notReadable) + 1);

} // namespace

std::string_view configurationReason(ConfigurationResult result)
{
    return reasons[static_cast<std::size_t>(result)];
}

bool parseConfigurationHead(std::string_view bytes, CONFIGURATIONHEAD& head)
{
    if (bytes.size() < headBytes || !bytes.starts_with(mark)) return false;
    std::string_view digits = bytes.substr(mark.size(), versionBytes - mark.size());
    int version = 0;
    if (!common::takeInt(digits, version)) return false;
    head.version = version;
    head.collectionName = common::fieldText(std::span(bytes).subspan(versionBytes, nameBytes));
    return true;
}

ConfigurationResult checkHead(const CONFIGURATIONHEAD& head, std::string_view collectionName)
{
    // The field holds 30 bytes of a name that may be longer.
    const std::string_view name = collectionName.substr(0, nameBytes - 1);
    if (head.version < firstSharedConfiguration && !common::equalsIgnoreCase(head.collectionName, name))
        return ConfigurationResult::otherCollection;
    if (head.version < oldestConfiguration) return ConfigurationResult::outDated;
    if (head.version > newestConfiguration) return ConfigurationResult::tooNew;
    return ConfigurationResult::ok;
}

std::string configurationFile(const std::string& path)
{
    return path.ends_with(".cfg") ? path : path + ".cfg";
}

ConfigurationResult checkConfiguration(const std::string& file, std::string_view collectionName)
{
    const common::FilePtr in = common::openFile(file, "rb");
    if (!in) return ConfigurationResult::notFound;
    std::array<char, headBytes> bytes{};
    if (std::fread(bytes.data(), 1, bytes.size(), in.get()) != bytes.size())
        return ConfigurationResult::notFound;
    CONFIGURATIONHEAD head;
    if (!parseConfigurationHead(std::string_view(bytes.data(), bytes.size()), head))
        return ConfigurationResult::notFound;
    const ConfigurationResult result = checkHead(head, collectionName);
    return result == ConfigurationResult::ok ? ConfigurationResult::notReadable : result;
}

} // namespace app
