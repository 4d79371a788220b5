// What the registry makes a window with, for the file of the window: `template Form* makeForm<FrmX>(...)` for
// one that is made with the session, or with the session and the commands, and a specialisation for any
// other.
#pragma once

#include <concepts>

#include "windows/window_registry.h"

namespace zentaq {

template <typename F>
Form* makeForm(const FormNeeds& needs) {
    if constexpr (std::constructible_from<F, Session&, MainCommands&, QWidget*>) {
        return new F(needs.session, needs.commands, needs.parent);
    } else {
        return new F(needs.session, needs.parent);
    }
}

}  // namespace zentaq
