#include "platform/side_work.h"

#include <system_error>
#include <thread>
#include <utility>

#include "platform/signals_held_off.h"

namespace zentaq {

void ThreadedSideWork::begin(std::function<void()> work) {
    const SignalsHeldOff heldOff;
    try {
        std::thread(work).detach();
    } catch (const std::system_error&) {
        work();  // a system that has no thread left still gets it done
    }
}

}  // namespace zentaq
