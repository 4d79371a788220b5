// send: one member of the running unit, changed on the fly.
#include <ostream>
#include <variant>

#include "base/box_texts.h"
#include "base/errors.h"
#include "base/json_writer.h"
#include "base/message_codes.h"
#include "commands_link.h"
#include "link_desk.h"
#include "members.h"

namespace zentaq::ctl {

namespace {

/// Whether the bytes of a member follow from its own value: no other cell scales it, bounds it or shares
/// them.
bool standsAlone(const Member& member) {
    const Parameter* row = member.row;
    if (row == nullptr || row->write != nullptr || row->unit == "MAP" || isAxis(member)) return false;
    if (row->sending == Sending::ByWriter || row->sent().special != nullptr) return false;
    return !std::holds_alternative<RangeOf>(row->range);
}

void refuseUnsent(const Member& member) {
    if (member.reach == Reach::OnTheFly) return;
    throw Failure(member.name + " is not sent on the fly: " +
                  (member.reach == Reach::Programming
                       ? "it reaches a unit with the next programming of the whole calibration."
                       : "it never reaches a unit, only the program reads it."));
}

Member memberToSend(const UnitKind& kind, const SendWish& wish) {
    Member member = memberOf(kind, wish.member);
    refuseUnsent(member);
    checkElement(member, wish.index);
    if (wish.calibration.empty() && !standsAlone(member)) {
        throw Failure(member.name + " depends on the rest of the calibration; name it with --file.");
    }
    return member;
}

/// The records of the change, made for the firmware of the unit.
std::vector<std::string> recordsOf(QuietCalibration& calibration, const Unit& linked, const Member& member,
                                   const SendWish& wish) {
    // As when the calibration is open and the unit tells its firmware.
    calibration.host.firmwareKnown(true);
    calibration.unit.FW_Build(linked.FW_Build());
    calibration.unit.FW_Release(linked.FW_Release());
    calibration.unit.ONFLY_MODE(true);
    const std::string before = calibration.host.lastLogLine();
    writeMember(calibration, member, wish.value, wish.index);
    // A number that fits no byte of the unit is stored but not sent, and the log says so.
    if (calibration.host.lastLogLine() != before) throw Failure(calibration.host.lastLogLine());
    if (calibration.host.records().empty()) throw Failure(member.name + ": this change sends nothing.");
    return calibration.host.records();
}

void writeAnswer(const Context& context, LinkDesk& desk, const Member& member, int index,
                 const std::vector<std::string>& records) {
    if (!context.json) {
        for (const std::string& record : records)
            context.out << record << " accepted by " << desk.unitName() << '\n';
        return;
    }
    JsonWriter json(context.out);
    json.beginObject().member("member", member.name).member("index", index);
    json.member("serial", int{desk.link().linked().SerialNumber}).key("records").beginArray();
    for (const std::string& record : records) json.value(record);
    json.endArray().endObject();
    context.out << '\n';
}

}  // namespace

void send(const Context& context, const std::string& port, const SendWish& wish) {
    std::unique_ptr<QuietCalibration> calibration;
    if (!wish.calibration.empty()) {
        calibration = openCalibration(context, wish.calibration, CutFile::Refused);
        memberToSend(calibration->unit.kind(), wish);  // before anything is asked of a unit
    }
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host);
    desk.findUnit();
    const Unit& linked = desk.session().linkedUnit();
    if (!calibration) calibration = std::make_unique<QuietCalibration>(linked.kind(), context.database);
    if (!shareFiles(calibration->unit.kind(), linked.kind())) throw Failure(errorLine(codes::WrongUnit));
    const Member member = memberToSend(linked.kind(), wish);
    const auto records = recordsOf(*calibration, linked, member, wish);
    for (const std::string& record : records) {
        desk.require(desk.session().command("P2" + record), "take the change " + record);
    }
    if (isAxis(member)) noteAxes(context, wish.calibration, calibration->unit);
    writeAnswer(context, desk, member, wish.index, records);
}

}  // namespace zentaq::ctl
