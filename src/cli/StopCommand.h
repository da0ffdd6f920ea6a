#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `stop`: ends the take of a running recorder. Sets `exitCode` when it has run.
void addStopCommand(CLI::App& app, int& exitCode);

} // namespace tavi
