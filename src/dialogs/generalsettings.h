#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QSpinBox>

#include "variables/coverage.h"

namespace dialogs {

// The settings that hold for all collections and configurations alike, and the criteria of good coverage.
class generalsettingsDlg : public QDialog {
    Q_OBJECT
public:
    explicit generalsettingsDlg(const variables::COVERAGECRITERIA& coverage, QWidget* parent = nullptr);
    // As they are in the form; before OK those that it began with.
    [[nodiscard]] const variables::COVERAGECRITERIA& coverage() const { return coverage_; }

public Q_SLOTS:
    void processOK();

private:
    [[nodiscard]] QWidget* makeCoverageGroup();
    [[nodiscard]] QLayout* makeGapLine();

    variables::COVERAGECRITERIA coverage_;
    QSpinBox *levels_, *fraction_;
    QLineEdit *gapOffset_, *gapSlope_, *gapLimit_;
};

} // namespace dialogs
