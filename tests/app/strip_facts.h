// What the tests of the state strip begin with.
#pragma once

#include "app/state_strip.h"

namespace zentaq {

/// An engine runs, and the calibration in hand is that of its unit.
inline StripFacts tuning() {
    return {.portOpen = true,
            .unitFound = true,
            .identified = true,
            .port = "1",
            .unit = "ORB A 001234",
            .firmware = "ZQA5099",
            .panel3 = "ZQA5099",
            .onFly = true,
            .framesCome = true,
            .framesCame = true,
            .inHand = true,
            .kindAgrees = true,
            .model = "ORB A",
            .file = "tune.ZQ4OA"};
}

/// And it was changed.
inline StripFacts changing() {
    StripFacts facts = tuning();
    facts.changesNotStored = true;
    facts.modified = true;
    return facts;
}

}  // namespace zentaq
