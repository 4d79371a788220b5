#include "unit/parameter_names.h"

#include <string>

#include "base/errors.h"
#include "unit/member_index.h"
#include "unit/unit_kind.h"

namespace zentaq {

// The ORB A has every member that any kind has.
std::string_view nameOfParameter(std::string_view member) {
    const Parameter* row = orbaKind().members->find(member);
    if (row == nullptr) throw NoSuchMember(std::string(member));
    return row->meaning;
}

}  // namespace zentaq
