#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>

#include "dialogs/editedcriteria.h"

namespace dialogs {

// What the criteria are about.
struct CRITERIASUBJECT {
    std::vector<collection::VARINFO> variables; // index 0 is no variable; derived ones stand last
    int variableCount = 0;                      // those of the collection
    std::vector<std::string> cruises;           // labels
};

// What the form asks of the map. A function that is missing disables its button.
struct CRITERIAMAP {
    std::function<selection::MAPDOMAIN()> mapDomain; // the current one
    std::function<void(const std::string& cruise, const std::string& type)> highlightCruise;
    std::function<std::optional<selection::MAPDOMAIN>()> pickRectangle;    // nothing if the user cancels
    std::function<std::optional<collection::DOMAINPOLYGON>()> pickPolygon; // likewise
};

// Edits a copy of the criteria and of their polygon.
class selcriteriaDlg : public QDialog {
    Q_OBJECT
public:
    selcriteriaDlg(const collection::SELECTIONCRITERIA& criteria, const collection::DOMAINPOLYGON& polygon,
                   CRITERIASUBJECT subject, CRITERIAMAP map, QWidget* parent = nullptr);
    ~selcriteriaDlg() override;
    selcriteriaDlg(const selcriteriaDlg&) = delete;
    selcriteriaDlg& operator=(const selcriteriaDlg&) = delete;

    [[nodiscard]] const collection::SELECTIONCRITERIA& criteria() const { return criteria_; }
    [[nodiscard]] const collection::DOMAINPOLYGON& polygon() const { return polygon_; }
    // Whether what was edited differs from what was handed in: in the stations, in the samples.
    [[nodiscard]] bool stationsChanged() const;
    [[nodiscard]] bool samplesChanged() const;

public Q_SLOTS:
    void processOK();
    void processCancel() { reject(); }
    void processHelp();
    void cruiseChange();
    void rbAnyType() { setType('*'); }
    void rbBottle() { setType('B'); }
    void rbCTD() { setType('C'); }
    void rbXBT() { setType('X'); }
    void setAllSeasons() { setSeason("all"); }
    void setWinter() { setSeason("winter"); }
    void setSpring() { setSeason("spring"); }
    void setSummer() { setSeason("summer"); }
    void setFall() { setSeason("fall"); }
    void domainMap();
    void domainZoom();
    void domainPolygon();
    void domainFile(); // a polygon from a file
    void qfGood() { setQuality("good"); }
    void qfUnknown() { setQuality("unknown"); }
    void qfQuestionable() { setQuality("questionable"); }
    void qfAll() { setQuality("all"); }
    void lbValidateVar();
    void relaxNames();
    void relaxDate();
    void relaxAvailability();
    void relaxSampleSel();

private:
    using Slot = void (selcriteriaDlg::*)();

    [[nodiscard]] QLineEdit* makeField(CriterionField field, const char* name);
    [[nodiscard]] QLineEdit* makeLine(const char* name, const char* none);
    [[nodiscard]] QPushButton* makeButton(const char* name, const char* caption, const char* tip, Slot slot);
    [[nodiscard]] QRadioButton* makeChoice(const char* name, const char* caption, Slot slot);
    [[nodiscard]] QWidget* makeStationPage();
    [[nodiscard]] QWidget* makeNames();
    [[nodiscard]] QWidget* makeDate();
    [[nodiscard]] QWidget* makeMonths();
    [[nodiscard]] QWidget* makeDomainPage();
    [[nodiscard]] QWidget* makeDomain();
    [[nodiscard]] QWidget* makeDomainButtons();
    [[nodiscard]] QWidget* makeDepths();
    [[nodiscard]] QWidget* makeAvailabilityPage();
    [[nodiscard]] QWidget* makeSamplePage();
    [[nodiscard]] QWidget* makeQuality();
    [[nodiscard]] QWidget* makeSampleRange();

    void readControls(); // into the copy
    void showControls(); // as the copy is
    void showDomain();
    void showSamples();
    // Reads the controls, changes the copy and shows it again.
    void change(const std::function<void(collection::SELECTIONCRITERIA&)>& edit);
    void setType(char type);
    void setSeason(std::string_view season);
    void setQuality(std::string_view word);
    void takePolygon(const collection::DOMAINPOLYGON& polygon);

    const CRITERIASUBJECT subject_;
    const CRITERIAMAP map_;
    const collection::SELECTIONCRITERIA oldCriteria_;
    const collection::DOMAINPOLYGON oldPolygon_;
    collection::SELECTIONCRITERIA criteria_;
    collection::DOMAINPOLYGON polygon_;

    std::map<CriterionField, QLineEdit*> fields_;
    QComboBox* cruise_ = nullptr;
    QLineEdit *numberFrom_ = nullptr, *numberTo_ = nullptr, *west_ = nullptr, *east_ = nullptr;
    std::map<char, QRadioButton*> types_;
    std::map<int, QRadioButton*> qualities_;
    std::array<QCheckBox*, 12> months_{};
    QListWidget *required_ = nullptr, *sampleVariable_ = nullptr;
    QLabel *polygonNote_ = nullptr, *valuesNote_ = nullptr, *warning_ = nullptr;
};

} // namespace dialogs
