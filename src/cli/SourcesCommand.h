#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `sources`: what can be recorded. Sets `exitCode` when it has run.
void addSourcesCommand(CLI::App& app, int& exitCode);

} // namespace tavi
