#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `record`: records one take. Sets `exitCode` when it has run.
void addRecordCommand(CLI::App& app, int& exitCode);

} // namespace tavi
