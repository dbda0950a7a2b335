#include "dialogs/selcriteria.h"

#include <QButtonGroup>
#include <QFormLayout>
#include <QGroupBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/boxes.h"
#include "dialogs/filename.h"
#include "dialogs/formparts.h"
#include "dialogs/help.h"
#include "selection/criteriawords.h"
#include "selection/setcriterion.h"

namespace dialogs {
namespace {

using collection::DOMAINPOLYGON;
using collection::SELECTIONCRITERIA;

constexpr const char* noMap = "There is no map to do this on.";
constexpr const char* polygonFilters = "Polygons (*.txt *.dat *.csv);;All Files (*)";

// "From [  ] to [  ]" in one row.
QWidget* makeRange(QLineEdit* from, QLineEdit* to)
{
    auto* const range = new QWidget;
    auto* const row = new QHBoxLayout(range);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(from, 1);
    row->addWidget(new QLabel(QStringLiteral("to")));
    row->addWidget(to, 1);
    range->setFocusProxy(from);
    return range;
}

// A row of a form whose caption leads to the first of the two fields.
void addRange(QFormLayout& form, const char* caption, QLineEdit* from, QLineEdit* to)
{
    QWidget* const range = makeRange(from, to);
    auto* const label = new QLabel(fromUtf8(caption));
    label->setBuddy(from);
    form.addRow(label, range);
    const QString name = fromUtf8(caption).remove(QLatin1Char('&')).remove(QLatin1Char(':'));
    from->setAccessibleName(name + QStringLiteral(" from"));
    to->setAccessibleName(name + QStringLiteral(" to"));
}

QWidget* inRow(std::initializer_list<QWidget*> widgets)
{
    auto* const all = new QWidget;
    auto* const row = new QHBoxLayout(all);
    row->setContentsMargins(0, 0, 0, 0);
    for (QWidget* const one : widgets) row->addWidget(one);
    row->addStretch();
    return all;
}

// A group with a button at its lower right.
void addAtEnd(QVBoxLayout& column, QWidget* button)
{
    auto* const row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(button);
    column.addLayout(row);
}

void enableFor(QPushButton* button, bool possible)
{
    button->setEnabled(possible);
    if (!possible) button->setToolTip(fromUtf8(noMap));
}

} // namespace

selcriteriaDlg::selcriteriaDlg(const SELECTIONCRITERIA& criteria, const DOMAINPOLYGON& polygon,
                               CRITERIASUBJECT subject, CRITERIAMAP map, QWidget* parent)
    : QDialog(parent), subject_(std::move(subject)), map_(std::move(map)), oldCriteria_(criteria),
      oldPolygon_(polygon), criteria_(criteria), polygon_(polygon)
{
    setObjectName(QStringLiteral("selcriteria"));
    setWindowTitle(QStringLiteral("Selection Criteria"));
    auto* const pages = new QTabWidget(this);
    pages->setObjectName(QStringLiteral("pages"));
    pages->addTab(makeStationPage(), QStringLiteral("&Stations"));
    pages->addTab(makeDomainPage(), QStringLiteral("&Domain and Depth"));
    pages->addTab(makeAvailabilityPage(), QStringLiteral("A&vailability"));
    pages->addTab(makeSamplePage(), QStringLiteral("Sam&ples"));
    warning_ = makeTextLabel("warning", this);
    QPalette red = warning_->palette();
    red.setColor(QPalette::WindowText, QColor(176, 0, 0));
    warning_->setPalette(red);
    QDialogButtonBox* const buttons = makeDialogButtons(true, this);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(pages, 1);
    column->addWidget(warning_);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &selcriteriaDlg::processOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &selcriteriaDlg::processCancel);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &selcriteriaDlg::processHelp);
    connect(pages, &QTabWidget::currentChanged, this, [this] { change([](SELECTIONCRITERIA&) {}); });
    showControls();
    cruise_->setFocus();
}

// A field that loses the focus because it goes still tells that it was edited; there is no copy by then.
selcriteriaDlg::~selcriteriaDlg()
{
    for (QWidget* const part : findChildren<QWidget*>()) part->disconnect(this);
}

// --- parts

QLineEdit* selcriteriaDlg::makeLine(const char* name, const char* none)
{
    constexpr int letters = 12;
    auto* const line = new QLineEdit(this);
    line->setObjectName(fromUtf8(name));
    line->setPlaceholderText(fromUtf8(none));
    line->setMinimumWidth(line->fontMetrics().averageCharWidth() * letters);
    connect(line, &QLineEdit::editingFinished, this, [this] { change([](SELECTIONCRITERIA&) {}); });
    return line;
}

QLineEdit* selcriteriaDlg::makeField(CriterionField field, const char* name)
{
    return fields_[field] = makeLine(name, "any");
}

QPushButton* selcriteriaDlg::makeButton(const char* name, const char* caption, const char* tip, Slot slot)
{
    QPushButton* const button = makePushButton(name, caption, this);
    button->setToolTip(fromUtf8(tip));
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

QRadioButton* selcriteriaDlg::makeChoice(const char* name, const char* caption, Slot slot)
{
    auto* const choice = new QRadioButton(fromUtf8(caption), this);
    choice->setObjectName(fromUtf8(name));
    connect(choice, &QRadioButton::clicked, this, slot);
    return choice;
}

// --- stations

QWidget* selcriteriaDlg::makeStationPage()
{
    auto* const page = new QWidget(this);
    auto* const column = new QVBoxLayout(page);
    column->addWidget(makeNames());
    column->addWidget(makeDate());
    column->addStretch();
    return page;
}

QWidget* selcriteriaDlg::makeNames()
{
    auto* const group = new QGroupBox(QStringLiteral("Names"), this);
    cruise_ = new QComboBox(group);
    cruise_->setObjectName(QStringLiteral("cruise"));
    cruise_->setEditable(true);
    cruise_->setInsertPolicy(QComboBox::NoInsert);
    cruise_->addItem(QStringLiteral("*"));
    for (const std::string& label : subject_.cruises) cruise_->addItem(common::decodeLabel(label));
    cruise_->setToolTip(QStringLiteral("A cruise label or a pattern: * any text, ? any letter, [a-z] one of "
                                       "these"));
    connect(cruise_, &QComboBox::activated, this, &selcriteriaDlg::cruiseChange);
    connect(cruise_->lineEdit(), &QLineEdit::editingFinished, this,
            [this] { change([](SELECTIONCRITERIA&) {}); });
    types_ = {{'*', makeChoice("rbAnyType", "Any", &selcriteriaDlg::rbAnyType)},
              {'B', makeChoice("rbBottle", "Bottle", &selcriteriaDlg::rbBottle)},
              {'C', makeChoice("rbCTD", "CTD", &selcriteriaDlg::rbCTD)},
              {'X', makeChoice("rbXBT", "XBT", &selcriteriaDlg::rbXBT)}};
    auto* const choices = new QButtonGroup(group);
    for (const auto& [type, choice] : types_) choices->addButton(choice);
    auto* const column = new QVBoxLayout(group);
    auto* const form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(QStringLiteral("C&ruise:"), cruise_);
    auto* const typeCaption = new QLabel(QStringLiteral("&Type:"), group);
    typeCaption->setBuddy(types_['*']);
    form->addRow(typeCaption, inRow({types_['*'], types_['B'], types_['C'], types_['X']}));
    addRange(*form, "Station &label:", makeField(CriterionField::labelFrom, "labelFrom"),
             makeField(CriterionField::labelTo, "labelTo"));
    addRange(*form, "Label as nu&mber:", numberFrom_ = makeLine("numberFrom", "any"),
             numberTo_ = makeLine("numberTo", "any"));
    addRange(*form, "&Internal number:", makeField(CriterionField::internalFrom, "internalFrom"),
             makeField(CriterionField::internalTo, "internalTo"));
    numberFrom_->setToolTip(
        QStringLiteral("With a bound here, only labels that are numbers are selected, and "
                       "the bounds of the label above have no effect."));
    numberTo_->setToolTip(numberFrom_->toolTip());
    column->addLayout(form);
    addAtEnd(*column, makeButton("relaxNames", "Relax &Names", "Any cruise and any station label",
                                 &selcriteriaDlg::relaxNames));
    return group;
}

QWidget* selcriteriaDlg::makeDate()
{
    auto* const group = new QGroupBox(QStringLiteral("Date"), this);
    auto* const column = new QVBoxLayout(group);
    auto* const form = new QFormLayout;
    addRange(*form, "Da&y:", makeField(CriterionField::dayFrom, "dayFrom"),
             makeField(CriterionField::dayTo, "dayTo"));
    addRange(*form, "Y&ear:", makeField(CriterionField::yearFrom, "yearFrom"),
             makeField(CriterionField::yearTo, "yearTo"));
    form->addRow(QStringLiteral("Months:"), makeMonths());
    column->addLayout(form);
    auto* const row = new QHBoxLayout;
    row->addWidget(makeButton("allSeasons", "&All", "All months", &selcriteriaDlg::setAllSeasons));
    row->addWidget(makeButton("winter", "&Winter", "January to March", &selcriteriaDlg::setWinter));
    row->addWidget(makeButton("spring", "Sprin&g", "April to June", &selcriteriaDlg::setSpring));
    row->addWidget(makeButton("summer", "S&ummer", "July to September", &selcriteriaDlg::setSummer));
    row->addWidget(makeButton("fall", "&Fall", "October to December", &selcriteriaDlg::setFall));
    row->addStretch();
    row->addWidget(makeButton("relaxDate", "Rela&x Date", "Years 1900 to 2100, all months and days",
                              &selcriteriaDlg::relaxDate));
    column->addLayout(row);
    return group;
}

QWidget* selcriteriaDlg::makeMonths()
{
    constexpr const char* names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    constexpr int monthsARow = 6;
    auto* const all = new QWidget(this);
    auto* const grid = new QGridLayout(all);
    grid->setContentsMargins(0, 0, 0, 0);
    for (int month = 0; month < 12; ++month) {
        auto* const box = new QCheckBox(fromUtf8(names[month]), all);
        box->setObjectName(QStringLiteral("month%1").arg(month + 1));
        connect(box, &QCheckBox::clicked, this, [this] { change([](SELECTIONCRITERIA&) {}); });
        grid->addWidget(box, month / monthsARow, month % monthsARow);
        months_[static_cast<std::size_t>(month)] = box;
    }
    return all;
}

// --- domain

QWidget* selcriteriaDlg::makeDomainPage()
{
    auto* const page = new QWidget(this);
    auto* const column = new QVBoxLayout(page);
    column->addWidget(makeDomain());
    column->addWidget(makeDepths());
    column->addStretch();
    return page;
}

QWidget* selcriteriaDlg::makeDomain()
{
    auto* const group = new QGroupBox(QStringLiteral("Domain"), this);
    polygonNote_ = makeTextLabel("polygonNote", group);
    auto* const form = new QFormLayout;
    addRange(*form, "&Longitude [°E]:", west_ = makeLine("west", ""), east_ = makeLine("east", ""));
    addRange(*form, "La&titude [°N]:", makeField(CriterionField::south, "south"),
             makeField(CriterionField::north, "north"));
    west_->setToolTip(
        QStringLiteral("The western end. Negative longitudes lie west of Greenwich; a range may "
                       "run over 0 or the date line, such as 350 to 20."));
    fields_[CriterionField::south]->setPlaceholderText(QString());
    fields_[CriterionField::north]->setPlaceholderText(QString());
    form->addRow(QStringLiteral("Polygon:"), polygonNote_);
    auto* const column = new QVBoxLayout(group);
    column->addLayout(form);
    column->addWidget(makeDomainButtons());
    return group;
}

QWidget* selcriteriaDlg::makeDomainButtons()
{
    QPushButton* const map = makeButton("domainMap", "&Map", "The domain of the map, without a polygon",
                                        &selcriteriaDlg::domainMap);
    QPushButton* const zoom =
        makeButton("domainZoom", "&Zoom ...", "Draw a rectangle on the map", &selcriteriaDlg::domainZoom);
    QPushButton* const polygon = makeButton("domainPolygon", "Pol&ygon ...", "Draw a polygon on the map",
                                            &selcriteriaDlg::domainPolygon);
    QPushButton* const file = makeButton(
        "domainFile", "&From File ...",
        "A polygon from a text file: longitude and latitude of a corner a line", &selcriteriaDlg::domainFile);
    enableFor(map, static_cast<bool>(map_.mapDomain));
    enableFor(zoom, static_cast<bool>(map_.pickRectangle));
    enableFor(polygon, static_cast<bool>(map_.pickPolygon));
    return inRow({map, zoom, polygon, file});
}

QWidget* selcriteriaDlg::makeDepths()
{
    auto* const group = new QGroupBox(QStringLiteral("Depth"), this);
    auto* const form = new QFormLayout(group);
    addRange(*form, "&Bottom [m]:", makeField(CriterionField::bottomFrom, "bottomFrom"),
             makeField(CriterionField::bottomTo, "bottomTo"));
    addRange(*form, "Last s&ample [m]:", makeField(CriterionField::lastFrom, "lastFrom"),
             makeField(CriterionField::lastTo, "lastTo"));
    return group;
}

// --- availability

QWidget* selcriteriaDlg::makeAvailabilityPage()
{
    constexpr int letters = 40;
    auto* const page = new QWidget(this);
    required_ = makeLineList("required", letters, page);
    required_->setSelectionMode(QAbstractItemView::MultiSelection);
    const auto own = static_cast<std::size_t>(std::max(0, subject_.variableCount)) + 1;
    const std::span<const collection::VARINFO> all(subject_.variables);
    showLines(*required_, variableLines(all.first(std::min(own, all.size()))));
    auto* const column = new QVBoxLayout(page);
    column->addWidget(
        makeCaption(QStringLiteral("Stations must have values of &these variables:"), required_));
    column->addWidget(required_, 1);
    addAtEnd(*column, makeButton("relaxAvailability", "&Relax", "No variable is required",
                                 &selcriteriaDlg::relaxAvailability));
    return page;
}

// --- samples

QWidget* selcriteriaDlg::makeSamplePage()
{
    auto* const page = new QWidget(this);
    auto* const column = new QVBoxLayout(page);
    column->addWidget(makeQuality());
    column->addWidget(makeSampleRange(), 1);
    addAtEnd(*column, makeButton("relaxSampleSel", "Rela&x", "All samples", &selcriteriaDlg::relaxSampleSel));
    return page;
}

QWidget* selcriteriaDlg::makeQuality()
{
    auto* const group = new QGroupBox(QStringLiteral("Accepted Quality Flags"), this);
    qualities_ = {{0, makeChoice("qfGood", "&good", &selcriteriaDlg::qfGood)},
                  {1, makeChoice("qfUnknown", "good/&unkn", &selcriteriaDlg::qfUnknown)},
                  {4, makeChoice("qfQuestionable", "good/unkn/&quest", &selcriteriaDlg::qfQuestionable)},
                  {8, makeChoice("qfAll", "a&ll", &selcriteriaDlg::qfAll)}};
    auto* const choices = new QButtonGroup(group);
    auto* const row = new QHBoxLayout(group);
    for (const auto& [limit, choice] : qualities_) {
        choices->addButton(choice);
        row->addWidget(choice);
    }
    row->addStretch();
    return group;
}

QWidget* selcriteriaDlg::makeSampleRange()
{
    constexpr int letters = 40;
    auto* const group = new QGroupBox(QStringLiteral("Range"), this);
    sampleVariable_ = makeLineList("sampleVariable", letters, group);
    showLines(*sampleVariable_, QStringList(QStringLiteral("(none)")) + variableLines(subject_.variables));
    valuesNote_ = makeTextLabel("valuesNote", group);
    connect(sampleVariable_, &QListWidget::itemSelectionChanged, this, &selcriteriaDlg::lbValidateVar);
    auto* const column = new QVBoxLayout(group);
    column->addWidget(
        makeCaption(QStringLiteral("Only samples with values of this va&riable:"), sampleVariable_));
    column->addWidget(sampleVariable_, 1);
    auto* const form = new QFormLayout;
    addRange(*form, "Ra&nge:", makeField(CriterionField::sampleFrom, "sampleFrom"),
             makeField(CriterionField::sampleTo, "sampleTo"));
    column->addLayout(form);
    column->addWidget(valuesNote_);
    return group;
}

// --- the copy and the controls

void selcriteriaDlg::readControls()
{
    takeCriterion(criteria_, CriterionField::cruise, cruise_->currentText());
    for (const auto& [field, line] : fields_) takeCriterion(criteria_, field, line->text());
    takeNumbers(criteria_, numberFrom_->text(), numberTo_->text());
    takeLongitudes(criteria_, west_->text(), east_->text());
    for (int month = 0; month < 12; ++month)
        selectMonth(criteria_, month, months_[static_cast<std::size_t>(month)]->isChecked());
    std::vector<int> required;
    for (const QModelIndex& line : required_->selectionModel()->selectedIndexes())
        required.push_back(line.row() + 1);
    collection::setRequiredVariables(criteria_, required);
}

void selcriteriaDlg::showControls()
{
    cruise_->setCurrentText(criterionText(criteria_, CriterionField::cruise));
    for (const auto& [field, line] : fields_) line->setText(criterionText(criteria_, field));
    numberFrom_->setText(numberFromText(criteria_));
    numberTo_->setText(numberToText(criteria_));
    const auto type = types_.find(criteria_.stationType[0]);
    if (type != types_.end()) type->second->setChecked(true);
    for (int month = 0; month < 12; ++month)
        months_[static_cast<std::size_t>(month)]->setChecked(monthIsSelected(criteria_, month));
    const std::vector<int> required = collection::requiredVariables(criteria_);
    for (int row = 0; row < required_->count(); ++row)
        required_->item(row)->setSelected(std::find(required.begin(), required.end(), row + 1) !=
                                          required.end());
    showDomain();
    showSamples();
    warning_->setText(contradiction(criteria_));
}

void selcriteriaDlg::showDomain()
{
    west_->setText(westText(criteria_));
    east_->setText(eastText(criteria_));
    polygonNote_->setText(polygonText(criteria_, polygon_));
}

void selcriteriaDlg::showSamples()
{
    const auto quality = std::prev(qualities_.upper_bound(std::max(0, criteria_.qualityLimit)));
    quality->second->setChecked(true);
    const QSignalBlocker quiet(sampleVariable_);
    selectRow(*sampleVariable_, criteria_.sampleVariable);
    const bool ranged = criteria_.sampleVariable > 0;
    fields_[CriterionField::sampleFrom]->setEnabled(ranged);
    fields_[CriterionField::sampleTo]->setEnabled(ranged);
    valuesNote_->setText(valuesText(subject_.variables, criteria_.sampleVariable));
}

void selcriteriaDlg::change(const std::function<void(SELECTIONCRITERIA&)>& edit)
{
    readControls();
    edit(criteria_);
    showControls();
}

// --- what the user does

void selcriteriaDlg::cruiseChange()
{
    change([](SELECTIONCRITERIA&) {});
    const std::string label(common::fieldText(criteria_.cruisePattern));
    const auto& known = subject_.cruises;
    if (map_.highlightCruise && std::find(known.begin(), known.end(), label) != known.end())
        map_.highlightCruise(label, criteria_.stationType);
}

void selcriteriaDlg::setType(char type)
{
    change([type](SELECTIONCRITERIA& criteria) { common::copyText(criteria.stationType, {&type, 1}); });
}

void selcriteriaDlg::setSeason(std::string_view season)
{
    change([season](SELECTIONCRITERIA& criteria) { selectSeason(criteria, season); });
}

void selcriteriaDlg::setQuality(std::string_view word)
{
    change([word](SELECTIONCRITERIA& criteria) {
        criteria.qualityLimit = selection::qualityOf(word).value_or(criteria.qualityLimit);
    });
}

void selcriteriaDlg::domainMap()
{
    if (!map_.mapDomain) return;
    change([this](SELECTIONCRITERIA& criteria) { setDomain(criteria, map_.mapDomain()); });
}

void selcriteriaDlg::domainZoom()
{
    if (!map_.pickRectangle) return;
    if (const auto domain = map_.pickRectangle())
        change([&](SELECTIONCRITERIA& criteria) { setDomain(criteria, *domain); });
}

void selcriteriaDlg::domainPolygon()
{
    constexpr int fewestPoints = 4; // three corners, closed
    if (!map_.pickPolygon) return;
    std::optional<DOMAINPOLYGON> picked = map_.pickPolygon();
    if (!picked) return;
    selection::closePolygon(*picked);
    if (picked->nPoints >= fewestPoints) takePolygon(*picked);
}

void selcriteriaDlg::domainFile()
{
    const QString name = askOpenName(this, QStringLiteral("Open Polygon ..."), fromUtf8(polygonFilters), {});
    if (name.isEmpty()) return;
    DOMAINPOLYGON read;
    std::string fault;
    if (selection::readPolygon(name.toStdString(), read, fault)) return takePolygon(read);
    tell(this, windowTitle(), oneLine(fromUtf8(fault)));
}

void selcriteriaDlg::takePolygon(const DOMAINPOLYGON& polygon)
{
    polygon_ = polygon;
    change([&](SELECTIONCRITERIA& criteria) { selection::setPolygonDomain(criteria, polygon); });
}

void selcriteriaDlg::lbValidateVar()
{
    const int variable = std::max(0, selectedRow(*sampleVariable_));
    change([&](SELECTIONCRITERIA& criteria) { setSampleVariable(criteria, subject_.variables, variable); });
}

void selcriteriaDlg::relaxNames()
{
    change(dialogs::relaxNames);
}

void selcriteriaDlg::relaxDate()
{
    change(dialogs::relaxDate);
}

void selcriteriaDlg::relaxAvailability()
{
    change(dialogs::relaxAvailability);
}

void selcriteriaDlg::relaxSampleSel()
{
    change(relaxSamples);
}

void selcriteriaDlg::processOK()
{
    readControls();
    accept();
}

void selcriteriaDlg::processHelp()
{
    showHelp(this, selectionHelp);
}

bool selcriteriaDlg::stationsChanged() const
{
    return selection::changeBetween(oldCriteria_, oldPolygon_, criteria_, polygon_).stations;
}

bool selcriteriaDlg::samplesChanged() const
{
    return selection::changeBetween(oldCriteria_, oldPolygon_, criteria_, polygon_).samples;
}

} // namespace dialogs
