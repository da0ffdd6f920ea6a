#pragma once

#include "capture/ShareableContent.h"
#include "platform/wayland/WaylandConnection.h"

#include <list>
#include <string>
#include <vector>

struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace tavi {

/// One display of a compositor.
struct WaylandOutput {
    wl_output* object = nullptr;
    zxdg_output_v1* details = nullptr; ///< Null where the compositor has none.
    std::string name;                  ///< Of its connector ("HDMI-A-1"); may be empty.
    int modeWidth = 0;                 ///< Pixels, before it is turned.
    int modeHeight = 0;
    int transform = 0; ///< Of wl_output; odd ones turn by a quarter.
    int width = 0;     ///< Points; 0 where nobody tells, as in the next three.
    int height = 0;
    int x = 0; ///< From the top left corner of the compositor's space, points.
    int y = 0;

    /// In pixels, as it is shown.
    Size pixels() const;
    /// How many pixels a point has, at least, in whole numbers.
    int scale() const;
};

/// The displays that a connection tells of, which outlives the object. Threads: the connection's.
class WaylandOutputs {
public:
    /// Waits for the compositor's answers.
    explicit WaylandOutputs(const WaylandConnection& connection);
    ~WaylandOutputs();
    WaylandOutputs(const WaylandOutputs&) = delete;
    WaylandOutputs& operator=(const WaylandOutputs&) = delete;

    /// In the compositor's order.
    const std::list<WaylandOutput>& all() const { return m_outputs; }

    /// The one with pictures of that size in pixels, if there is just one.
    const WaylandOutput* ofSize(Size pixels) const;

private:
    std::list<WaylandOutput> m_outputs; ///< Listeners know their addresses.
    zxdg_output_manager_v1* m_manager;
};

/// The displays of the Wayland session, named after their connectors, by which they have their
/// ids; sizes and frames in pixels. Empty where no compositor answers. Any thread.
std::vector<Display> waylandDisplays();

} // namespace tavi
