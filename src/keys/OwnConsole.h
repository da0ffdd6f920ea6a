#pragma once

namespace tavi {

/// True while the console of this session is the one that is shown, so that its keys
/// are this user's; also where there are no consoles or the session has none.
bool isOwnConsoleShown();

} // namespace tavi
