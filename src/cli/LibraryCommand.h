#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `library`: the takes, newest first. Sets `exitCode` when it has run.
void addLibraryCommand(CLI::App& app, int& exitCode);

} // namespace tavi
