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

// The target is a variable of the collection, by its number or label, or a metavariable of spreadsheets: one
// of metaLabels, or cruise, station, type, date, time, lon, lat, bottom. The row is then one of headerRows,
// by its id.
struct ASSOCIATIONSETTING {
    std::string source, target; // in UTF-8
    CHOSENCONVERSION conversion;
};

// The metavariable that a target names, -1 if it names none.
[[nodiscard]] int metaNamed(std::string_view target);

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

// Sets one of them: sep (TAB, ;, SPACE, / or their numbers from 0), header_line, first_data_line, missing,
// default_cruise, default_station, default_type, default_date (mm/dd/yyyy), default_time (hh:mm),
// default_lon, default_lat, default_bottom, check, existing, overwrite, assoc
// ("source"="target"[:conversion]), cruise ("source"="target"). A conversion is the number or the label of a
// row of variableConversions, or the id or label of one of headerRows; linear:a:b is the general one. A later
// assoc or cruise replaces one of the same source, a later assoc one of the same target. An empty default
// takes it back. Returns what is wrong, empty if nothing is; then the settings are as they were.
[[nodiscard]] std::string setImportSetting(IMPORTSETTINGS& settings, std::string_view key,
                                           std::string_view value);

// Settles an import by settings alone. What they leave open is as without a settler. A file in no standard
// layout needs its separator, and a column or a default for date, longitude and latitude; what is missing is
// told, and the import ends there.
class RSettingsSettler final : public RImportSettler {
public:
    RSettingsSettler(const IMPORTSETTINGS& settings, common::RUser& user) : settings_(settings), user_(user)
    {
    }

    [[nodiscard]] bool asks() const override { return false; }
    void prepare(const std::string& path, SPREADSHEETDESC& desc) override;
    [[nodiscard]] bool settleProperties(SPREADSHEETDESC& desc,
                                        std::span<const std::string> firstLines) override;
    [[nodiscard]] bool arrangeColumns(SPREADSHEETDESC& desc, std::span<const std::string> labels) override;
    [[nodiscard]] bool settleHeaderVariables(SPREADSHEETDESC& desc,
                                             std::span<const std::string> labels) override;
    [[nodiscard]] bool settleImport(IMPORTCHOICES& choices) override;
    [[nodiscard]] int identify(std::string_view task, std::string_view meaning,
                               std::span<const collection::VARINFO> variables) override;
    [[nodiscard]] std::optional<std::string> chooseDescription(std::string_view listing,
                                                               const std::string& proposal) override;

private:
    [[nodiscard]] bool refuse(const std::string& why);
    [[nodiscard]] bool refuseLayout(const SPREADSHEETDESC& desc, std::span<const std::string> labels);
    [[nodiscard]] bool arrange(const ASSOCIATIONSETTING& association, SPREADSHEETDESC& desc,
                               std::span<const std::string> labels);
    [[nodiscard]] bool associate(IMPORTCHOICES& choices);
    [[nodiscard]] bool associateCruises(IMPORTCHOICES& choices);

    const IMPORTSETTINGS& settings_;
    common::RUser& user_;
    std::string path_; // of the file, for messages
};

} // namespace importing
