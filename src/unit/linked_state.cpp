#include "unit/linked_state.h"

#include <algorithm>

#include "base/errors.h"

namespace zentaq {

void LinkedState::Set_ECData(std::span<const std::uint8_t> reply) {
    constexpr std::size_t firstWord = 3;  // behind the reply's head
    if (reply.size() < firstWord + errorCodeWords.size()) throw BoundsError();
    std::copy_n(reply.begin() + firstWord, errorCodeWords.size(), errorCodeWords.begin());
}

int LinkedState::Get_ECData(int index) const {
    if (index < 0 || index >= static_cast<int>(errorCodeWords.size())) throw BoundsError();
    return errorCodeWords[static_cast<std::size_t>(index)];
}

}  // namespace zentaq
