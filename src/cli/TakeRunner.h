#pragma once

#include "base/Result.h"
#include "capture/RecordingViewModel.h"
#include "cli/MainThread.h"
#include "cli/StatusLine.h"
#include "cli/TakeDeviceChoice.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavi::cli {

/// What a command line asks of a take.
struct TakeOptions {
    int display = 0;                     ///< Counts from 0, as `tavi sources` lists them.
    std::optional<std::uint32_t> window; ///< Recorded instead of a display.
    TakeDeviceNames devices;
    int countdown = 0;              ///< Seconds before the take starts.
    std::optional<double> duration; ///< Seconds after which it ends by itself.
};

/// Takes one take without a window: picks what was named, counts down, records until a
/// signal, the take's length or a failure, and saves. Runs the Qt loop meanwhile.
class TakeRunner {
public:
    /// Where the runner looks beyond the model; all outlive it.
    struct Ports {
        RecordingViewModel& model;
        ShareableContentSource& content; ///< The model's.
        CaptureDevices* devices;         ///< The model's; null when no device is named.
        Timers& timers;
        StopSignals& stopSignals;
        StatusLine& line;
    };

    TakeRunner(Ports ports, TakeOptions options);

    /// The program's exit status. Prints the take's folder, or what went wrong.
    int run();

private:
    using Problem = std::optional<std::string>;

    Problem prepare();
    Problem chooseSource();
    std::string withoutWindow() const;
    Problem chooseDevices();
    Problem warmUp();
    void start();
    void countDown();
    void watch();
    int finish();

    Ports m_ports;
    TakeOptions m_options;
};

} // namespace tavi::cli
