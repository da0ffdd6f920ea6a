#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `zoom`: generates zoom keyframes from the log of a take. Sets `exitCode` when it has run.
void addZoomCommand(CLI::App& app, int& exitCode);

} // namespace tavi
