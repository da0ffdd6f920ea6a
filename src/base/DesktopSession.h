#pragma once

namespace tavi {

/// True when the desktop's windows are a Wayland compositor's. The session's own word
/// ($XDG_SESSION_TYPE) counts; a session that was started from a console says "tty", and
/// then $WAYLAND_DISPLAY tells.
bool isWaylandSession();

} // namespace tavi
