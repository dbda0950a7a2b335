#pragma once

// What the dialogs of an import would settle, given beforehand as words and values.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "import/importoptions.h"

namespace importing {

// A row of variableConversions with its constants.
struct CHOSENCONVERSION {
    int row = 0;
    float a = 1, b = 0; // of the general linear transformation
};

struct ASSOCIATIONSETTING {
    std::string source, target; // labels, in UTF-8
    CHOSENCONVERSION conversion;
};

// Empty fields are not settled.
struct IMPORTSETTINGS {
    std::optional<int> separator; // place in `separators`
    std::optional<int> headerLine, firstDataLine;
    std::optional<float> missing;
    std::array<std::optional<std::string>, metaCount> defaults; // of the metavariables
    std::optional<bool> check;                                  // for existing stations
    Existing existing = Existing::replace;
    bool overwrite = false; // a collection that the import of a file makes may replace one
    std::vector<ASSOCIATIONSETTING> associations;
    std::vector<CRUISEASSOCIATION> cruises;
};

// Sets one of them: sep, header_line, first_data_line, missing, default_cruise, default_station,
// default_type, default_date (mm/dd/yyyy), default_time (hh:mm), default_lon, default_lat, default_bottom,
// check, existing, overwrite, assoc ("source"="target"[:conversion]), cruise ("source"="target").
// A conversion is the number or the label of a row of variableConversions; linear:a:b is the general one.
// Returns what is wrong, empty if nothing is; then the settings are as they were.
[[nodiscard]] std::string setImportSetting(IMPORTSETTINGS& settings, std::string_view key,
                                           std::string_view value);

// Settles an import by settings alone. What they leave open is as without a settler; what nobody settled and
// is needed is told as missing, and the import ends there.
class RSettingsSettler final : public RImportSettler {
public:
    RSettingsSettler(const IMPORTSETTINGS& settings, common::RUser& user) : settings_(settings), user_(user)
    {
    }

    [[nodiscard]] bool settleProperties(SPREADSHEETDESC& desc,
                                        std::span<const std::string> firstLines) override;
    [[nodiscard]] bool settleHeaderVariables(SPREADSHEETDESC& desc,
                                             std::span<const std::string> labels) override;
    [[nodiscard]] bool settleImport(IMPORTCHOICES& choices) override;
    [[nodiscard]] int identify(std::string_view task, std::string_view meaning,
                               std::span<const collection::VARINFO> variables) override;
    [[nodiscard]] std::optional<std::string> chooseDescription(std::string_view listing,
                                                               const std::string& proposal) override;

private:
    const IMPORTSETTINGS& settings_;
    common::RUser& user_;
};

} // namespace importing
