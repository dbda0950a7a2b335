#pragma once

#include <span>

#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include "collection/varinfo.h"
#include "common/user.h"
#include "dialogs/editedmacro.h"

namespace dialogs {

// Edits macro files.
class macroeditorDlg : public QDialog {
    Q_OBJECT
public:
    // Starts with a new macro. folder: where macro files are asked for. variables: those of the open
    // collection, which are offered as inputs; index 0 is no variable, none at all if nothing is open.
    macroeditorDlg(const QString& folder, std::span<const collection::VARINFO> variables, common::RUser& user,
                   QWidget* parent = nullptr);
    [[nodiscard]] const REditedMacro& edited() const { return work_; }

    // Asks for a file until one is read or the user cancels, which leaves what is there. Before the form is
    // shown the questions lie over its parent.
    void chooseFile();
    // False after a message if that is no macro file.
    [[nodiscard]] bool openFile(const QString& path);

public Q_SLOTS:
    void processAdd();
    void processDelete();
    void processCheck();
    bool processSave();
    bool processSaveAs();
    void reject() override; // asks whether changes are to be saved

private:
    void layOut();
    [[nodiscard]] QWidget* makeInputGroup();
    [[nodiscard]] QWidget* makeTextGroup(const QString& title, QPlainTextEdit* box);
    [[nodiscard]] QLayout* makeFields();
    [[nodiscard]] QLayout* makeButtonRow();
    void connectFields();
    void connectParts();
    void chainTabs();
    [[nodiscard]] QWidget* over(); // what files are asked for over
    [[nodiscard]] bool readBusily(const QString& path, variables::MACRO& macro, variables::MACROFAULT& fault);
    void offerInputs(std::span<const collection::VARINFO> variables);
    void showMacro();
    void showInputs(int selected);
    void showState();
    void takeFormatFields();
    [[nodiscard]] bool mayBeSaved();
    [[nodiscard]] bool saveTo(const QString& path);

    const QString folder_;
    common::RUser& user_;
    REditedMacro work_;
    QLineEdit *label_, *width_, *decimals_, *entry_;
    QPlainTextEdit *expression_, *comment_;
    QListWidget *defined_, *new_;
    QPushButton *add_, *delete_, *check_, *save_, *saveAs_, *close_;
    bool filling_ = false; // the fields are changed from here, not by the user
};

// The macro editor from the question for a file to its end.
void editMacros(const QString& folder, std::span<const collection::VARINFO> variables, common::RUser& user,
                QWidget* parent);

} // namespace dialogs
