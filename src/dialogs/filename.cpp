#include "dialogs/filename.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

#include "dialogs/boxes.h"

namespace dialogs {
namespace {

// ".png" and so on, in order; a pattern without an extension, such as "*", names none.
QStringList extensionsOf(const QString& filters)
{
    static const QRegularExpression pattern(QStringLiteral("\\*(\\.[^\\s;)*?]+)"));
    QStringList all;
    for (auto match = pattern.globalMatch(filters); match.hasNext();) all += match.next().captured(1);
    return all;
}

// A name of a file that isn't there is proposed only where one is to be made.
void setStart(QFileDialog& dialog, const QString& start)
{
    if (start.isEmpty()) return;
    const QFileInfo info(start);
    dialog.setDirectory(info.isDir() ? start : info.path());
    if (info.isFile() || (!info.isDir() && dialog.acceptMode() == QFileDialog::AcceptSave))
        dialog.selectFile(info.fileName());
}

} // namespace

QString withFilterExtension(const QString& name, const QString& chosen, const QString& filters)
{
    for (const QString& extension : extensionsOf(filters)) {
        if (name.endsWith(extension, Qt::CaseInsensitive)) return name;
    }
    return name + extensionsOf(chosen).value(0);
}

QString askOpenName(QWidget* parent, const QString& caption, const QString& filters, const QString& start)
{
    QFileDialog dialog(parent, caption, {}, filters);
    dialog.setObjectName(QStringLiteral("openName"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    setStart(dialog, start);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

QString askSaveName(QWidget* parent, const QString& caption, const QString& filters, const QString& proposal,
                    bool confirmed)
{
    QString start = proposal, filter;
    for (;;) {
        QFileDialog dialog(parent, caption, {}, filters);
        dialog.setObjectName(QStringLiteral("saveName"));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        dialog.setOption(QFileDialog::DontConfirmOverwrite); // it would ask about the name as it was typed
        if (!filter.isEmpty()) dialog.selectNameFilter(filter);
        setStart(dialog, start);
        if (dialog.exec() != QDialog::Accepted) return {};
        filter = dialog.selectedNameFilter();
        start = withFilterExtension(dialog.selectedFiles().value(0), filter, filters);
        if (!confirmed || !QFileInfo::exists(start)) return start;
        if (confirm(parent, caption, start + QStringLiteral(" already exists.\n\nReplace it?"))) return start;
    }
}

} // namespace dialogs
