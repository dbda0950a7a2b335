#pragma once

// Which columns of a spreadsheet hold the stations' labels, dates and positions, as a user settles it,
// without widgets.

#include <span>
#include <string>
#include <vector>

#include <QStringList>

#include "dialogs/pairedlists.h"
#include "import/spreadsheet.h"

namespace dialogs {

class REditedHeader {
public:
    // labels: of the columns, as UTF-8.
    REditedHeader(const importing::SPREADSHEETDESC& desc, std::span<const std::string> labels);

    // With what was settled.
    [[nodiscard]] importing::SPREADSHEETDESC desc() const;

    // Rows are columns from 0, and importing::Meta.
    [[nodiscard]] const RPairedLists& pairs() const { return pairs_; }
    void selectSource(int row) { pairs_.selectSource(row); }
    void selectTarget(int row) { pairs_.selectTarget(row); }

    // Numbers and labels behind "* " or two blanks.
    [[nodiscard]] QStringList sourceLines() const;
    [[nodiscard]] QStringList targetLines() const;
    [[nodiscard]] QString sourceName(int row) const;
    [[nodiscard]] QString targetName(int row) const;
    // Where the selected target comes from: a column and its conversion, or the default.
    [[nodiscard]] QString linkText() const;

    // Joins the selected lines. A date column that counts since some day takes its conversion at once.
    void associate();
    void undo() { pairs_.undo(); }

    // --- conversions
    [[nodiscard]] bool mayConvert() const; // only dates, times and numbers
    // The id of the row that the selected column's label names for a date; -1 if it names none.
    [[nodiscard]] int namedRow() const;
    // False if the row gives nothing that the selected target takes.
    [[nodiscard]] bool isRowPossible(int id) const;
    // True if the row counts from a day that the selected column's label doesn't tell.
    [[nodiscard]] bool needsOrigin(int id) const;
    // Joins the selected lines under a row of timeconversions.h; a and b are those of the linear one.
    void convert(int id, float a = 1, float b = 0);
    // The same for a row that counts from `origin` ("yyyy-mm-dd hh:mm:ss"). False if that is no date.
    [[nodiscard]] bool convertFrom(int id, const QString& origin);

    // --- defaults
    [[nodiscard]] bool mayUseDefault() const { return pairs_.mayUseDefault(); }
    [[nodiscard]] static QString defaultPrompt(int meta);
    [[nodiscard]] QString defaultText(int meta) const;
    // False, with nothing changed, if the text doesn't read as such a value.
    [[nodiscard]] bool setDefault(int meta, const QString& text);

private:
    [[nodiscard]] bool setDate(std::string_view text);
    [[nodiscard]] bool setTime(std::string_view text);
    void clearConversion(int meta);
    [[nodiscard]] QString conversionText(int meta) const;

    importing::SPREADSHEETDESC desc_;
    std::vector<std::string> labels_;
    RPairedLists pairs_;
};

} // namespace dialogs
