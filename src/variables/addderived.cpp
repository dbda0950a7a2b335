#include <algorithm>

#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "variables/derivedlabels.h"
#include "variables/gammaatlas.h"
#include "variables/newvariable.h"
#include "variables/setupquestions.h"
#include "variables/timesetup.h"

namespace variables {
namespace {

using collection::RCollection;
using collection::VARINFO;

bool hasHistory(const DRVVAR& row, const SETUPTOOLS& tools)
{
    const int gas = gasOf(row.id);
    if (gas < 0 || tools.surroundings.histories[static_cast<std::size_t>(gas)].n > 0) return true;
    const std::string path =
        tools.installation.atmhist + std::string(historyFiles[static_cast<std::size_t>(gas)]);
    const bool isThere = common::fileSize(path) >= 0;
    tools.user.about(
        row.label,
        "ERROR. File:\n" + path +
            (isThere ? "\nholds no history: lines \"year north south\" behind a heading." : " missing."));
    return false;
}

bool hasAtlas(const DRVVAR& row, const SETUPTOOLS& tools)
{
    if (row.id != idNeutralDensity || tools.surroundings.atlas) return true;
    const std::string folder = tools.installation.support + "gamma_n/";
    std::string fault;
    tools.surroundings.atlas = loadGammaAtlas(folder, fault);
    if (tools.surroundings.atlas) return true;
    tools.user.about(
        "gamma_n support files not found ...",
        "You should install the <gamma_n> optional package!\n\n" + fault +
            "\n\nThe atlas is that of Jackett and McDougall (1997). Get its netCDF file (gamma.nc) "
            "from the authors and run:\nmake_gamma_atlas gamma.nc " +
            folder);
    return false;
}

bool mayBeMade(const RCollection& collection, const DRVVAR& row, const SETUPTOOLS& tools)
{
    if (collection.totalVariableCount >= common::maxVariables) {
        tools.user.about("Could not add derived variable ...", "Maximum number of variables reached!");
        return false;
    }
    const bool takesSlot = row.id == idMacro || row.id == idExpression;
    if (takesSlot && collection.nMacros >= common::maxFormulas) {
        tools.user.about("Can not add derived variable!", "Maximum number of 'Macro' variables reached.");
        return false;
    }
    if (row.id == idPatches || row.id == idDifference) {
        tools.user.about(row.label,
                         "Variables of this kind can't be made by this version of the program yet.");
        return false;
    }
    return hasHistory(row, tools) && hasAtlas(row, tools);
}

// The set-up of one variable of a row that asks by the list of its questions.
class RSetup {
public:
    RSetup(RCollection& collection, const DRVVAR& row, const SETUPTOOLS& tools)
        : collection_(collection), row_(row), tools_(tools), variable_(variableOfRow(collection, row))
    {
        variable_.nSources = sourceCountOf(row.id);
    }
    [[nodiscard]] int run();

private:
    [[nodiscard]] bool ask(const SETUPQUESTION& question);
    [[nodiscard]] bool askNumber(const SETUPQUESTION& question);
    [[nodiscard]] std::string taskOf(const SETUPQUESTION& question) const;
    [[nodiscard]] int join();

    RCollection& collection_;
    const DRVVAR& row_;
    const SETUPTOOLS& tools_;
    VARINFO variable_;
    TIMEREADING time_;
    NEWROLES roles_;
};

int RSetup::run()
{
    const std::vector<SETUPQUESTION> questions = setupQuestions(collection_, row_);
    if (!tools_.settler.begin(questions, collection_)) return 0;
    for (const SETUPQUESTION& question : questions) {
        if (!ask(question)) return 0;
    }
    const bool readsTime = row_.id == idTime || row_.id == idDayOfYear;
    if (readsTime && !settleTime(collection_, variable_.sources[0], row_, tools_, time_)) return 0;
    if (!tools_.settler.finish()) return 0;
    if (readsTime) warnOfCells(collection_, variable_.sources[0], row_, time_, tools_.user);
    return join();
}

bool RSetup::ask(const SETUPQUESTION& question)
{
    if (question.kind == SETUPQUESTION::Kind::number) return askNumber(question);
    const int answer = identifyForSetup(collection_, taskOf(question), question.text,
                                        question.kind == SETUPQUESTION::Kind::role, roles_, tools_.settler);
    variable_.sources[question.source - 1] = answer;
    return answer != 0;
}

std::string RSetup::taskOf(const SETUPQUESTION& question) const
{
    std::string task(row_.label);
    if (question.text != "Denominator") return task;
    const VARINFO& numerator = collection_.variables[static_cast<std::size_t>(variable_.sources[0])];
    return task + " " + common::labelToUtf8(common::fieldText(numerator.shortLabel)) + "/..";
}

bool RSetup::askNumber(const SETUPQUESTION& question)
{
    const auto text = tools_.settler.askNumber(row_.label, question.text, question.preset);
    if (!text) return false;
    std::string_view rest = *text;
    if (common::takeFloat(rest, variable_.param)) return true;
    tools_.user.about(row_.label, "\"" + *text + "\" is no number.");
    return false;
}

int RSetup::join()
{
    collection::setLabel(variable_,
                         derivedLabel(collection_, row_, std::span(variable_.sources), variable_.param));
    variable_.intParam = std::max(time_.form, 0);
    const int number = joinVariable(collection_, variable_, roles_, tools_.user);
    collection_.timeOrigins[static_cast<std::size_t>(number)] = time_.origin;
    return number;
}

} // namespace

int addDerivedVariable(RCollection& collection, int rowIndex, const SETUPTOOLS& tools)
{
    if (rowIndex < 0 || rowIndex >= derivedRowCount) return 0;
    const DRVVAR& row = derivedRows()[static_cast<std::size_t>(rowIndex)];
    if (!mayBeMade(collection, row, tools)) return 0;
    if (row.id == idExpression) return addExpression(collection, tools);
    if (row.id != idMacro) return RSetup(collection, row, tools).run();
    const std::string path = tools.settler.chooseMacroFile(tools.installation.macros);
    return path.empty() ? 0 : loadMacroVariable(collection, path, tools);
}

} // namespace variables
