#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `inspect`: what the engine computes of a take, as JSON. Sets `exitCode` when it has run.
void addInspectCommand(CLI::App& app, int& exitCode);

} // namespace tavi
