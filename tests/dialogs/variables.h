#pragma once

#include <string>
#include <vector>

#include <QListWidget>
#include <QWidget>

#include "collection/varinfo.h"

namespace testing_support {

// Variables with these labels, numbered from 1; index 0 is no variable.
inline std::vector<collection::VARINFO> variablesOf(const std::vector<std::string>& labels)
{
    std::vector<collection::VARINFO> variables{collection::emptyVariable(0)};
    for (const std::string& label : labels) {
        variables.push_back(collection::emptyVariable(static_cast<int>(variables.size())));
        collection::setLabel(variables.back(), label);
    }
    return variables;
}

inline std::vector<std::string> linesOf(const QListWidget& list)
{
    std::vector<std::string> lines;
    for (int row = 0; row < list.count(); ++row) lines.push_back(list.item(row)->text().toStdString());
    return lines;
}

template <typename T>
T& child(QWidget& form, const char* name)
{
    T* const found = form.findChild<T*>(QLatin1StringView(name));
    if (!found) qFatal("the form has no %s", name);
    return *found;
}

} // namespace testing_support
