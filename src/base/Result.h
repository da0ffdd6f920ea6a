#pragma once

#include <tl/expected.hpp>

namespace tavi {

/// A value or a typed error. Error types are small enums or records with a
/// `description()` that a user can read.
template<typename T, typename E>
using Result = tl::expected<T, E>;

/// Makes the error side of a Result: `return fail(error);`
template<typename E>
tl::unexpected<std::decay_t<E>> fail(E&& error) {
    return tl::unexpected<std::decay_t<E>>(std::forward<E>(error));
}

} // namespace tavi
