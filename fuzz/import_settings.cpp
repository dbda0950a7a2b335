// Any line as a setting of an import: key, "=" and value. What is refused changes nothing, and what is taken
// can be applied.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "common/headlessuser.h"
#include "import/importsettings.h"

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    void note(std::string_view) override {}
};

void apply(const importing::IMPORTSETTINGS& settings)
{
    RSilentUser user;
    importing::RSettingsSettler settler(settings, user);
    importing::SPREADSHEETDESC desc = importing::defaultDescription("casts.txt");
    settler.prepare("casts.txt", desc);
    require(desc.headerLine >= 1 && desc.firstDataLine >= 1);
    const std::vector<std::string> labels = {"Cruise", "Station", "Lon", "Days since 1950-01-01", "Depth"};
    static_cast<void>(importing::findMetaColumns(desc, labels, false, false));
    if (!settler.arrangeColumns(desc, labels)) return;
    for (const int column : desc.metaColumn) require(column >= -1 && column < 5);
    static_cast<void>(settler.settleHeaderVariables(desc, labels));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    importing::IMPORTSETTINGS settings;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::size_t equals = std::min(line.find('='), line.size());
        const std::string_view value = line.substr(std::min(equals + 1, line.size()));
        const std::size_t associations = settings.associations.size();
        const bool refused = !importing::setImportSetting(settings, line.substr(0, equals), value).empty();
        require(!refused || settings.associations.size() == associations);
    }
    apply(settings);
    return 0;
}
