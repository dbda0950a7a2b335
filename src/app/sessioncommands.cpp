#include "app/sessioncommands.h"

#include "app/variablelist.h"
#include "collection/variablesets.h"
#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr std::int64_t largestCommandFile = 256 << 20; // bytes

// Run mode 2 for as long as a command file lasts.
class RRunModeGuard {
public:
    explicit RRunModeGuard(RSession& session) : session_(session) { session_.runMode = commandFileRun; }
    ~RRunModeGuard()
    {
        session_.runMode = interactiveRun;
        session_.importSettings = {};
    }
    RRunModeGuard(const RRunModeGuard&) = delete;
    RRunModeGuard& operator=(const RRunModeGuard&) = delete;

private:
    RSession& session_;
};

// The session tells itself what has gone wrong.
std::string told(bool good)
{
    return good ? std::string() : std::string(toldFault);
}

bool isTemplate(const std::string& path)
{
    const std::string extension = common::toLower(common::splitPath(path).extension);
    return extension == ".var" || extension == ".o4x" || extension == ".txt";
}

} // namespace

bool RSessionCommands::openCollection(const std::string& path)
{
    if (!path.empty()) return session_.open(path) == OpenResult::ok;
    user_.note("open_collection names no collection");
    return false;
}

bool RSessionCommands::loadConfiguration(const std::string& path)
{
    return session_.loadConfiguration(path);
}

bool RSessionCommands::exportGraphics(int window, const std::string& path, int dpi)
{
    return session_.exportGraphics(path, window, dpi);
}

// The path is looked at first: an empty one would be asked for.
bool RSessionCommands::exportData(const std::string& path)
{
    if (!path.empty()) return session_.exportSpreadsheet(path, {});
    user_.note("export_data names no file");
    return false;
}

std::string RSessionCommands::createCollection(const std::string& path, const std::string& set)
{
    CREATIONCHOICE choice{collection::variableSetOf(set), {}};
    if (choice.set == collection::setTemplate)
        return "the path of the template file belongs in the place of \"" + set + "\"";
    if (choice.set == 0) {
        choice = {collection::setTemplate, common::replaceAll(set, "\\", "/")};
        if (!isTemplate(choice.templateFile))
            return "\"" + set + "\" is no set of variables and no template file (.var, .o4x or .txt)";
    }
    return told(session_.createCollection(path, choice));
}

std::string RSessionCommands::copyCollection(const std::string& path)
{
    return told(session_.copyCollection(path));
}

std::string RSessionCommands::moveCollection(const std::string& path)
{
    return told(session_.moveCollection(path));
}

std::string RSessionCommands::deleteCollection()
{
    return told(session_.deleteCollection());
}

std::string RSessionCommands::sortAndCondense()
{
    return told(session_.sortAndCondense());
}

std::string RSessionCommands::changeVariables(const std::string& listFile)
{
    std::string fault;
    std::vector<collection::VARINFO> variables =
        readVariableList(common::absolutePath(listFile), session_.collection.variableCount, fault);
    return variables.empty() ? fault : told(session_.changeVariables(std::move(variables)));
}

std::string RSessionCommands::deleteSelected()
{
    return told(session_.deleteSelected());
}

std::string RSessionCommands::deleteEmpty()
{
    return told(session_.deleteEmpty());
}

std::string RSessionCommands::deleteStation(int number)
{
    return told(session_.deleteStation(number));
}

std::string RSessionCommands::addLogComment(std::string_view text)
{
    return told(session_.addLogComment(std::string(text)));
}

std::string RSessionCommands::closeCollection()
{
    return told(session_.close(false));
}

std::string RSessionCommands::checkCollection(const std::string& path)
{
    return told(session_.checkCollection(path));
}

std::string RSessionCommands::setWindow(const WINDOWVARIABLES& variables)
{
    return session_.setWindow(variables.window, variables.x, variables.y, variables.z);
}

std::string RSessionCommands::setRange(const WINDOWRANGES& ranges)
{
    std::string wrong = session_.setRange(ranges.window, 0, ranges.x.first, ranges.x.second);
    if (wrong.empty()) wrong = session_.setRange(ranges.window, 1, ranges.y.first, ranges.y.second);
    if (wrong.empty() && ranges.z)
        wrong = session_.setRange(ranges.window, 2, ranges.z->first, ranges.z->second);
    return wrong;
}

std::string RSessionCommands::setStyle(const WINDOWSTYLE& style)
{
    return session_.setStyle(style.window, style.style, style.dotSize);
}

std::string RSessionCommands::setPalette(int window, std::string_view name)
{
    return session_.setPalette(window, name);
}

std::string RSessionCommands::setDomain(const DOMAINCHOICE& domain)
{
    return session_.setDomain(domain.lonMin, domain.lonMax, domain.latMin, domain.latMax, domain.projection,
                              domain.pole);
}

std::string RSessionCommands::plotStation(std::optional<int> number)
{
    return session_.plotStation(number);
}

std::string RSessionCommands::setImport(std::span<const KEYVALUE> pairs)
{
    importing::IMPORTSETTINGS settings = session_.importSettings;
    for (const KEYVALUE& pair : pairs) {
        std::string wrong = importing::setImportSetting(settings, pair.key, pair.value);
        if (!wrong.empty()) return wrong;
    }
    session_.importSettings = std::move(settings);
    return {};
}

std::string RSessionCommands::importFile(const FILEIMPORT& file)
{
    return told(session_.importFile(file.format, file.path, file.mode));
}

std::string RSessionCommands::exportListing(exporting::ListingForm form, const std::string& path)
{
    return told(session_.exportListing(form, path));
}

std::string RSessionCommands::exportCollection(const std::string& path)
{
    return told(session_.exportCollection(path));
}

std::string RSessionCommands::exportSpreadsheet(const TABLEEXPORT& table)
{
    exporting::SPREADSHEETOPTIONS options;
    options.missingText = table.missingText;
    for (const std::string& name : table.variables) {
        const int variable = session_.variableOf(name);
        if (variable == 0) return "there is no variable \"" + name + "\"";
        options.variables.push_back(variable);
    }
    return told(session_.exportSpreadsheet(table.path, options));
}

std::string RSessionCommands::addExpression(const FORMULACHOICE& choice)
{
    variables::EXPRESSIONDEFINITION definition;
    definition.label = choice.label;
    definition.width = choice.width;
    definition.decimals = choice.decimals;
    definition.formula = choice.formula;
    return session_.addExpression(std::move(definition), choice.inputs);
}

bool executeCommandFile(const std::string& path, RSession& session, RSessionView& view, common::RUser& user)
{
    const RRunModeGuard guard(session);
    const std::optional<std::string> content =
        path.empty() ? std::nullopt : common::readFile(path, largestCommandFile);
    if (!content) {
        user.note(path.empty() ? "no command file is named behind -x"
                               : "command file " + path + " could not be read");
        return false;
    }
    user.setAbort(false);
    RSessionCommands commands(session, view, user);
    return runCommands(*content, path, commands, [&user](std::string_view note) { user.note(note); });
}

} // namespace app
