#pragma once

namespace tavi {

/// True when the environment says that this program runs in a Wayland session, whether or not
/// there is an X server for older programs beside it.
bool isWaylandSession();

} // namespace tavi
