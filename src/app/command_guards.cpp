#include "app/command_guards.h"

#include "app/session.h"
#include "app/window_set.h"

namespace zentaq {

void afterEdits(Session& session, const std::string& caption, const std::function<void()>& command) {
    const auto again = [&session, caption, command] { afterEdits(session, caption, command); };
    if (session.saving.putsOffWhileReading(caption, again)) return;
    session.windows().afterEdits(caption, command);
}

namespace {

constexpr auto transferRuns = "A transfer is running.  Please wait until it has ended.";

}  // namespace

bool refusedByTransfer(Session& session) {
    if (!session.link.transfer().pending()) return false;
    session.notice(transferRuns, [&session] { return session.link.transfer().pending(); });
    return true;
}

bool refusedBySearch(Session& session) {
    if (!session.link.searching()) return false;
    session.notice("A unit is being searched on the ports.  Please wait until that has ended.",
                   [&session] { return session.link.searching(); });
    return true;
}

// Nobody must believe that the engine was stopped: a line would be too little.
void tellKillRefused(Session& session) {
    // It must not stand in front of what the end of the transfer has to tell.
    session.show({.title = "Zentaq4",
                  .text = transferRuns,
                  .icon = Icon::Information,
                  .buttons = Buttons::Ok,
                  .stands = [&session] { return session.link.transfer().pending(); }});
}

bool agrees(Session& session, const std::string& title, const std::string& text) {
    const Box box{title, text, Icon::Exclamation, Buttons::YesNo, true};
    return session.dialogs().show(box) == Answer::Yes;
}

}  // namespace zentaq
