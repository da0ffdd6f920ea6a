#pragma once

namespace tavi {

/// What a desktop lets a take know of the pointer. It is told before the take, since it decides
/// what can be done with the pointer afterwards.
enum class CursorMode {
    /// Position and picture come beside the stream: the log has both, the video has neither.
    metadata,
    /// Nothing comes: the pointer is neither in the video nor in the log.
    hidden,
    /// The pointer is painted into the video and not in the log: it can't be moved, restyled or
    /// hidden later.
    embedded,
};

} // namespace tavi
