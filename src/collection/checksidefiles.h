#pragma once

// The parts of a check that look at the description and at the small files.

#include <string>

#include "collection/findings.h"
#include "collection/varfile.h"

namespace collection {

// What the lines of a description that could be parsed say otherwise than they will be read.
void checkDescriptionLines(std::string_view text, const VARDESCRIPTION& description, RFindings& findings);
void checkVariableIds(const std::string& basePath, int variableCount, RFindings& findings);
void checkLastFiles(const std::string& basePath, RFindings& findings);
// Whether the collection is open for writing, or what a program that died has left behind.
void checkMarks(const std::string& basePath, RFindings& findings);

} // namespace collection
