#pragma once

namespace CLI {
class App;
}

namespace tavi {

/// Adds `doctor`: what works on this machine and what is missing. Sets `exitCode` when it has run.
void addDoctorCommand(CLI::App& app, int& exitCode);

} // namespace tavi
