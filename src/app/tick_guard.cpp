#include "app/tick_guard.h"

namespace zentaq {

Answer DialogsBetweenTicks::show(const Box& box) {
    if (!around_.insideTick()) return dialogs_.show(box);
    if (box.buttons == Buttons::YesNo) return Answer::No;
    if (box.buttons == Buttons::OkCancel) return Answer::Cancel;
    around_.later(box);
    return Answer::Ok;
}

std::string DialogsBetweenTicks::openFile(const FileRequest& request) {
    return around_.insideTick() ? std::string() : dialogs_.openFile(request);
}

std::string DialogsBetweenTicks::saveFile(const FileRequest& request) {
    return around_.insideTick() ? std::string() : dialogs_.saveFile(request);
}

std::optional<std::string> DialogsBetweenTicks::input(const std::string& title, const std::string& prompt,
                                                      const std::string& initial) {
    if (around_.insideTick()) return std::nullopt;
    return dialogs_.input(title, prompt, initial);
}

}  // namespace zentaq
