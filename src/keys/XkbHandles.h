#pragma once

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <memory>

namespace tavi {

/// Gives an object of the keyboard library back with its owner.
struct XkbUnref {
    void operator()(xkb_context* p) const { xkb_context_unref(p); }
    void operator()(xkb_keymap* p) const { xkb_keymap_unref(p); }
    void operator()(xkb_state* p) const { xkb_state_unref(p); }
    void operator()(xkb_compose_table* p) const { xkb_compose_table_unref(p); }
    void operator()(xkb_compose_state* p) const { xkb_compose_state_unref(p); }
};
template<typename T>
using XkbHandle = std::unique_ptr<T, XkbUnref>;

} // namespace tavi
