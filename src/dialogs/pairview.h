#pragma once

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>

#include "dialogs/pairedlists.h"

namespace dialogs {

// Two lists beside each other with buttons between them. It tells what the user selects and shows what it is
// given; pairs are the business of its owner.
class RPairView : public QWidget {
    Q_OBJECT
public:
    // The lists are named "sources" and "targets".
    RPairView(const QString& sourceTitle, const QString& targetTitle, QWidget* parent);

    // A button below those that are there.
    [[nodiscard]] QPushButton* addButton(const char* name, const char* caption);
    // The line below the lists.
    void setHint(const QString& hint);
    // Lines that have changed; the selected ones come into sight.
    void show(const RPairedLists& pairs, const QStringList& sourceLines, const QStringList& targetLines);
    // Only another selection; what the user has just selected stays where it is.
    void select(const RPairedLists& pairs);

    [[nodiscard]] QListWidget& sources() { return *sources_; }
    [[nodiscard]] QListWidget& targets() { return *targets_; }

Q_SIGNALS:
    void sourceSelected();
    void targetSelected();
    void targetActivated(); // by a double click

private:
    void connectLists();

    QListWidget *sources_, *targets_;
    QVBoxLayout* buttons_;
    QLabel* hint_;
    bool filling_ = false; // the lists are changed from here, not by the user
};

} // namespace dialogs
