#include "link/link_summary.h"

namespace zentaq {

namespace {

std::string unitAndPort(const LinkStatus& status) {
    std::string text;
    const auto add = [&](const char* caption, const std::string& value) {
        if (!value.empty()) text += (text.empty() ? "" : "  ") + (caption + value);
    };
    add("ORB ", status.unitLabel);
    add("S/N ", status.serialNumber);
    add("Port ", status.port);
    return text;
}

std::string behindTitle(const LinkStatus& status) {
    if (status.progressVisible) return status.progressText;
    if (!status.trouble.empty()) return status.trouble;
    if (!status.line2.empty()) return status.line2;
    return unitAndPort(status);
}

}  // namespace

std::string linkSummary(const LinkStatus& status) {
    const std::string more = behindTitle(status);
    if (status.title.empty() || more.empty()) return status.title + more;
    return status.title + "  " + more;
}

}  // namespace zentaq
