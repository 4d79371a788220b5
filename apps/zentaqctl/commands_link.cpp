// ports, identify, store, kill, codes: short conversations with a unit.
#include "commands_link.h"

#include <ostream>
#include <vector>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "link_desk.h"
#include "live/check_engine.h"
#include "platform/posix_ports.h"
#include "platform/runtime_folder.h"

namespace zentaq::ctl {

namespace {

/// Everything that a unit tells about itself.
void writeIdentity(const Context& context, LinkDesk& desk) {
    const LinkedUnit& linked = desk.link().linked();
    const Unit& unit = desk.session().linkedUnit();
    JsonWriter json(context.out);
    json.beginObject().member("port", desk.portName()).member("kind", linked.LinkedUnitKind);
    json.member("model", unit.kind().name);
    json.member("label", desk.session().linkDisplay.status().unitLabel);
    json.member("serial", int{linked.SerialNumber}).member("firmware", unit.FirmWare());
    json.member("release", unit.FW_Release()).member("build", unit.FW_Build());
    json.member("calibration", trimmed(linked.UnitBinName)).member("wideFrames", linked.WideMonitor);
    json.member("mustBeUpgraded", linked.OldFirmware).endObject();
    context.out << '\n';
}

std::vector<std::string> codesOf(const Unit& unit) {
    std::vector<std::string> texts;
    for (const std::string& text : activeCodes(unit)) {
        if (!trimmed(text).empty()) texts.push_back(text);
    }
    return texts;
}

/// A command that is answered by yes or no, and the line that tells of it.
void ask(const Context& context, const std::string& port, std::string_view command, const std::string& what,
         const std::string& answer) {
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host);
    desk.findUnit();
    desk.require(desk.session().command(command), what);
    context.out << desk.unitName() << ": " << answer << '\n';
}

}  // namespace

void listPorts(const Context& context) {
    const std::vector<PortInfo> ports = posixPorts();
    if (const auto trouble = runtimeFolderTrouble()) context.notes << *trouble << '\n';
    if (!context.json) {
        context.out << "Port\tDevice\tDescription\tIdentity\n";
        for (const PortInfo& port : ports) {
            context.out << port.number << '\t' << shownLine(port.device) << '\t'
                        << shownLine(port.description) << '\t' << shownLine(port.identity) << '\n';
        }
        return;
    }
    JsonWriter json(context.out);
    json.beginArray();
    for (const PortInfo& port : ports) {
        json.beginObject().member("number", port.number).member("device", port.device);
        json.member("description", port.description);
        json.member("identity", port.identity).endObject();
    }
    json.endArray();
    context.out << '\n';
}

void identify(const Context& context, const std::string& port) {
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host);
    desk.findAnyUnit();
    if (context.json) return writeIdentity(context, desk);
    const LinkedUnit& linked = desk.link().linked();
    context.out << desk.unitName() << " (" << shownLine(desk.session().linkDisplay.status().unitLabel)
                << ") on " << desk.portName();
    if (linked.UnitIdentified) {
        context.out << ", firmware " << shownLine(desk.session().linkedUnit().FirmWare())
                    << ", calibration \"" << shownLine(trimmed(linked.UnitBinName)) << '"';
    } else {
        context.out << ", must be upgraded";
    }
    context.out << '\n';
}

void store(const Context& context, const std::string& port) {
    ask(context, port, "S", "save the changes", "ONFLY changes saved");
}

void kill(const Context& context, const std::string& port) {
    ask(context, port, "K", "stop the engine", "engine stopped");
}

void codes(const Context& context, const std::string& port, bool clear) {
    if (clear) return ask(context, port, "A", "clear its codes", "CheckEngine Codes Successfully Cleared.");
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host);
    desk.findUnit();
    desk.require(desk.session().readCodes(), "tell its codes");
    const std::vector<std::string> texts = codesOf(desk.session().linkedUnit());
    if (context.json) {
        JsonWriter json(context.out);
        json.beginObject().member("serial", int{desk.link().linked().SerialNumber}).key("codes").beginArray();
        for (const std::string& text : texts) json.value(text);
        json.endArray().endObject();
        context.out << '\n';
        return;
    }
    for (const std::string& text : texts) context.out << text << '\n';
    if (texts.empty()) context.out << "No active codes\n";
}

}  // namespace zentaq::ctl
