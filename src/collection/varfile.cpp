#include "collection/varfile.h"

#include <algorithm>

#include "collection/stationstreams.h"
#include "collection/varformat.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr int variableLine = 7; // of variable 1
constexpr std::size_t valueColumn = 12, formatColumn = 60;

std::string_view valueOf(std::string_view line)
{
    return common::trimBlanks(line.size() > valueColumn ? line.substr(valueColumn) : std::string_view());
}

// The number at the front of a value; text behind it is no concern.
bool countOf(std::string_view line, int& count)
{
    std::string_view rest = valueOf(line);
    return common::takeInt(rest, count) && count >= 0;
}

bool isUsableName(std::string_view name)
{
    return !name.empty() && name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

void readFormat(std::string_view line, VARINFO& variable)
{
    const std::pair<int, int> format = formatOfLine(line);
    variable.width = format.first;
    variable.decimals = format.second;
    clampFormat(variable.width, variable.decimals);
}

VarFileResult refuse(VARFAULT& fault, int line, std::string text)
{
    fault = {line, std::move(text)};
    return VarFileResult::badFormat;
}

std::string withoutControls(std::string_view text)
{
    std::string clean(text);
    for (char& c : clean) {
        if (static_cast<unsigned char>(c) < 32) c = ' ';
    }
    return clean;
}

std::string withExtension(const std::string& file)
{
    return file.ends_with(".var") ? file : file + ".var";
}

} // namespace

std::pair<int, int> formatOfLine(std::string_view line)
{
    std::pair<int, int> format{0, 0};
    std::string_view text = line.size() > formatColumn ? line.substr(formatColumn) : std::string_view();
    if (common::takeInt(text, format.first) && text.starts_with('.')) {
        text.remove_prefix(1);
        if (!common::takeInt(text, format.second)) format.second = 0;
    }
    return format;
}

VARINFO parseVariableLine(std::string_view line, int number)
{
    VARINFO variable = emptyVariable(number);
    readFormat(line, variable);
    setLabel(variable, common::trimBlanks(line.substr(0, formatColumn)));
    return variable;
}

VarFileResult parseVarFile(std::string_view bytes, VARDESCRIPTION& out, VARFAULT& fault)
{
    fault = {};
    if (!common::takeLine(bytes).starts_with("NVQ")) return refuse(fault, 1, std::string(oldFormatText));
    VARDESCRIPTION read;
    read.name = valueOf(common::takeLine(bytes));
    if (!isUsableName(read.name)) return refuse(fault, 2, "no usable name of the collection");
    read.type = valueOf(common::takeLine(bytes));
    if (!countOf(common::takeLine(bytes), read.stationCount))
        return refuse(fault, 4, "no valid number of stations");
    if (!countOf(common::takeLine(bytes), read.variableCount))
        return refuse(fault, 5, "no valid number of variables");
    if (read.variableCount > common::maxVariables) {
        return refuse(fault, 5,
                      common::format("%d variables, but a collection has at most %d", read.variableCount,
                                     common::maxVariables));
    }
    static_cast<void>(common::takeLine(bytes));
    for (int v = 0; v < common::variableSlots; ++v) {
        const bool counted = v >= 1 && v <= read.variableCount;
        if (counted && !bytes.empty()) read.describedCount = v;
        read.variables[static_cast<std::size_t>(v)] =
            counted ? parseVariableLine(common::takeLine(bytes), v) : emptyVariable(v);
    }
    out = std::move(read);
    return VarFileResult::ok;
}

std::string formatVarFile(std::string_view name, std::string_view type, int stationCount, int variableCount,
                          std::span<const VARINFO> variables)
{
    std::string text = common::format("NVQ4.0\nCollection: %s\n      Type: %s\n     Nstat: %d\n"
                                      " Variables: %d\n\n",
                                      withoutControls(name).c_str(), withoutControls(type).c_str(),
                                      stationCount, variableCount);
    for (int v = 1; v <= variableCount; ++v) {
        const VARINFO& variable = variables[static_cast<std::size_t>(v)];
        text += common::format("%-60s%2i.%1i\n", withoutControls(common::fieldText(variable.label)).c_str(),
                               variable.width, variable.decimals);
    }
    return text;
}

VarFileResult RCollection::readVarFile(const std::string& file, std::string_view title, common::RUser& user)
{
    const std::string varFile = withExtension(file);
    const std::string box = title.empty() ? varFile : std::string(title);
    if (!common::fileExists(varFile)) {
        if (!title.empty()) user.about(title, "Collection \"" + varFile + "\" does not exist!");
        return VarFileResult::missing;
    }
    const auto bytes = common::readFile(varFile, largestDescription);
    if (!bytes) {
        user.about(box, varFile + " can't be read as the description of a collection.");
        return VarFileResult::badFormat;
    }
    VARDESCRIPTION description;
    VARFAULT fault;
    if (parseVarFile(*bytes, description, fault) != VarFileResult::ok) {
        user.about(box, fault.line == 1
                            ? fault.text
                            : common::format("%s:%d: %s", varFile.c_str(), fault.line, fault.text.c_str()));
        return VarFileResult::badFormat;
    }
    if (description.describedCount < description.variableCount) {
        user.note(common::format("%s: ends before line %d; variables %d to %d have no label", varFile.c_str(),
                                 variableLine + description.describedCount, description.describedCount + 1,
                                 description.variableCount));
    }
    directory = common::splitPath(varFile).directory;
    name = std::move(description.name);
    path = directory + name;
    type = std::move(description.type);
    stationCount = description.stationCount;
    variableCount = totalVariableCount = description.variableCount;
    headerRecordSize = 80 + 2 * variableCount;
    variables = description.variables;
    return VarFileResult::ok;
}

bool RCollection::writeVarFile(const std::string& basePath)
{
    if (!writable || variableCount < 0 || variableCount > common::maxVariables || stationCount < 0)
        return false;
    const std::string_view baseName = std::string_view(basePath).substr(basePath.rfind('/') + 1);
    if (!isUsableName(baseName)) return false;
    const std::string text = formatVarFile(baseName, type, stationCount, variableCount, variables);
    if (!common::writeFile(basePath + ".var", text)) return false;
    if (basePath == path) files_->describedCount = stationCount;
    return true;
}

int describedStations(const std::string& file)
{
    const auto text = common::readFile(file, largestDescription);
    VARDESCRIPTION read;
    VARFAULT fault;
    const bool good = text && parseVarFile(*text, read, fault) == VarFileResult::ok;
    return good ? read.stationCount : -1;
}

} // namespace collection
