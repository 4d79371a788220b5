// A host of the link that has words for what it hears: lines of the consoles, boxes, numbered messages and
// the link panel.
#pragma once

#include <string_view>

#include "link/link_display.h"
#include "link/link_host.h"
#include "platform/dialogs.h"

namespace zentaq {

class LinkTeller : public LinkHost {
 public:
    void heard(const LinkNews& news) override;
    void transferStep(int done, int total) override { linkDisplay.stepProgress(done, total); }
    void transferEnded(const TransferEnd& end) override;

    virtual void sysLog(std::string_view text) = 0;
    virtual void addToLastLine(std::string_view text) = 0;
    /// A line of the link console.
    virtual void commLog(std::string_view text) = 0;
    virtual void displayMessage(int code) = 0;
    virtual void show(const Box& box) = 0;

    LinkDisplay linkDisplay;

 private:
    void tellLines(std::string_view lines, const LinkNews& news);
};

}  // namespace zentaq
