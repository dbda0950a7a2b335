#pragma once

// What the import options work on, without their widgets: a copy of the choices of an import.

#include <vector>

#include <QStringList>

#include "collection/varinfo.h"
#include "dialogs/pairedlists.h"
#include "import/importoptions.h"

namespace dialogs {

class REditedImport {
public:
    explicit REditedImport(const importing::IMPORTCHOICES& choices);

    // --- mode
    [[nodiscard]] importing::ImportMode mode() const { return mode_; }
    void setMode(importing::ImportMode mode) { mode_ = mode; }
    // Merge and update look for existing stations in any case; then what was chosen is kept for the other
    // mode.
    [[nodiscard]] bool checksExisting() const;
    void setChecksExisting(bool check) { check_ = check; }
    // False for merge and update of a collection without stations.
    [[nodiscard]] bool isModePossible() const;

    // --- cruises
    [[nodiscard]] QStringList cruiseLines() const;
    [[nodiscard]] QString sourceLabel(int cruise) const;
    void setSourceLabel(int cruise, const QString& label);

    // --- variables. Rows are numbers of variables less one.
    [[nodiscard]] const RPairedLists& pairs() const { return pairs_; }
    void selectSource(int row) { pairs_.selectSource(row); }
    void selectTarget(int row) { pairs_.selectTarget(row); }
    [[nodiscard]] bool mayUseDefault() const { return mayUseDefaults_ && pairs_.mayUseDefault(); }

    // Labels behind "* ", "+ " or two blanks.
    [[nodiscard]] QStringList sourceLines() const;
    [[nodiscard]] QStringList targetLines() const;
    [[nodiscard]] QString sourceName(int row) const;
    [[nodiscard]] QString targetName(int row) const;
    // Where the selected target takes its values from; empty if there is nothing to tell.
    [[nodiscard]] QString linkText() const;

    void associate(float scale = 1, float offset = 0);
    void undo() { pairs_.undo(); }
    [[nodiscard]] float defaultValue(int target) const;
    void useDefault(float value);

    // Gives the choices back, the links in both directions.
    void store(importing::IMPORTCHOICES& choices) const;

private:
    importing::ImportMode mode_;
    bool check_, emptyCollection_, mayUseDefaults_;
    std::vector<importing::CRUISEASSOCIATION> cruises_;
    std::vector<collection::VARINFO> sources_, targets_; // without the one that is no variable
    RPairedLists pairs_;
};

} // namespace dialogs
