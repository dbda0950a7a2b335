#pragma once

#include <string>

namespace collection {

// Removes what programs that were killed left half written beside a collection: files on their way into the
// place of another ("<file>.<process>.<n>.tmp"). The caller holds the collection's lock, so that those of its
// own name belong to nobody any more; those of rewritings in general ("TRG...") and of writing tests go if
// their process is no longer there, and so does the mark of a rewriting. Returns how many.
int removeLeftovers(const std::string& basePath);

} // namespace collection
