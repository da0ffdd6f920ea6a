#pragma once

#include "base/Result.h"
#include "project/EditProject.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// The options of a project that can be set by name: dotted paths of the keys of
/// `project.json` ("outputSettings.fps"), in the order of the file.
std::vector<std::string> projectOptionKeys();

/// Sets one option by its key.
///
/// `value` is read as JSON where it is a number, a boolean, null, a list or an
/// object; "1280x720" is a size; all else is a text, which needs no quotes. The
/// project's own decoder then judges it. The derived fields stay.
/// Errors: a sentence for the user, with the keys there are where `key` is none.
Result<void, std::string> setProjectOption(EditProject& project, std::string_view key,
                                           std::string_view value);

/// The same for an assignment "key=value".
Result<void, std::string> setProjectOption(EditProject& project, std::string_view assignment);

} // namespace tavi
