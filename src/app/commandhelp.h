#pragma once

namespace app {

// The line of help that is shown while the menu entry of a command is highlighted.
[[nodiscard]] const char* commandHelp(int id);

} // namespace app
