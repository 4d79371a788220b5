#include "live/live_fields.h"

namespace zentaq {

namespace {

using L = LiveValues;

constexpr LiveField fields[] = {
    {"RPM", &L::RPM},
    {"MAP", &L::MAP},
    {"TPS", &L::TPS},
    {"CLT", &L::CLT},
    {"MAT", &L::MAT},
    {"BATTV", &L::BATTV},
    {"KNOCK", &L::KNOCK},
    {"EGOV", &L::EGOV},
    {"CHKE", &L::CHKE},
    {"PRIADV", &L::PRIADV},
    {"SECADV", &L::SECADV},
    {"KNKRET", &L::KNKRET},
    {"GAMA", &L::GAMA},
    {"PRIDUTY", &L::PRIDUTY},
    {"SECDUTY", &L::SECDUTY},
    {"PRIPW", &L::PRIPW},
    {"SECPW", &L::SECPW},
    {"SECPERCENT", &L::SECPERCENT},
    {"EGOC", &L::EGOC},
    {"DAFR", &L::DAFR},
    {"AAFR", &L::AAFR},
    {"IACP", &L::IACP},
    {"IACD", &L::IACD},
    {"INJ_TOG", &L::INJ_TOG},
    {"SEN_MAP", &L::SEN_MAP},
    {"INJ_VE", &L::INJ_VE},
    {"INJ_MAT", &L::INJ_MAT},
    {"INJ_CLT", &L::INJ_CLT},
    {"INJ_BARO", &L::INJ_BARO},
    {"INJ_SE0", &L::INJ_SE0},
    {"INJ_ASE0", &L::INJ_ASE0},
    {"INJ_ASE1", &L::INJ_ASE1},
    {"MAPACCL", &L::MAPACCL},
    {"TPSACCL", &L::TPSACCL},
    {"INJ_ACE2", &L::INJ_ACE2},
    {"INJ_ACE5", &L::INJ_ACE5},
    {"INJ_ACE6", &L::INJ_ACE6},
    {"INJ_VLTCOMP", &L::INJ_VLTCOMP},
    {"SEN_BLEND", &L::SEN_BLEND},
    {"INJ_STAGE", &L::INJ_STAGE},
    {"ADV_TBL", &L::ADV_TBL},
    {"ADV_CLT", &L::ADV_CLT},
    {"ADV_MAT", &L::ADV_MAT},
    {"ADV_BARO", &L::ADV_BARO},
    {"ADV_IDLE", &L::ADV_IDLE},
    {"ISRPM", &L::ISRPM},
};

}  // namespace

std::span<const LiveField> liveFields() {
    return fields;
}

}  // namespace zentaq
