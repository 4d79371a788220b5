#include "windows/form.h"

namespace zentaq {

void Form::openOn(const std::string& /*on*/, const std::string& /*title*/) {
    widget_.show();
    widget_.raise();
    widget_.activateWindow();
}

}  // namespace zentaq
