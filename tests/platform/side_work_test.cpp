#include "platform/side_work.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <thread>

namespace zentaq {
namespace {

TEST(ThreadedSideWork, RunsBesideWhoeverBeganIt) {
    ThreadedSideWork side;
    const auto go = std::make_shared<std::promise<void>>();
    const auto where = std::make_shared<std::promise<std::thread::id>>();
    side.begin([go, where] {
        go->get_future().wait();
        where->set_value(std::this_thread::get_id());
    });
    go->set_value();  // reached only because begin came back
    EXPECT_NE(where->get_future().get(), std::this_thread::get_id());
}

}  // namespace
}  // namespace zentaq
