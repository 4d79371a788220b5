// A program around the link, for tests: it owns the units and keeps every call in one ordered list.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "link/link_teller.h"
#include "unit/quiet_host.h"
#include "unit/unit.h"
#include "unit/unit_kind.h"

namespace zentaq {

using Texts = std::vector<std::string>;

class RecordingLinkHost : public LinkTeller {
 public:
    RecordingLinkHost() {
        units[0] = std::make_unique<Unit>(nullKind(), unitHost);
        for (const UnitKind& kind : unitKinds()) units[kind.slot] = std::make_unique<Unit>(kind, unitHost);
    }

    Unit& unit(int slot) override {
        const auto found = units.find(slot);
        return found == units.end() ? *units.at(0) : *found->second;
    }
    int slotInHand() const override { return current; }
    float fileFirmwareCode() const override { return fileCode; }

    void sysLog(std::string_view text) override {
        if (failLog) throw std::runtime_error("disk full");
        logLines.emplace_back(text);
        calls.push_back("log: " + std::string(text));
    }
    void commLog(std::string_view text) override { commLines.emplace_back(text); }
    void addToLastLine(std::string_view text) override {
        if (!logLines.empty()) logLines.back() += " " + std::string(text);
        calls.push_back("add: " + std::string(text));
    }
    void displayMessage(int code) override {
        messages.push_back(code);
        calls.push_back("message: " + std::to_string(code));
        if (whileBoxShows) whileBoxShows();
    }
    void show(const Box& box) override {
        boxes.push_back(box);
        calls.push_back("box: " + box.title);
        if (whileBoxShows) whileBoxShows();
    }
    void heard(const LinkNews& news) override {
        LinkTeller::heard(news);
        if (news.event == LinkEvent::LinkLost || news.event == LinkEvent::UnitAgrees) {
            initializeOnFly(news.event == LinkEvent::UnitAgrees);
        }
        if (news.event == LinkEvent::TableLock) locks.push_back(news.number != 0);
        if (news.event == LinkEvent::KindFound) kindsFound.push_back(news.number);
        if (news.event == LinkEvent::CodesReceived) ++codesReceivedCount;
        if (news.event == LinkEvent::CodesCleared) ++codesClearedCount;
        if (news.event == LinkEvent::FrameDecoded) ++frameCount;
        if (news.event == LinkEvent::PortForced) ++portsForced;
    }
    void transferEnded(const TransferEnd& end) override {
        ends.push_back(end);
        LinkTeller::transferEnded(end);
    }
    FirmwareVersion expectedFirmware(int slot) const override {
        return {releases.contains(slot) ? releases.at(slot) : 99,
                builds.contains(slot) ? builds.at(slot) : 999};
    }

    /// What was recorded so far does not matter.
    void forget() {
        for (Texts* texts : {&calls, &logLines, &commLines}) texts->clear();
        for (std::vector<int>* numbers : {&messages, &kindsFound}) numbers->clear();
        for (std::vector<bool>* marks : {&onFlyCalls, &locks}) marks->clear();
        boxes.clear();
    }

    QuietHost unitHost;
    std::map<int, std::unique_ptr<Unit>> units;
    int current = 0;
    float fileCode = 0;
    bool failLog = false;
    std::map<int, int> releases;
    std::map<int, int> builds;
    std::function<void()> whileBoxShows;
    std::function<void()> whenOnFly;

    Texts calls;
    std::vector<TransferEnd> ends;
    Texts logLines;
    Texts commLines;
    std::vector<int> messages;
    std::vector<Box> boxes;
    std::vector<bool> onFlyCalls;
    std::vector<bool> locks;
    std::vector<int> kindsFound;
    int portsForced = 0;
    int codesReceivedCount = 0;
    int codesClearedCount = 0;
    int frameCount = 0;

 private:
    void initializeOnFly(bool on) {
        onFlyCalls.push_back(on);
        calls.push_back(on ? "onfly: on" : "onfly: off");
        if (whenOnFly) whenOnFly();
    }
};

}  // namespace zentaq
