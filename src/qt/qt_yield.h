// Long operations hand the thread back to Qt's event loop here.
#pragma once

#include <QCoreApplication>
#include <QEventLoop>

#include "platform/yield.h"

namespace zentaq {

class QtYield : public Yield {
 public:
    /// Runs what is pending: ticks, replies, timers and the user's keys and clicks.
    void yield() override { QCoreApplication::processEvents(); }
    void yieldWithoutInput() override { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); }
};

}  // namespace zentaq
