#pragma once

#include <string>
#include <system_error>

namespace tavi {

/// Why the system refused something, for the end of a message: `code` is an errno.
///
/// Common reasons are English texts of the catalogue "Errors", whatever the process's locale is,
/// so that a window tells them in its language and the command line in its own; rarer ones are the
/// system's words. Thread: any.
std::string systemReason(int code);

/// The same of an error of the standard library.
std::string systemReason(const std::error_code& error);

} // namespace tavi
