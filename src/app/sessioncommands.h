#pragma once

// The commands of a command file, carried out on a session.

#include "app/commandfile.h"
#include "app/session.h"

namespace app {

class RSessionCommands final : public RCommandTarget {
public:
    RSessionCommands(RSession& session, RSessionView& view, common::RUser& user)
        : session_(session), view_(view), user_(user)
    {
    }

    [[nodiscard]] bool isAllowed(int commandId) override { return session_.isAllowed(commandId, 0); }
    [[nodiscard]] std::string refusal(int commandId) override { return session_.refusal(commandId); }
    [[nodiscard]] bool isAborted() override { return user_.abortRequested(); }
    [[nodiscard]] bool openCollection(const std::string& path) override;
    [[nodiscard]] bool loadConfiguration(const std::string& path) override;
    [[nodiscard]] bool exportGraphics(int window, const std::string& path, int dpi) override;
    [[nodiscard]] bool exportData(const std::string& path) override;
    void quit() override { view_.requestClose(); }

    [[nodiscard]] std::string createCollection(const std::string& path, const std::string& set) override;
    [[nodiscard]] std::string copyCollection(const std::string& path) override;
    [[nodiscard]] std::string moveCollection(const std::string& path) override;
    [[nodiscard]] std::string deleteCollection() override;
    [[nodiscard]] std::string sortAndCondense() override;
    [[nodiscard]] std::string changeVariables(const std::string& listFile) override;
    [[nodiscard]] std::string deleteSelected() override;
    [[nodiscard]] std::string deleteEmpty() override;
    [[nodiscard]] std::string deleteStation(int number) override;
    [[nodiscard]] std::string addLogComment(std::string_view text) override;
    [[nodiscard]] std::string closeCollection() override;
    [[nodiscard]] std::string checkCollection(const std::string& path) override;

    [[nodiscard]] std::string setMode(int mode) override { return session_.setMode(mode); }
    [[nodiscard]] std::string useLayout(std::string_view text) override { return session_.useLayout(text); }
    [[nodiscard]] std::string setWindow(const WINDOWVARIABLES& variables) override;
    [[nodiscard]] std::string setRange(const WINDOWRANGES& ranges) override;
    [[nodiscard]] std::string fullRange(std::optional<int> window) override
    {
        return session_.fullRange(window);
    }
    [[nodiscard]] std::string setStyle(const WINDOWSTYLE& style) override;
    [[nodiscard]] std::string setPalette(int window, std::string_view name) override;
    [[nodiscard]] std::string setDomain(const DOMAINCHOICE& domain) override;
    [[nodiscard]] std::string plotStation(std::optional<int> number) override;
    [[nodiscard]] std::string setImport(std::span<const KEYVALUE> pairs) override;
    [[nodiscard]] std::string select(std::span<const KEYVALUE> pairs) override
    {
        return session_.select(pairs);
    }
    [[nodiscard]] std::string importFile(const FILEIMPORT& file) override;
    [[nodiscard]] std::string exportListing(exporting::ListingForm form, const std::string& path) override;
    [[nodiscard]] std::string exportCollection(const std::string& path) override;
    [[nodiscard]] std::string exportSpreadsheet(const TABLEEXPORT& table) override;
    [[nodiscard]] std::string setKey(const std::string& keyText, const std::string& variable) override
    {
        return session_.setKey(keyText, variable);
    }
    [[nodiscard]] std::string addDerived(const DERIVEDCHOICE& choice) override
    {
        return session_.addDerived(choice.row, choice.parameters);
    }
    [[nodiscard]] std::string addExpression(const FORMULACHOICE& choice) override;
    [[nodiscard]] std::string addMacro(const std::string& path,
                                       const std::vector<std::string>& inputs) override
    {
        return session_.addMacro(path, inputs);
    }
    [[nodiscard]] std::string deleteDerived(const std::string& variable) override
    {
        return session_.deleteDerived(variable);
    }

private:
    RSession& session_;
    RSessionView& view_;
    common::RUser& user_;
};

// Runs a command file in run mode 2. False, after a line on standard error through `user`, if the file can't
// be read or was left at a line. Afterwards the run mode is 1 again, and import settings of the file are
// forgotten.
[[nodiscard]] bool executeCommandFile(const std::string& path, RSession& session, RSessionView& view,
                                      common::RUser& user);

} // namespace app
