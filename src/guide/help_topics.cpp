#include "guide/help_topics.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::array topics{
    HelpTopic{"helpunit", "general-configuration#unit-model"},
    HelpTopic{"helpengine", "general-configuration#engine-type"},
    HelpTopic{"helpoption", "ignition#trigger"},
    HelpTopic{"helpcalib", "calibration-files"},
    HelpTopic{"helpadvpar", "tables#axes"},
    HelpTopic{"helptbldim", "general-configuration#saving"},
    HelpTopic{"helprevl", "ignition#rev-limiter"},
    HelpTopic{"helprevapp", "ignition#rev-limit-approach"},
    HelpTopic{"helptog", "general-configuration#maximum-controllable-pulsewidth"},
    HelpTopic{"helptiot", "general-configuration#offset-and-shortest-pulse"},
    HelpTopic{"helpmtot", "general-configuration#offset-and-shortest-pulse"},
    HelpTopic{"helpCamtype", "general-configuration#the-other-fields"},
    HelpTopic{"helpmaprange", "sensors#map-sensor"},
    HelpTopic{"helpmapsel", "sensors#map-sensor"},
    HelpTopic{"helpMboost", "general-configuration#map-sensor-and-boost"},
    HelpTopic{"helpinjnum", "general-configuration#injector-flow"},
    HelpTopic{"help42inj", "general-configuration#the-other-fields"},
    HelpTopic{"helpBrakeHP", "general-configuration#injector-flow"},
    HelpTopic{"helpfueltype", "general-configuration#injector-flow"},
    HelpTopic{"helpinjsize", "general-configuration#injector-flow"},
    HelpTopic{"helpfuelratio", "fuel#ego-calibration"},
    HelpTopic{"helpadv", "ignition#advance-table"},
    HelpTopic{"helpinitadv", "ignition#initial-advance"},
    HelpTopic{"helpcltadv", "ignition#coolant-and-air-temperature"},
    HelpTopic{"helpmatadv", "ignition#coolant-and-air-temperature"},
    HelpTopic{"helpsplit", "ignition#dual-plug-split"},
    HelpTopic{"helpafr", "fuel#closed-loop"},
    HelpTopic{"helpve", "tables#a-way-to-tune-the-ve-table"},
    HelpTopic{"helpspw", "fuel#staged-pulsewidth"},
    HelpTopic{"helpfuel", "fuel"},
    HelpTopic{"helpblend", "fuel#blend-of-throttle-and-pressure"},
    HelpTopic{"helpaccel", "fuel#acceleration"},
    HelpTopic{"helpdecel", "fuel#deceleration-cut"},
    HelpTopic{"helpbattery", "fuel#battery-voltage-compensation"},
    HelpTopic{"helpstart", "fuel#start"},
    HelpTopic{"helpwarmup", "fuel#warm-up"},
    HelpTopic{"helpmatfuel", "fuel#mat-fuel-enrichment"},
    HelpTopic{"helpbaro", "fuel#barometric-trim"},
    HelpTopic{"helpboost", "fuel#overboost-fuel-cut-off"},
    HelpTopic{"helpidle", "idle"},
    HelpTopic{"helpego", "fuel#closed-loop"},
    HelpTopic{"helpegocal", "fuel#ego-calibration"},
    HelpTopic{"helpknock", "ignition#knock-control"},
    HelpTopic{"helptrims", "fuel#cylinder-trims"},
    HelpTopic{"helpsensors", "sensors#failure-limits-and-defaults"},
    HelpTopic{"helpdace3", "sensors#tps-sensor"},
    HelpTopic{"helpMAPsen", "sensors#map-sensor"},
    HelpTopic{"helpTPSsen", "sensors#tps-sensor"},
    HelpTopic{"helpCLTsen", "sensors#clt-sensor"},
    HelpTopic{"helpMATsen", "sensors#mat-sensor"},
    HelpTopic{"helpEGOsen", "sensors#ego-sensor"},
    HelpTopic{"helpknksen", "sensors#knock-sensor"},
    HelpTopic{"helpmaf", "sensors#maf-sensor"},
    HelpTopic{"helpMAPlist", "sensors#map-sensor-manager"},
    HelpTopic{"helpMAPvolts", "sensors#map-sensor-manager"},
    HelpTopic{"helpMAPpressure", "sensors#map-sensor-manager"},
    HelpTopic{"helpMAPunits", "sensors#map-sensor-manager"},
    HelpTopic{"helpgpio", "input-output"},
    HelpTopic{"helpnotes", "workspace#pages"},
    HelpTopic{"helpoptcomm", "options#communications"},
    HelpTopic{"helpopttemp", "options#display-temperatures"},
    HelpTopic{"helpoptalarm", "options#display-temperatures"},
    HelpTopic{"helpoptdash", "options#dashboard-monitor"},
    HelpTopic{"helpoptcolor", "options#dashboard-monitor"},
    HelpTopic{"helpoptlog", "console#the-log-file"},
    HelpTopic{"helpoptprint", "options#print"},
    HelpTopic{"helpopttable", "options#tables-graphs"},
    HelpTopic{"helpoptcells", "tables#cell-colors"},
    HelpTopic{"helpoptdatalog", "options#data-points"},
    HelpTopic{"helpoptmonitor", "options#dashboard-monitor"},
    HelpTopic{"helpoptstart", "options#start-and-log"},
};

}  // namespace

std::span<const HelpTopic> helpTopics() {
    return topics;
}

std::string_view guideTopicOf(std::string_view helpKey) {
    const std::string wanted = upper(helpKey);
    const auto found =
        std::ranges::find_if(topics, [&](const HelpTopic& row) { return upper(row.key) == wanted; });
    return found == topics.end() ? std::string_view() : found->topic;
}

}  // namespace zentaq
