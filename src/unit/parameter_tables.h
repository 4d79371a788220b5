// The parameter tables of the unit kinds, one row a member.
// The image is made row by row in this order, which is the order of the unit's memory.
#pragma once

#include <span>

#include "unit/parameter.h"

namespace zentaq {

std::span<const Parameter> orbaParameters();
std::span<const Parameter> orbLiteParameters();
std::span<const Parameter> orbcParameters();
std::span<const Parameter> orbdParameters();
std::span<const Parameter> pzk2Parameters();
std::span<const Parameter> nullParameters();

}  // namespace zentaq
