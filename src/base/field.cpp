#include "base/field.h"

#include "base/text.h"

namespace zentaq {

std::string plainCaption(std::string_view caption) {
    std::string plain{trimmed(caption)};
    std::erase(plain, '&');
    return plain;
}

}  // namespace zentaq
