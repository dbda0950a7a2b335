#include "dialogs/selcriteria.h"

#include <cstring>
#include <set>

#include <QTabWidget>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "nextdialog.h"
#include "temporarydirectory.h"

namespace {

using collection::DOMAINPOLYGON;
using collection::SELECTIONCRITERIA;
using dialogs::selcriteriaDlg;
using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::withNext;

dialogs::CRITERIASUBJECT subject()
{
    dialogs::CRITERIASUBJECT made;
    for (const char* const label :
         {"", "Depth [m]", "Temperature [~^oC]", "Salinity [psu]", "Oxygen [~$m~#mol/kg]",
          "NO~_3 [~$m~#mol/kg]", "Sigma-0 [kg/m^3]", "Potential Temperature [~^oC]"}) {
        made.variables.push_back(collection::emptyVariable(static_cast<int>(made.variables.size())));
        collection::setLabel(made.variables.back(), label);
    }
    made.variables[1].rangeMin = 0;
    made.variables[1].rangeMax = 5500;
    made.variableCount = 5;
    made.cruises = {"A20", "A22", "M\xE9t\xE9or 11"};
    return made;
}

class SelectionDialog : public testing::Test {
protected:
    void open()
    {
        dialog = std::make_unique<selcriteriaDlg>(criteria, polygon, subject(), map);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    template <typename Widget>
    Widget& widget(const char* name)
    {
        return *dialog->findChild<Widget*>(QLatin1StringView(name));
    }
    QLineEdit& line(const char* name) { return widget<QLineEdit>(name); }
    QPushButton& button(const char* name) { return widget<QPushButton>(name); }
    void page(int number) { widget<QTabWidget>("pages").setCurrentIndex(number); }
    void type(const char* name, const char* text)
    {
        line(name).selectAll();
        QTest::keyClicks(&line(name), QString::fromUtf8(text));
    }
    bool isUnchanged() { return std::memcmp(&dialog->criteria(), &criteria, sizeof criteria) == 0; }

    SELECTIONCRITERIA criteria = collection::defaultCriteria();
    DOMAINPOLYGON polygon;
    dialogs::CRITERIAMAP map;
    std::unique_ptr<selcriteriaDlg> dialog;
};

TEST_F(SelectionDialog, OkWithoutAnEditChangesNothing)
{
    criteria.lonMin = -30.123456f;
    collection::setRequiredVariables(criteria, std::vector<int>{2, 5});
    criteria.sampleVariable = 6;
    criteria.sampleMin = 26.123456f;
    criteria.sampleMax = 27.5f;
    criteria.qualityLimit = 4;
    open();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Selection Criteria"));
    EXPECT_TRUE(widget<QComboBox>("cruise").hasFocus() || widget<QComboBox>("cruise").lineEdit()->hasFocus());
    for (int i = 0; i < 4; ++i) page(i);
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_TRUE(isUnchanged());
    EXPECT_FALSE(dialog->stationsChanged());
    EXPECT_FALSE(dialog->samplesChanged());
}

TEST_F(SelectionDialog, FieldsAreTakenByOk)
{
    open();
    type("labelFrom", "9");
    type("labelTo", "12");
    type("yearFrom", "1990");
    type("dayTo", "20");
    page(1);
    type("bottomFrom", "1000");
    dialog->processOK();
    EXPECT_STREQ(dialog->criteria().stationLabelFrom, "9");
    EXPECT_STREQ(dialog->criteria().stationLabelTo, "12");
    EXPECT_EQ(dialog->criteria().yearMin, 1990);
    EXPECT_EQ(dialog->criteria().dayMax, 20);
    EXPECT_EQ(dialog->criteria().bottomMin, 1000);
    EXPECT_TRUE(dialog->stationsChanged());
    EXPECT_FALSE(dialog->samplesChanged());
}

TEST_F(SelectionDialog, EnterIsOkAlsoInAField)
{
    open();
    line("yearTo").setFocus();
    type("yearTo", "2000");
    QTest::keyClick(&line("yearTo"), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->criteria().yearMax, 2000);
}

TEST_F(SelectionDialog, EscapeIsCancel)
{
    open();
    type("yearTo", "2000");
    QTest::keyClick(&line("yearTo"), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(SelectionDialog, ABadNumberShowsTheOldValueAgain)
{
    criteria.yearMin = 1990;
    open();
    line("yearFrom").setFocus();
    type("yearFrom", "19x");
    line("yearTo").setFocus();
    EXPECT_EQ(line("yearFrom").text(), QStringLiteral("1990"));
    dialog->processOK();
    EXPECT_TRUE(isUnchanged());
}

TEST_F(SelectionDialog, TypesAreLetters)
{
    open();
    for (const auto& [name, letter] :
         {std::pair{"rbBottle", "B"}, {"rbCTD", "C"}, {"rbXBT", "X"}, {"rbAnyType", "*"}}) {
        widget<QRadioButton>(name).click();
        EXPECT_STREQ(dialog->criteria().stationType, letter);
        EXPECT_TRUE(widget<QRadioButton>(name).isChecked());
    }
    EXPECT_TRUE(isUnchanged());
}

TEST_F(SelectionDialog, SeasonsAndMonths)
{
    open();
    button("winter").click();
    EXPECT_STREQ(dialog->criteria().months, "+++         ");
    EXPECT_TRUE(widget<QCheckBox>("month1").isChecked());
    EXPECT_FALSE(widget<QCheckBox>("month4").isChecked());
    button("spring").click();
    EXPECT_STREQ(dialog->criteria().months, "   +++      ");
    button("summer").click();
    EXPECT_STREQ(dialog->criteria().months, "      +++   ");
    button("fall").click();
    widget<QCheckBox>("month1").click();
    EXPECT_STREQ(dialog->criteria().months, "+        +++");
    button("allSeasons").click();
    EXPECT_TRUE(isUnchanged());
}

TEST_F(SelectionDialog, ASlotReadsWhatWasTypedBefore)
{
    open();
    type("labelFrom", "5");
    dialog->setWinter();
    EXPECT_STREQ(dialog->criteria().stationLabelFrom, "5");
    dialog->relaxNames();
    EXPECT_EQ(line("labelFrom").text(), QString());
    EXPECT_STREQ(dialog->criteria().months, "+++         ");
}

TEST_F(SelectionDialog, RelaxingTheDateShowsItsYears)
{
    open();
    button("relaxDate").click();
    EXPECT_EQ(line("yearFrom").text(), QStringLiteral("1900"));
    EXPECT_EQ(line("yearTo").text(), QStringLiteral("2100"));
    EXPECT_TRUE(dialog->stationsChanged());
}

TEST_F(SelectionDialog, PickingACruiseHighlightsIt)
{
    std::vector<std::string> highlighted;
    map.highlightCruise = [&](const std::string& cruise, const std::string& type) {
        highlighted.push_back(cruise + "/" + type);
    };
    open();
    auto& cruise = widget<QComboBox>("cruise");
    EXPECT_EQ(cruise.count(), 4);
    QTest::keyClick(&cruise, Qt::Key_Down);
    EXPECT_STREQ(dialog->criteria().cruisePattern, "A20");
    dialog->rbCTD();
    cruise.setCurrentIndex(3);
    Q_EMIT cruise.activated(3);
    EXPECT_STREQ(dialog->criteria().cruisePattern, "M\xE9t\xE9or 11");
    cruise.setCurrentIndex(0);
    Q_EMIT cruise.activated(0);
    EXPECT_STREQ(dialog->criteria().cruisePattern, "*");
    EXPECT_THAT(highlighted, ElementsAre("A20/*", "M\xE9t\xE9or 11/C"));
}

TEST_F(SelectionDialog, ACruisePatternMayBeTyped)
{
    open();
    widget<QComboBox>("cruise").lineEdit()->selectAll();
    QTest::keyClicks(widget<QComboBox>("cruise").lineEdit(), QStringLiteral("M*[0-9]"));
    dialog->processOK();
    EXPECT_STREQ(dialog->criteria().cruisePattern, "M*[0-9]");
}

TEST_F(SelectionDialog, RequiredVariablesAreThoseOfTheCollection)
{
    open();
    page(2);
    auto& list = widget<QListWidget>("required");
    ASSERT_EQ(list.count(), 5);
    EXPECT_EQ(list.item(4)->text(), QStringLiteral("5: NO3 [umol/kg]"));
    list.setFocus();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(1)).center());
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(4)).center());
    dialog->processOK();
    EXPECT_THAT(collection::requiredVariables(dialog->criteria()), ElementsAre(2, 5));
    EXPECT_TRUE(dialog->stationsChanged());
    button("relaxAvailability").click();
    EXPECT_TRUE(isUnchanged());
}

TEST_F(SelectionDialog, SampleVariableBringsItsRange)
{
    open();
    page(3);
    auto& list = widget<QListWidget>("sampleVariable");
    ASSERT_EQ(list.count(), 8); // none, and the derived ones too
    EXPECT_FALSE(line("sampleFrom").isEnabled());
    list.setCurrentRow(1);
    EXPECT_TRUE(line("sampleFrom").isEnabled());
    EXPECT_EQ(line("sampleTo").text(), QStringLiteral("5500"));
    EXPECT_EQ(widget<QLabel>("valuesNote").text(), QStringLiteral("Values are 0 to 5500"));
    type("sampleTo", "200,5");
    dialog->processOK();
    EXPECT_EQ(dialog->criteria().sampleVariable, 1);
    EXPECT_EQ(dialog->criteria().sampleMax, 200.5f);
    EXPECT_TRUE(dialog->samplesChanged());
    EXPECT_FALSE(dialog->stationsChanged());
}

TEST_F(SelectionDialog, QualitiesAreLimits)
{
    open();
    page(3);
    for (const auto& [name, limit] :
         {std::pair{"qfGood", 0}, {"qfUnknown", 1}, {"qfQuestionable", 4}, {"qfAll", 8}}) {
        widget<QRadioButton>(name).click();
        EXPECT_EQ(dialog->criteria().qualityLimit, limit);
    }
    widget<QRadioButton>("qfGood").click();
    EXPECT_TRUE(dialog->samplesChanged());
    button("relaxSampleSel").click();
    EXPECT_TRUE(widget<QRadioButton>("qfAll").isChecked());
    EXPECT_TRUE(isUnchanged());
}

TEST_F(SelectionDialog, WithoutAMapItsButtonsSayWhy)
{
    open();
    page(1);
    for (const char* const name : {"domainMap", "domainZoom", "domainPolygon"}) {
        EXPECT_FALSE(button(name).isEnabled());
        EXPECT_EQ(button(name).toolTip(), QStringLiteral("There is no map to do this on."));
    }
    EXPECT_TRUE(button("domainFile").isEnabled());
    dialog->domainMap();
    dialog->domainZoom();
    dialog->domainPolygon();
    dialog->cruiseChange();
    EXPECT_TRUE(isUnchanged());
}

TEST_F(SelectionDialog, DomainComesFromTheMap)
{
    criteria.usePolygon = 1;
    map.mapDomain = [] { return selection::MAPDOMAIN{-30, 20, 10, 60}; };
    std::optional<selection::MAPDOMAIN> picked;
    map.pickRectangle = [&] { return picked; };
    open();
    page(1);
    button("domainMap").click();
    EXPECT_EQ(line("west").text(), QStringLiteral("-30"));
    EXPECT_EQ(line("north").text(), QStringLiteral("60"));
    EXPECT_EQ(dialog->criteria().usePolygon, 0);
    button("domainZoom").click(); // and ESC
    EXPECT_EQ(dialog->criteria().lonMin, -30);
    picked = {-10, 10, 20, 30};
    button("domainZoom").click();
    EXPECT_EQ(dialog->criteria().lonMin, -10);
    EXPECT_EQ(dialog->criteria().latMax, 30);
}

TEST_F(SelectionDialog, APickedPolygonIsClosedAndIsTheDomain)
{
    std::optional<DOMAINPOLYGON> picked;
    map.pickPolygon = [&] { return picked; };
    open();
    page(1);
    button("domainPolygon").click();
    EXPECT_TRUE(isUnchanged());
    picked.emplace().nPoints = 2; // no area
    button("domainPolygon").click();
    EXPECT_TRUE(isUnchanged());
    picked->nPoints = 3;
    picked->lon = {-20, 30, 5};
    picked->lat = {-5, 0, 40};
    button("domainPolygon").click();
    EXPECT_EQ(dialog->polygon().nPoints, 4);
    EXPECT_EQ(dialog->criteria().usePolygon, 1);
    EXPECT_EQ(line("west").text(), QStringLiteral("-20"));
    EXPECT_EQ(line("north").text(), QStringLiteral("40"));
    EXPECT_THAT(widget<QLabel>("polygonNote").text().toStdString(), testing::HasSubstr("3 corners"));
    EXPECT_TRUE(dialog->stationsChanged());
}

TEST_F(SelectionDialog, APolygonComesFromAFileOrItsFaultIsTold)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string good = directory.file("good.txt"), bad = directory.file("bad.txt");
    ASSERT_TRUE(common::writeFile(good, "0 0\n10 0\n10 10\n"));
    ASSERT_TRUE(common::writeFile(bad, "0 0\n10\n"));
    open();
    page(1);
    withNext<QFileDialog>(
        [&](QFileDialog& files) { testing_support::enterFile(files, QString::fromStdString(good)); });
    button("domainFile").click();
    EXPECT_EQ(dialog->polygon().nPoints, 4);
    EXPECT_EQ(dialog->criteria().lonMax, 10);
    BOX box;
    withNext<QFileDialog>([&](QFileDialog& files) {
        answerNext("&OK", &box);
        testing_support::enterFile(files, QString::fromStdString(bad));
    });
    button("domainFile").click();
    EXPECT_EQ(box.text, bad + ":2: the latitude is missing");
    EXPECT_EQ(dialog->polygon().nPoints, 4);
}

TEST_F(SelectionDialog, CriteriaThatContradictThemselvesAreToldAndAllowed)
{
    open();
    line("dayTo").setFocus();
    type("dayTo", "10");
    line("dayFrom").setFocus();
    type("dayFrom", "20");
    line("yearFrom").setFocus();
    EXPECT_THAT(widget<QLabel>("warning").text().toStdString(), testing::HasSubstr("the days end"));
    dialog->processOK();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(SelectionDialog, HelpIsABox)
{
    open();
    BOX box;
    answerNext("&OK", &box);
    dialog->processHelp();
    EXPECT_EQ(box.title, "Selection Criteria");
    EXPECT_THAT(box.text, testing::HasSubstr("An empty field is no limit"));
}

// Letters behind "&" of what is to be seen.
TEST_F(SelectionDialog, KeyLettersOfAPageDiffer)
{
    open();
    auto& pages = widget<QTabWidget>("pages");
    for (int i = 0; i < pages.count(); ++i) {
        page(i);
        std::vector<QString> texts;
        for (int tab = 0; tab < pages.count(); ++tab) texts.push_back(pages.tabText(tab));
        for (const auto* const one : dialog->findChildren<QAbstractButton*>())
            if (one->isVisible()) texts.push_back(one->text());
        for (const auto* const one : dialog->findChildren<QLabel*>())
            if (one->isVisible() && one->buddy()) texts.push_back(one->text());
        std::set<QChar> letters;
        for (const QString& text : texts) {
            const qsizetype at = text.indexOf(QLatin1Char('&'));
            if (at < 0) continue;
            EXPECT_TRUE(letters.insert(text[at + 1].toLower()).second) << text.toStdString();
        }
        EXPECT_GT(letters.size(), 5U);
    }
}

// Each field is reached by TAB and says what it is.
TEST_F(SelectionDialog, FieldsAreNamedAndReached)
{
    open();
    for (const auto* const field : dialog->findChildren<QLineEdit*>()) {
        if (field->objectName() == QLatin1String("qt_spinbox_lineedit")) continue;
        EXPECT_TRUE(field->focusPolicy() & Qt::TabFocus) << field->objectName().toStdString();
        const bool named =
            !field->accessibleName().isEmpty() || qobject_cast<QComboBox*>(field->parentWidget());
        EXPECT_TRUE(named) << field->objectName().toStdString();
    }
}

// Pictures for whoever wants to look at them.
TEST_F(SelectionDialog, PagesFitAScreenOf768Lines)
{
    map.mapDomain = [] { return selection::MAPDOMAIN{}; };
    open();
    const QByteArray folder = qgetenv("NVQ_PICTURES");
    for (int i = 0; i < 4; ++i) {
        page(i);
        QApplication::processEvents();
        if (!folder.isEmpty()) {
            EXPECT_TRUE(dialog->grab().save(QString::fromLocal8Bit(folder) +
                                            QStringLiteral("/selcriteria%1.png").arg(i + 1)));
        }
    }
    EXPECT_LT(dialog->height(), 700);
    EXPECT_LT(dialog->width(), 900);
}

} // namespace
