#pragma once

// Settles the files of a list: what was answered for one file holds for those that look the same.

#include <string>
#include <vector>

#include "import/importoptions.h"

namespace importing {

class RListSettler final : public RImportSettler {
public:
    // Asks `settler` where no answer is known.
    explicit RListSettler(RImportSettler& settler) : settler_(settler) {}

    [[nodiscard]] bool asks() const override { return settler_.asks(); }
    void prepare(const std::string& path, SPREADSHEETDESC& desc) override { settler_.prepare(path, desc); }
    [[nodiscard]] bool settleProperties(SPREADSHEETDESC& desc,
                                        std::span<const std::string> firstLines) override;
    [[nodiscard]] bool arrangeColumns(SPREADSHEETDESC& desc, std::span<const std::string> labels) override
    {
        return settler_.arrangeColumns(desc, labels);
    }
    [[nodiscard]] bool settleHeaderVariables(SPREADSHEETDESC& desc,
                                             std::span<const std::string> labels) override;
    [[nodiscard]] bool settleImport(IMPORTCHOICES& choices) override;
    [[nodiscard]] int identify(std::string_view task, std::string_view meaning,
                               std::span<const collection::VARINFO> variables) override;
    [[nodiscard]] std::optional<std::string> chooseDescription(std::string_view listing,
                                                               const std::string& proposal) override;

private:
    struct SETTLEDIMPORT {
        IMPORTCHOICES choices; // its spans are not valid any more
        std::vector<collection::VARINFO> sources, targets;
    };

    RImportSettler& settler_;
    std::string propertiesLine_; // the first line of the file that was asked about
    std::optional<SPREADSHEETDESC> properties_;
    std::vector<std::string> labels_;
    std::optional<SPREADSHEETDESC> headerVariables_;
    bool keepsCruise_ = false; // its cruise label is from the name of each file
    std::optional<SETTLEDIMPORT> import_;
    std::string description_; // of all listings; empty if none was chosen yet
    bool besideEach_ = false; // each listing has its own
};

} // namespace importing
