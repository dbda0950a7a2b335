// What the window asks and shows for imports, exports and the selection.

#include "app/rappwindow.h"
#include "common/text.h"
#include "dialogs/importsettler.h"
#include "dialogs/outvarsel.h"
#include "dialogs/selcriteria.h"
#include "selection/cruisestations.h"

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
    if (!user_.interactive()) return RSessionView::editCriteria(edited);
    dialogs::CRITERIAMAP map; // points can't be picked on it yet
    map.mapDomain = [this] { return session_.mapDomain(); };
    map.highlightCruise = [this](const std::string& cruise, const std::string& type) {
        highlightCruise(cruise, type);
    };
    const collection::RCollection& open = session_.collection;
    const auto last = open.variables.begin() + open.totalVariableCount + 1;
    dialogs::selcriteriaDlg dialog(
        edited.criteria, edited.polygon,
        {{open.variables.begin(), last}, open.variableCount, selection::cruiseLabels(open)}, std::move(map),
        this);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    takeHighlightAway();
    if (accepted) edited = {dialog.criteria(), dialog.polygon()};
    return accepted;
}

// The stations of a cruise of the inventory, until another one is chosen or the dialog is left.
void RAppWindow::highlightCruise(const std::string& cruise, const std::string& type)
{
    takeHighlightAway();
    user_.status("Identifying stations ...");
    drawDots(selection::findCruiseStations(session_.collection, cruise, type, session_.mapDomain()),
             highlightSize, highlightColor);
    highlighted_ = true;
    statusMessage();
}

void RAppWindow::takeHighlightAway()
{
    if (highlighted_) redraw(false);
    highlighted_ = false;
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
