#pragma once

#include <QString>

#include <filesystem>

namespace tavi {

/// What a user typed as a take's new name, without blanks at both ends.
QString trimmedName(const QString& text);

/// Why a take can't be called that, for the user; empty when it can. `name` is trimmed;
/// `folder` is the take's folder now.
QString problemWithName(const QString& name, const std::filesystem::path& folder);

} // namespace tavi
