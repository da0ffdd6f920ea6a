#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `export`: the finished film of a take. Sets `exitCode` when it has run.
void addExportCommand(CLI::App& app, int& exitCode);

} // namespace tavi
