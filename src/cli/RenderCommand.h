#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `render`: one composed output frame as a PNG. Sets `exitCode` when it has run.
void addRenderCommand(CLI::App& app, int& exitCode);

} // namespace tavi
