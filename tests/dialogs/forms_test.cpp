// What holds for all forms alike.

#include <map>
#include <memory>

#include <QAbstractButton>
#include <QDialog>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QStackedWidget>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/creation.h"
#include "dialogs/deflinconversion.h"
#include "dialogs/derivedvars.h"
#include "dialogs/generalsettings.h"
#include "dialogs/hvarassoc.h"
#include "dialogs/identifyvar.h"
#include "dialogs/importopt.h"
#include "dialogs/macroeditor.h"
#include "dialogs/outvarsel.h"
#include "dialogs/quickinstall.h"
#include "dialogs/resolution.h"
#include "dialogs/selconversion.h"
#include "dialogs/selcriteria.h"
#include "dialogs/setupexpression.h"
#include "dialogs/spreadshproperties.h"
#include "dialogs/variableeditor.h"
#include "dialogs/varsettings.h"
#include "scripteduser.h"
#include "variables.h"

namespace {

using testing::ElementsAre;
using testing_support::variablesOf;

// One of each.
struct FORMS {
    FORMS()
    {
        const QString text = QStringLiteral("x");
        add<dialogs::creationDlg>(text);
        add<dialogs::deflinconversionDlg>(text);
        add<dialogs::derivedvarsDlg>(collection, dialogs::DERIVEDACTIONS{});
        add<dialogs::generalsettingsDlg>(variables::COVERAGECRITERIA{});
        add<dialogs::hvarassocDlg>(sheet, lines);
        add<dialogs::identifyvarDlg>(text, text, variables);
        add<dialogs::importoptDlg>(importing::IMPORTCHOICES{});
        add<dialogs::macroeditorDlg>(text, variables, user);
        add<dialogs::outvarselDlg>(variables, std::vector<int>{1});
        add<dialogs::quickinstallDlg>(dialogs::QUICKSETUP{}, std::string("/tmp/"));
        add<dialogs::resolutionDlg>();
        add<dialogs::selconversionDlg>(text, text, QStringList{text}, 0);
        add<dialogs::selcriteriaDlg>(collection.criteria, polygon, dialogs::CRITERIASUBJECT{},
                                     dialogs::CRITERIAMAP{});
        add<dialogs::setupexpressionDlg>(variables);
        add<dialogs::spreadshpropertiesDlg>(sheet, lines);
        add<dialogs::variableeditorDlg>(text, variables, variables);
        add<dialogs::varsettingsDlg>(variables);
    }
    template <typename T, typename... Arguments>
    void add(Arguments&&... arguments)
    {
        all.push_back(std::make_unique<T>(std::forward<Arguments>(arguments)...));
    }

    std::vector<collection::VARINFO> variables = variablesOf({"Depth [m]", "Salinity [psu]"});
    collection::RCollection collection;
    collection::DOMAINPOLYGON polygon{};
    const importing::SPREADSHEETDESC sheet = importing::defaultDescription("/data/sea.txt");
    const std::vector<std::string> lines{"Depth [m]", "1"};
    testing_support::RScriptedUser user;
    std::vector<std::unique_ptr<QDialog>> all;
};

// The page of a form with tabs that a part stands on; null outside of pages.
const QWidget* pageOf(const QWidget* part)
{
    const QWidget* above = part->parentWidget();
    while (above && !qobject_cast<const QStackedWidget*>(above)) {
        part = above;
        above = above->parentWidget();
    }
    return above ? part : nullptr;
}

struct MNEMONIC {
    std::string text;
    const QWidget* page;
};

// What has a letter with Alt, by that letter.
std::map<std::string, std::vector<MNEMONIC>> mnemonicsOf(const QDialog& form)
{
    std::map<std::string, std::vector<MNEMONIC>> letters;
    const auto take = [&](const QString& text, const QWidget* part) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (!key.isEmpty())
            letters[key.toString().toStdString()].push_back({text.toStdString(), pageOf(part)});
    };
    for (const auto* const button : form.findChildren<QAbstractButton*>()) take(button->text(), button);
    for (const auto* const group : form.findChildren<QGroupBox*>()) take(group->title(), group);
    for (const auto* const label : form.findChildren<QLabel*>()) {
        if (label->buddy()) take(label->text(), label);
    }
    return letters;
}

// Only one page is seen at a time.
bool collide(const MNEMONIC& a, const MNEMONIC& b)
{
    return !a.page || !b.page || a.page == b.page;
}

TEST(Forms, NoTwoMnemonicsOfAFormAreEqual)
{
    const FORMS forms;
    std::size_t found = 0;
    for (const auto& form : forms.all) {
        for (const auto& [letter, texts] : mnemonicsOf(*form)) {
            for (std::size_t i = 0; i < texts.size(); ++i) {
                for (std::size_t k = 0; k < i; ++k)
                    EXPECT_FALSE(collide(texts[i], texts[k]))
                        << form->objectName().toStdString() << ": " << letter << " " << texts[i].text << ", "
                        << texts[k].text;
            }
            found += texts.size();
        }
    }
    EXPECT_GT(found, 40u);
}

TEST(Forms, EscapeLeavesEachOfThem)
{
    const FORMS forms;
    for (const auto& form : forms.all) {
        form->show();
        QTest::keyClick(form.get(), Qt::Key_Escape);
        EXPECT_FALSE(form->isVisible()) << form->objectName().toStdString();
    }
}

// --- the order of Tab

// The names of what Tab reaches from `first` on, once around; what is disabled counts as well.
std::vector<std::string> tabOrder(QDialog& form, const char* first)
{
    std::vector<std::string> names;
    auto* const start = form.findChild<QWidget*>(QLatin1StringView(first));
    if (!start) return names;
    QWidget* part = start;
    do {
        const bool isReached = part->focusPolicy() & Qt::TabFocus;
        auto* const button = qobject_cast<QAbstractButton*>(part);
        if (isReached && part != &form)
            names.push_back((part->objectName().isEmpty() && button ? button->text() : part->objectName())
                                .remove(u'&')
                                .toStdString());
        part = part->nextInFocusChain();
    } while (part != start);
    return names;
}

TEST(TabOrder, OfDerivedVariablesIsThatOfTheEye)
{
    const collection::RCollection collection;
    dialogs::derivedvarsDlg form(collection, {});
    EXPECT_THAT(tabOrder(form, "choices"),
                ElementsAre("choices", "defined", "add", "delete", "help", "close"));
}

TEST(TabOrder, OfTheMacroEditorIsThatOfTheEye)
{
    testing_support::RScriptedUser user;
    dialogs::macroeditorDlg form({}, {}, user);
    EXPECT_THAT(tabOrder(form, "label"),
                ElementsAre("label", "width", "decimals", "defined", "add", "delete", "entry", "new",
                            "expression", "comment", "check", "save", "saveAs", "close"));
}

TEST(TabOrder, OfTheExpressionIsThatOfTheEye)
{
    dialogs::setupexpressionDlg form({});
    EXPECT_THAT(tabOrder(form, "label"), ElementsAre("label", "width", "decimals", "defined", "add", "delete",
                                                     "chosen", "formula", "OK", "Cancel"));
}

} // namespace
