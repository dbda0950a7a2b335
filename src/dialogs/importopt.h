#pragma once

#include <functional>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>

#include "dialogs/editedimport.h"
#include "dialogs/help.h"
#include "dialogs/pairview.h"

namespace dialogs {

// The Import Options: how stations meet those that are there, and which variable goes where.
class importoptDlg : public QDialog {
    Q_OBJECT
public:
    // What a potential temperature needs is identified by the choices; without that, such a conversion is
    // refused.
    explicit importoptDlg(const importing::IMPORTCHOICES& choices, QWidget* parent = nullptr);
    // After OK: what was chosen, into the choices that it was made from.
    void store(importing::IMPORTCHOICES& choices) const { import_.store(choices); }

public Q_SLOTS:
    void newSrcVar();
    void newTrgVar();
    void newSrcCruise(); // another label of the source was typed
    void newTrgCruise(); // another cruise was selected
    void processAssociate();
    void processConvert();
    void processUndo();
    void processUseDefault();
    void processHelp() { showHelp(this, importHelp); }
    void processOK();

private:
    [[nodiscard]] QWidget* makeModes();
    [[nodiscard]] QWidget* makeCruises();
    void makeButtons();
    void newMode();
    void showMode();
    void showPairs();
    void showSelection();
    [[nodiscard]] bool knowsKeyVariables();
    [[nodiscard]] bool askConversion(float& scale, float& offset);

    REditedImport import_;
    const std::function<int(std::string_view task, std::string_view meaning)> identify_;
    const bool mayUseDefaults_;
    QComboBox* mode_;
    QCheckBox* check_;
    QListWidget* cruises_;
    QLineEdit* sourceLabel_;
    RPairView* view_;
    QPushButton *associate_ = nullptr, *convert_ = nullptr, *undo_ = nullptr, *useDefault_ = nullptr;
};

} // namespace dialogs
