#pragma once

// The layout of a spreadsheet as a user corrects it, without widgets.

#include <span>
#include <string>
#include <vector>

#include <QStringList>

#include "import/spreadsheet.h"

namespace dialogs {

class REditedSpreadsheet {
public:
    // firstLines: the first lines of the file, as UTF-8.
    REditedSpreadsheet(const importing::SPREADSHEETDESC& desc, std::span<const std::string> firstLines);

    [[nodiscard]] const importing::SPREADSHEETDESC& desc() const { return desc_; }

    // A number below 2 counts as 1. The data begin behind the header line, which moves their first line if it
    // must.
    void setHeaderLine(int line);
    void setFirstDataLine(int line);
    void setSeparator(int index); // of importing::separators
    // False, with the old one left, if the text is no number.
    [[nodiscard]] bool setMissingValue(const QString& text);

    // The first 9 lines, each behind its number.
    [[nodiscard]] QStringList lines() const;
    // The column labels under the separator.
    [[nodiscard]] QStringList labels() const;
    // True if the header line is one that could be looked at.
    [[nodiscard]] bool knowsHeaderLine() const;

private:
    importing::SPREADSHEETDESC desc_;
    std::vector<std::string> firstLines_;
};

} // namespace dialogs
