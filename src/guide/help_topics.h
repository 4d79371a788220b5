// Which place of the user guide tells more about an entry of Fast Help.
#pragma once

#include <span>
#include <string_view>

namespace zentaq {

struct HelpTopic {
    std::string_view key;    ///< key in table FastHelp
    std::string_view topic;  ///< "chapter" or "chapter#anchor"
};

std::span<const HelpTopic> helpTopics();

/// The topic of a key, compared without case; empty for none.
std::string_view guideTopicOf(std::string_view helpKey);

}  // namespace zentaq
