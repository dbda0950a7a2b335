#pragma once

// A macro while it is edited, without widgets.

#include <string>

#include <QStringList>

#include "variables/macrofile.h"

namespace dialogs {

class REditedMacro {
public:
    // A new macro, which has no file yet.
    REditedMacro() = default;
    REditedMacro(variables::MACRO macro, std::string path);

    [[nodiscard]] const variables::MACRO& macro() const { return macro_; }
    [[nodiscard]] const std::string& path() const { return path_; } // empty: it has no file
    [[nodiscard]] QString fileName() const;                         // "NewMacro.mac" if it has none
    // It differs from its file.
    [[nodiscard]] bool isDirty() const { return dirty_; }

    [[nodiscard]] QString label() const;
    [[nodiscard]] QString expression() const;
    [[nodiscard]] QString comment() const; // without its last line feed
    [[nodiscard]] QStringList inputLines() const;

    // Each marks the macro as dirty if it changes it. In texts of several lines a carriage return in front of
    // a line feed goes.
    void setLabel(const QString& text);
    void setFormat(const QString& widthText, const QString& decimalsText);
    void setExpression(const QString& text);
    void setComment(const QString& text);
    // Appends an input of that text, trimmed; false for an empty one, or if there are nine.
    [[nodiscard]] bool addInput(const QString& text);
    // Later inputs move up; the formula keeps its numbers.
    [[nodiscard]] bool removeInput(int row);

    // What can't be stored: the formula or the comment is too long. Empty if all can.
    [[nodiscard]] QString obstacle() const;
    // What a variable made from the macro would suffer from; empty if nothing.
    [[nodiscard]] QString fault() const;
    // Writes it to `path`, which is its file from then on, and which it no longer differs from.
    [[nodiscard]] bool save(const std::string& path);

private:
    template <typename T>
    void change(T& field, const T& value);

    variables::MACRO macro_;
    std::string path_;
    bool dirty_ = false;
};

} // namespace dialogs
