// The shared set of live values. Frame decoders write them; dashboard, recorder and AutoVE read them.
// Names are those of the datalog columns; temperatures are in degrees Celsius.
#pragma once

#include <cstdint>

namespace zentaq {

struct LiveValues {
    float RPM = 0;    ///< rpm
    float MAP = 0;    ///< pressure in the user's units, or air mass in MAF mode
    float TPS = 0;    ///< volts
    float CLT = 0;    ///< degrees Celsius
    float MAT = 0;    ///< degrees Celsius
    float BATTV = 0;  ///< volts
    float KNOCK = 0;  ///< percent of scale
    float EGOV = 0;   ///< volts
    bool CHKE = false;
    float PRIADV = 0, SECADV = 0, KNKRET = 0;  ///< degrees
    float GAMA = 0;                            ///< percent or raw
    float PRIDUTY = 0, SECDUTY = 0;            ///< percent
    float PRIPW = 0, SECPW = 0;                ///< ms
    float SECPERCENT = 0;                      ///< secondary as percent of primary
    float EGOC = 0;                            ///< percent
    float DAFR = 0, AAFR = 0;                  ///< ratio
    float IACP = 0, IACD = 0;                  ///< percent, code
    float INJ_TOG = 0;                         ///< ms
    float SEN_MAP = 0;                         ///< volts
    float INJ_VE = 0, INJ_MAT = 0, INJ_CLT = 0, INJ_BARO = 0, INJ_SE0 = 0, INJ_ASE0 = 0, INJ_ASE1 = 0;
    float MAPACCL = 0, TPSACCL = 0, INJ_ACE2 = 0, INJ_ACE5 = 0, INJ_ACE6 = 0;
    float INJ_VLTCOMP = 0;  ///< ms
    float SEN_BLEND = 0, INJ_STAGE = 0;
    float ADV_TBL = 0, ADV_CLT = 0, ADV_MAT = 0, ADV_BARO = 0, ADV_IDLE = 0;  ///< degrees
    float ISRPM = 0;                                                          ///< rpm

    std::uint64_t frames = 0;  ///< frames decoded since start; a view redraws when it moves
};

}  // namespace zentaq
