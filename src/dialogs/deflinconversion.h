#pragma once

#include <QDialog>
#include <QLineEdit>

namespace dialogs {

// Asks for the two numbers of y = a x + b.
class deflinconversionDlg : public QDialog {
    Q_OBJECT
public:
    explicit deflinconversionDlg(const QString& caption, QWidget* parent = nullptr);
    [[nodiscard]] float a() const { return numberA_; }
    [[nodiscard]] float b() const { return numberB_; }

public Q_SLOTS:
    void processOK(); // stays, after a message, with a field that holds no number

private:
    [[nodiscard]] bool take(QLineEdit* field, const char* name, float& number);

    QLineEdit *fieldA_, *fieldB_;
    float numberA_ = 1, numberB_ = 0;
};

} // namespace dialogs
