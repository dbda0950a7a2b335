#pragma once

// Adding and deleting derived variables, and the roles that variables play.

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/rcollection.h"
#include "common/installation.h"
#include "common/user.h"
#include "variables/derivation.h"
#include "variables/registry.h"

namespace variables {

// A question for a variable.
struct IDENTIFICATION {
    std::string title;   // "%s - Identify %s": the task and the key text
    std::string task;    // the label of what is set up
    std::string keyText; // the role, "Depth [m]", or "Numerator", "Variable", ...
    int proposed = 0;    // the variable that is likely meant, 0 if there is none
    bool isKey = true;   // the answer is a role that `.idv` keeps
    bool isSure = false; // `proposed` may be taken where nobody can be asked
};

// A formula as the user defines it.
struct EXPRESSIONDEFINITION {
    std::string label = "New Var [units]"; // in UTF-8 or Latin-1, at most 60 bytes
    int width = 8, decimals = 3;
    std::string formula;
    std::vector<int> inputs; // numbers of variables, at most 9
};

// What is told under a title; nothing is wrong if the text is empty.
struct SETUPFAULT {
    std::string title, text;
};
// What keeps a definition from becoming a variable behind `variableCount` others.
[[nodiscard]] SETUPFAULT definitionFault(const EXPRESSIONDEFINITION& definition, int variableCount);

// A question that a set-up is going to ask.
struct SETUPQUESTION {
    enum class Kind { role, variable, number };
    Kind kind = Kind::role;
    std::string text;   // the key text, or the prompt of a number
    int source = 0;     // which source of the variable the answer is, from 1; 0 for a number
    int recorded = 0;   // a role that `.idv` knows: its variable
    std::string preset; // of a number
};

// Who answers the questions of a set-up. Each answer is nothing if it was cancelled.
class RVariableSettler {
public:
    virtual ~RVariableSettler() = default;
    // What is going to be asked, as far as that is known before the first answer: a way to read a time, and
    // its origin, may follow. False ends the set-up.
    [[nodiscard]] virtual bool begin(std::span<const SETUPQUESTION>, const collection::RCollection&)
    {
        return true;
    }
    // Whether roles that `.idv` records are asked for too. Such an answer counts for this set-up alone.
    [[nodiscard]] virtual bool answersRecorded() const { return false; }
    // All is answered and nothing is changed yet. False ends the set-up.
    [[nodiscard]] virtual bool finish() { return true; }
    [[nodiscard]] virtual std::optional<int> identify(const IDENTIFICATION& question,
                                                      const collection::RCollection& collection) = 0;
    // A number as text, read with "%f".
    [[nodiscard]] virtual std::optional<std::string>
    askNumber(std::string_view title, std::string_view prompt, std::string_view preset) = 0;
    // One of the ways to read a time (row ids of timeconversions.h); `target` is "Time [yr]" or "Day of Year
    // [days]".
    [[nodiscard]] virtual std::optional<int> chooseTimeForm(std::string_view label,
                                                            std::string_view target) = 0;
    // The origin "yyyy-mm-dd hh:mm:ss" that the label of a time variable lacks.
    [[nodiscard]] virtual std::optional<std::string> askOrigin(std::string_view label) = 0;
    [[nodiscard]] virtual std::optional<EXPRESSIONDEFINITION>
    defineExpression(const collection::RCollection& collection) = 0;
    // A macro file; empty if cancelled.
    [[nodiscard]] virtual std::string chooseMacroFile(const std::string& folder) = 0;
};

// The format of the row "Macro File": that of the macro that was loaded last. One a program.
struct MACROFORMAT {
    int width = 8, decimals = 3;
};

// What a set-up works with.
struct SETUPTOOLS {
    SURROUNDINGS& surroundings;
    const common::INSTALLATION& installation;
    RVariableSettler& settler;
    common::RUser& user;
    MACROFORMAT& macroFormat;
};

// Adds one variable of a row of the table. Returns its number; 0 if nothing was added, after a message unless
// the user cancelled. Nothing is changed, `.idv` included, before the last question is answered.
[[nodiscard]] int addDerivedVariable(collection::RCollection& collection, int rowIndex,
                                     const SETUPTOOLS& tools);

// Removes derived variable k (1 is the first) and all that depend on it; what refers to later ones by their
// numbers (sources, criteria, needed variables) is brought behind them. Returns how many were removed at or
// before k; 0 if there is no such variable.
int deleteDerivedVariable(collection::RCollection& collection, int k);
// Which variables that would be, by their numbers, ascending.
[[nodiscard]] std::vector<int> dependentVariables(const collection::RCollection& collection, int number);

// True if the answer to a question of this calculator is a role that `.idv` keeps.
[[nodiscard]] bool isRecordable(int id, std::string_view keyText);
// The variable that plays a role by `.idv`; 0 if there is none among the collection's own.
[[nodiscard]] int recordedVariable(const collection::RCollection& collection, std::string_view keyText);
// Notes it there. False if it can't be: the collection can't be written to, or the variable is a derived one.
bool recordVariable(collection::RCollection& collection, std::string_view keyText, int number);

// The variable that plays a role: by `.idv` if `recordable` (the answer is then noted there, if it is one of
// the collection's own), else by the settler. 0 if the user cancelled.
[[nodiscard]] int identifyVariable(collection::RCollection& collection, std::string_view title,
                                   std::string_view keyText, bool recordable, RVariableSettler& settler);
inline constexpr std::string_view potentialTemperatureKey = "Pot. Temperature [°C] (any ref.)";
struct PROPOSAL {
    int variable = 0; // 0: none
    bool isSure = false;
};
// The variable that is likely meant (index 0 of the span is no variable; case and markup ignored): the first
// with the key text as its label, else with its name in front of the units; for a potential temperature that
// has no such label a derived one, if possible referred to 0. The first whose label only contains the text is
// a proposal to be confirmed.
[[nodiscard]] PROPOSAL proposedVariable(std::span<const collection::VARINFO> variables,
                                        std::string_view keyText);

struct KEYROLE {
    std::string keyText;
    int variable = 0;
};
// The roles that `.idv` records, in its order; one whose number is no variable of the collection has 0.
[[nodiscard]] std::vector<KEYROLE> recordedRoles(const collection::RCollection& collection);
// Asks again for each of them. Returns the number of changes; what keeps one from being noted is told.
int resetKeyVariables(collection::RCollection& collection, RVariableSettler& settler, common::RUser& user);

// The derived variables of a collection, to be put back when its own variables have become others.
struct DERIVEDSET {
    int firstNumber = 1; // of the derived variables
    std::vector<collection::VARINFO> variables;
    std::vector<double> timeOrigins;
    int nMacros = 0;
    std::array<std::string, common::maxFormulas> formulas;
};
[[nodiscard]] DERIVEDSET derivedSet(const collection::RCollection& collection);
// newNumbers[old]: the new number of each of the old collection variables, 0 for one that is gone (index 0 is
// no variable). Variables that have lost a source, or for which there is no room, are left out. Returns the
// new number of each variable of the set, 0 for those.
std::vector<int> restoreDerived(collection::RCollection& collection, const DERIVEDSET& set,
                                std::span<const int> newNumbers);

} // namespace variables
