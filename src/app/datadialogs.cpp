// What the window asks and shows for imports, exports and the selection.

#include "app/rappwindow.h"
#include "common/text.h"
#include "dialogs/importsettler.h"
#include "dialogs/outvarsel.h"

namespace app {
namespace {

constexpr float importedShare = 0.1f;  // of the map's dot size, cm
constexpr float highlightSize = 0.23f; // cm
constexpr int highlightColor = 2;

} // namespace

std::unique_ptr<importing::RImportSettler> RAppWindow::importSettler()
{
    if (!user_.interactive()) return RSessionView::importSettler();
    return std::make_unique<dialogs::RDialogSettler>(this);
}

std::optional<std::vector<int>> RAppWindow::chooseOutputVariables(const std::vector<int>& proposed)
{
    if (!user_.interactive()) return RSessionView::chooseOutputVariables(proposed);
    const collection::RCollection& open = session_.collection;
    const auto count = static_cast<std::size_t>(open.totalVariableCount);
    dialogs::outvarselDlg dialog(std::span(open.variables).first(count + 1), proposed, this);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.chosen();
}

bool RAppWindow::editCriteria(EDITEDCRITERIA& edited)
{
    return RSessionView::editCriteria(edited);
}

// Behind the next picture the dots are part of the map.
void RAppWindow::drawDots(std::span<const selection::SELECTEDSTATION> stations, float size, int color)
{
    if (drawing_ || session_.stale) return;
    canvas_->paintPicture(false, [&](QPainter& painter) {
        graphics::DrawStationDots(&painter, session_.setup, stations, size, color);
    });
    canvas_->showNow();
}

void RAppWindow::showImported(std::span<const selection::SELECTEDSTATION> stations)
{
    const graphics::MAPWINDOW& map = session_.setup.map;
    drawDots(stations, map.dotSize * importedShare, map.dotColor);
}

} // namespace app
