#include "app/rappwindow.h"

#include <filesystem>

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>
#include <QInputDialog>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QUrl>

#include "app/installationcheck.h"
#include "app/position.h"
#include "app/sessioncommands.h"
#include "common/files.h"
#include "common/text.h"
#include "dialogs/creation.h"
#include "dialogs/filename.h"
#include "dialogs/quickinstall.h"
#include "dialogs/resolution.h"
#include "dialogs/variableeditor.h"
#include "graphics/drawing.h"

namespace app {
namespace {

RAppWindow* theWindow = nullptr;

// Widths of the right and the middle field of the status line, in average letters; space between the fields.
constexpr int positionLetters = 28, stationLetters = 36, statusMargins = 24;
constexpr int lineLetters = 70; // a question for a line of text shows so many
constexpr int boldWeight = 3;   // index of the weight table from which on a font is bold

QString fromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

QLabel* makeField(QStatusBar* bar)
{
    auto* const field = new QLabel(bar);
    field->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    bar->addWidget(field);
    return field;
}

// The setting stays as it is: it may be meant for another machine.
std::string familyToDrawWith(const std::string& wanted)
{
    std::vector<std::string> installed;
    for (const QString& family : QFontDatabase::families()) installed.push_back(family.toStdString());
    const QString substitute = QFontInfo(QFont(fromUtf8(wanted))).family();
    return installedFamily(wanted, substitute.toStdString(), installed);
}

} // namespace

RAppWindow* mainWindow()
{
    return theWindow;
}

RAppWindow::RAppWindow(std::string programPath, bool onScreen)
    : programPath_(std::move(programPath)), onScreen_(onScreen), startDirectory_(common::absolutePath(".")),
      session_(user_, *this)
{
    theWindow = this;
    setObjectName(QStringLiteral("main window"));
    setAcceptDrops(true);
    setDefaultSettings();
    readSettingsFile();
    applyFonts();
    buildStatusBar();
    scrollView_ = new QScrollArea(this);
    canvas_ = new RCanvas;
    scrollView_->setWidget(canvas_);
    scrollView_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setCentralWidget(scrollView_);
    chooseDevice();
    user_.attach({this, statusLabel_, stationLabel_, &session_, onScreen_});
    canvas_->mouseMoved = [this](QPoint pixel) {
        positionLabel_->setText(fromUtf8(positionText(session_.setup, session_.collection, pixel)));
    };
    captionChanged(session_.title);
}

RAppWindow::~RAppWindow()
{
    session_.close(true);
    theWindow = nullptr;
}

// --- settings

// Without a screen text has the smallest factor, so that pictures come out the same on every machine.
void RAppWindow::setDefaultSettings()
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (!onScreen_ || !screen) return;
    SETTINGS& settings = session_.settings;
    const QFontMetrics letters(QApplication::font());
    settings.fontScaleFac = defaultFontScale(screen->size().height(), letters.height());
    settings.txtFontPtSize = defaultTextPoints(settings.fontScaleFac);
    settings.fontSizesKnown = true;
}

void RAppWindow::readSettingsFile()
{
    const std::string path = settingsPath(QDir::homePath().toStdString());
    if (common::fileSize(path) >= 0) settingsFile_.read(path); // the file is optional
    readSettings(settingsFile_, session_.settings);
}

void RAppWindow::writeSettingsFile()
{
    SETTINGS& settings = session_.settings;
    if (onScreen_) {
        settings.showMaximized = isMaximized();
        if (!settings.showMaximized) {
            settings.left = x();
            settings.top = y();
            settings.width = width();
            settings.height = height();
        }
    }
    storeSettings(settings, settingsFile_);
    settingsFile_.write(settingsPath(QDir::homePath().toStdString()));
}

void RAppWindow::applyFonts()
{
    const SETTINGS& settings = session_.settings;
    graphics::FONTSETTINGS& fonts = graphics::fontSettings();
    fonts.factor = settings.fontScaleFac;
    fonts.family = familyToDrawWith(settings.fontName);
    fonts.weight = settings.fontWeight;
    fonts.italic = settings.fontItalic != 0;
    fonts.underline = settings.fontUnderline != 0;
    fonts.psFamily = graphics::postScriptFamily(settings.fontName, settings.fontWeight >= boldWeight,
                                                settings.fontItalic != 0);
}

void RAppWindow::restoreGeometryOfSettings()
{
    const SETTINGS& settings = session_.settings;
    resize(settings.width, settings.height);
    move(settings.left, settings.top);
    if (!onScreen_) return; // a window that nobody sees needs no place
    settings.showMaximized ? showMaximized() : showNormal();
}

// --- what the window is made of

void RAppWindow::buildStatusBar()
{
    QStatusBar* const bar = statusBar();
    bar->setSizeGripEnabled(false);
    statusLabel_ = makeField(bar);
    stationLabel_ = makeField(bar);
    positionLabel_ = makeField(bar);
    statusLabel_->setMinimumWidth(1);
}

// The canvas fills the screen without the window's own parts; where there is no screen it has the reference
// size, so that pictures come out the same on every machine.
void RAppWindow::chooseDevice()
{
    graphics::DEVICE device;
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (onScreen_ && screen) {
        const QFontMetrics panel(QFont(QStringLiteral("courier")));
        const int panelHeight = (panel.leading() + panel.height()) * 3 + 16;
        const QSize desktop = screen->availableGeometry().size();
        const int title = style()->pixelMetric(QStyle::PM_TitleBarHeight);
        const int parts =
            title + menuBar()->sizeHint().height() + statusBar()->sizeHint().height() + panelHeight;
        device =
            RCanvas::deviceFor({desktop.width() - 2 * scrollView_->frameWidth(), desktop.height() - parts});
    }
    canvas_->setDevice(device);
    graphics::drawState().device = device;
}

void RAppWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    fillStatusBar();
}

// The right field has room for a position, the middle one for a station's name, the left one takes the rest.
void RAppWindow::fillStatusBar()
{
    const int letter = fontMetrics().averageCharWidth();
    const int right = std::min((width() + 6) * 20 / 100, positionLetters * letter);
    const int middle = std::min((width() - right) * 40 / 100, stationLetters * letter);
    positionLabel_->setFixedWidth(right);
    stationLabel_->setFixedWidth(middle);
    statusLabel_->setFixedWidth(std::max(width() - right - middle - statusMargins, 1));
}

void RAppWindow::captionChanged(const std::string& caption)
{
    setWindowTitle(fromUtf8(caption));
}

void RAppWindow::statusMessage()
{
    user_.status(session_.statusText());
}

void RAppWindow::recentFilesChanged()
{
    writeSettingsFile();
}

// --- start

bool RAppWindow::checkInstallation()
{
    const std::string executable = QCoreApplication::applicationFilePath().toStdString();
    ENVIRONMENT environment = processEnvironment(programPath_, executable);
    environment.home = QDir::homePath().toStdString();
    AskSetup ask; // none where nobody can answer
    if (user_.interactive()) {
        ask = [this, temp = systemTemp(environment)](const SETUPSETTINGS& proposal) {
            return askSetup(proposal, temp);
        };
    }
    SETUPSETTINGS& setup = session_.settings.setup;
    const InstallationResult result =
        app::checkInstallation(environment, setup, session_.installation, user_, ask);
    if (result == InstallationResult::entered) {
        storeSetup(setup, settingsFile_);
        writeSettingsFile();
    }
    if (result != InstallationResult::bad && !session_.installation.root.empty()) {
        prepareUserTree(session_.installation, user_);
        return true;
    }
    user_.about("Bad NVQ installation...", "See installation instructions on how to install and setup NVQ.");
    failed_ = true;
    requestClose();
    return false;
}

void RAppWindow::loadHistories()
{
    for (const std::string& fault :
         variables::loadHistories(session_.installation.atmhist, session_.surroundings.histories))
        user_.note(fault);
}

void RAppWindow::workThrough(std::span<const ARGUMENT> arguments)
{
    for (const ARGUMENT& argument : arguments) {
        switch (argument.kind) {
        case ARGUMENT::quit:
            requestClose();
            break;
        case ARGUMENT::commandFile:
            runCommandFile(argument.path.empty() ? argument.path
                                                 : common::makeAbsolute(argument.path, startDirectory_));
            break;
        case ARGUMENT::file:
            if (!openFile(argument.path) && !onScreen_) failed_ = true;
            break;
        }
    }
}

bool RAppWindow::runCommandFile(const std::string& path)
{
    const bool complete = executeCommandFile(path, session_, *this, user_);
    if (!complete) failed_ = true;
    statusMessage();
    if (session_.stale) showPicture(); // inside the file nothing was drawn
    return complete;
}

// --- the picture

void RAppWindow::showPicture()
{
    if (!onScreen_ || closed_ || session_.runMode == commandFileRun) return;
    redraw(true);
}

void RAppWindow::redraw(bool full)
{
    if (drawing_ || !session_.collection.isOpen) return;
    drawing_ = true;
    canvas_->paintPicture(
        full, [&](QPainter& painter) { session_.draw(&painter, full, [this] { canvas_->showNow(); }); });
    drawing_ = false;
    statusMessage();
}

void RAppWindow::paintIdleScreen()
{
    session_.state = stateIdle;
    session_.stale = true;
    statusMessage();
    if (!onScreen_ || closed_) return;
    const QPixmap logo(fromUtf8(session_.installation.root + "nvq.bmp"));
    canvas_->paintPicture(true, [&](QPainter& painter) {
        const QRect page = canvas_->rect();
        QFont font(fromUtf8(session_.settings.fontName));
        font.setPixelSize(std::max(page.height() / 12, 1));
        font.setBold(true);
        const QRect upper(page.left(), page.top(), page.width(), page.height() / 2);
        const QRect lower(page.left(), upper.bottom(), page.width(), page.height() / 4);
        if (!logo.isNull()) painter.drawPixmap(upper.center() - logo.rect().center(), logo);
        painter.setFont(font);
        if (logo.isNull())
            painter.drawText(upper, Qt::AlignHCenter | Qt::AlignBottom, fromUtf8(session_.title));
        font.setPixelSize(std::max(page.height() / 36, 1));
        font.setBold(false);
        painter.setFont(font);
        painter.drawText(lower, Qt::AlignHCenter | Qt::AlignTop, fromUtf8("\n" + session_.version));
    });
}

// --- questions

int RAppWindow::askResolution()
{
    if (!user_.interactive()) return 0;
    dialogs::resolutionDlg dialog(dialogs::defaultResolution, this);
    return dialog.exec() == QDialog::Accepted ? dialog.resolution() : 0;
}

std::optional<CREATIONCHOICE> RAppWindow::chooseVariables(const std::string& name)
{
    if (!user_.interactive()) return RSessionView::chooseVariables(name);
    dialogs::creationDlg dialog(fromUtf8(name), this);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return CREATIONCHOICE{dialog.variableSet(), {}}; // the session asks for a template
}

bool RAppWindow::editVariables(const std::string& name, std::vector<collection::VARINFO>& variables,
                               std::span<const collection::VARINFO> old)
{
    if (!user_.interactive()) return RSessionView::editVariables(name, variables, old);
    const QString title = QStringLiteral("Variables of ") + fromUtf8(name) + QStringLiteral(" ...");
    dialogs::variableeditorDlg dialog(title, variables, {old.begin(), old.end()}, this);
    if (dialog.exec() != QDialog::Accepted) return false;
    variables = dialog.variables();
    return true;
}

std::string RAppWindow::askFile(const FILEQUESTION& question)
{
    if (!user_.interactive()) return RSessionView::askFile(question);
    const QString caption = fromUtf8(question.caption), filter = fromUtf8(question.filter),
                  proposal = fromUtf8(question.proposal);
    const QString name = question.save
                             ? dialogs::askSaveName(this, caption, filter, proposal, !question.mayBeThere)
                             : dialogs::askOpenName(this, caption, filter, proposal);
    return name.toStdString();
}

std::optional<std::string> RAppWindow::askLine(std::string_view title, std::string_view prompt)
{
    if (!user_.interactive()) return RSessionView::askLine(title, prompt);
    QInputDialog dialog(this);
    dialog.setWindowTitle(fromUtf8(std::string(title)));
    dialog.setLabelText(fromUtf8(std::string(prompt)));
    dialog.resize(dialog.fontMetrics().averageCharWidth() * lineLetters, dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.textValue().toStdString();
}

std::optional<SETUPSETTINGS> RAppWindow::askSetup(const SETUPSETTINGS& proposal,
                                                  const std::string& systemTemp)
{
    const auto& [home, temp, user, host] = proposal;
    dialogs::quickinstallDlg dialog({home, temp, host, user}, systemTemp, this);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    const dialogs::QUICKSETUP entered = dialog.setup();
    return SETUPSETTINGS{entered.home, entered.temp, entered.user, entered.host};
}

// --- closing

void RAppWindow::requestClose()
{
    if (isVisible()) {
        close();
        return;
    }
    QCloseEvent event; // a window that was never shown gets none from the toolkit
    QApplication::sendEvent(this, &event);
}

void RAppWindow::closeEvent(QCloseEvent* event)
{
    if (session_.state == stateBusy) { // the operation in progress works on what would be closed
        user_.setAbort(true);
        event->ignore();
        return;
    }
    if (!session_.close(false)) {
        event->ignore();
        return;
    }
    writeSettingsFile();
    closed_ = true;
    event->accept();
}

void RAppWindow::finish()
{
    if (!session_.collection.isOpen) return;
    session_.close(true);
    writeSettingsFile();
}

// --- keys and drops

void RAppWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) { // outside a long operation there is nothing to break off
        if (session_.state == stateBusy) user_.setAbort(true);
        return;
    }
    QMainWindow::keyPressEvent(event);
}

bool RAppWindow::acceptsDrop(const QString& text)
{
    for (const char* const part : {".var", ".txt", ".o4x", ".o3x", ".nc", ".cdf", ".zip", ".gz"}) {
        if (text.contains(QLatin1StringView(part))) return true;
    }
    return false;
}

std::string RAppWindow::droppedPath(const QString& text)
{
    QString line = text.left(text.indexOf(QLatin1Char('\r')));
    line = line.left(line.indexOf(QLatin1Char('\n')));
    const qsizetype at = line.indexOf(QStringLiteral("file:"));
    if (at < 0) return {};
    return QUrl(line.mid(at)).toLocalFile().toStdString();
}

void RAppWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasText() && acceptsDrop(event->mimeData()->text())) event->acceptProposedAction();
}

void RAppWindow::dropEvent(QDropEvent* event)
{
    const std::string path = droppedPath(event->mimeData()->text());
    if (path.empty() || isBusy() || !session_.isAllowed(cmdOpen, 0)) return; // also over a form
    event->acceptProposedAction();
    dispatching_ = true;
    openFile(path);
    dispatching_ = false;
}

bool RAppWindow::openFile(const std::string& path)
{
    const OpenResult result = session_.openArgument(path, startDirectory_);
    statusMessage();
    if (result == OpenResult::ok && onScreen_) bringMapIntoView();
    return result == OpenResult::ok;
}

// A canvas that is larger than the window would otherwise begin at an empty corner: the map is there in every
// mode, and before any station has been plotted nothing else is.
void RAppWindow::bringMapIntoView()
{
    constexpr int margin = 40;                                       // pixels around the plot, for its labels
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents); // the window gets its true size first
    const auto& [left, top, right, bottom] = session_.setup.map.plotRect;
    const QRect map(QPoint(left, top), QPoint(right, bottom));
    scrollView_->ensureVisible(map.right(), map.bottom(), margin, margin);
    scrollView_->ensureVisible(map.left(), map.top(), margin, margin);
}

} // namespace app
