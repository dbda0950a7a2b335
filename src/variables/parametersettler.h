#pragma once

// Answers the questions of a set-up from a list of parameters, where nobody can be asked.

#include <optional>
#include <string>
#include <vector>

#include "variables/setup.h"

namespace variables {

// Variables are named by label or number. Questions other than roles take the parameters, and so do the roles
// if there is one more for each of them, or for each that `.idv` doesn't record; for a macro they are all of
// its inputs or none. Else a role is played by the variable that `.idv` tells or whose label says so, which
// is noted. A number without a parameter takes its preset. Everything else that is missing, unknown or left
// over is a fault, and the set-up changes nothing.
class RParameterSettler final : public RVariableSettler {
public:
    RParameterSettler(std::vector<std::string> parameters, common::RUser& user)
        : parameters_(std::move(parameters)), user_(user)
    {
    }
    // What defineExpression() answers; the parameters are its inputs.
    void giveExpression(EXPRESSIONDEFINITION definition) { expression_ = std::move(definition); }
    void giveMacroFile(std::string path) { macroFile_ = std::move(path); }

    // What is wrong and what is missing; empty if every question had its answer.
    [[nodiscard]] const std::string& fault() const { return fault_; }

    [[nodiscard]] bool begin(std::span<const SETUPQUESTION> questions,
                             const collection::RCollection& collection) override;
    [[nodiscard]] bool answersRecorded() const override { return roles_ == Roles::all; }
    [[nodiscard]] bool finish() override;
    [[nodiscard]] std::optional<int> identify(const IDENTIFICATION& question,
                                              const collection::RCollection& collection) override;
    [[nodiscard]] std::optional<std::string> askNumber(std::string_view title, std::string_view prompt,
                                                       std::string_view preset) override;
    [[nodiscard]] std::optional<int> chooseTimeForm(std::string_view label, std::string_view target) override;
    [[nodiscard]] std::optional<std::string> askOrigin(std::string_view label) override;
    [[nodiscard]] std::optional<EXPRESSIONDEFINITION>
    defineExpression(const collection::RCollection& collection) override;
    [[nodiscard]] std::string chooseMacroFile(const std::string& folder) override;

private:
    [[nodiscard]] bool dropRepeated(std::span<const SETUPQUESTION> questions,
                                    const collection::RCollection& collection);
    [[nodiscard]] bool beginMacro(std::size_t inputs);
    [[nodiscard]] const std::string* next();
    [[nodiscard]] std::optional<int> takeVariable(std::string_view question,
                                                  const collection::RCollection& collection);
    [[nodiscard]] std::optional<int> likelyVariable(const IDENTIFICATION& question,
                                                    const collection::RCollection& collection);
    void fail(std::string text);

    std::vector<std::string> parameters_;
    common::RUser& user_;
    std::size_t used_ = 0;
    enum class Roles { none, unrecorded, all } roles_ = Roles::none; // that take parameters
    std::vector<std::string> notes_;                                 // told when all is answered
    std::string fault_, macroFile_;
    std::optional<EXPRESSIONDEFINITION> expression_;
};

} // namespace variables
