// The consistency rules of the seed tables. Each check throws SeedError at the first row that breaks one.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "refdata/seed_table.h"

namespace zentaq::refdata {

void checkEngines(const SeedTable& engines);
void checkSensors(const SeedTable& sensors);
void checkHelp(const SeedTable& help);
void checkTips(const SeedTable& tips);

/// The default values by set, in order. Lines of one set add up.
using DefaultsValues = std::map<std::string, std::vector<double>, std::less<>>;

/// Collects the sets of the seed and checks that each one of the schema is there, whole and within its
/// limits.
DefaultsValues readDefaults(const SeedTable& defaults);

}  // namespace zentaq::refdata
