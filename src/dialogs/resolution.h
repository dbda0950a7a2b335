#pragma once

#include <QDialog>
#include <QSpinBox>

namespace dialogs {

inline constexpr int defaultResolution = 150, highestResolution = 2400; // dots per inch

// Asks for the resolution of a bitmap.
class resolutionDlg : public QDialog {
    Q_OBJECT
public:
    explicit resolutionDlg(int proposed = defaultResolution, QWidget* parent = nullptr);
    [[nodiscard]] int resolution() const { return field_->value(); } // dots per inch, 1 or more

public Q_SLOTS:
    void processOK() { accept(); }

private:
    QSpinBox* field_;
};

} // namespace dialogs
