// What is shown of the link: plain data that a window renders and a test reads. `LinkDisplay` writes it.
#pragma once

#include <cstdint>
#include <string>

namespace zentaq {

/// Image and meaning of the status panel, by the numbers of the main image list.
enum class LinkImage { None = 0, Connected = 2, Monitor = 3, NoConnect = 4, Transfer = 5, Warning = 6 };

/// Lamp colours of the send and receive lamps.
enum class Lamp { Rest, Sending, Received };

struct LinkStatus {
    bool connected = false;  ///< `Connected`: the port is open; says nothing about a unit
    LinkImage image = LinkImage::None;
    std::string title;            ///< lblCommTitle
    std::string line1;            ///< lblCommStatus1
    std::string line2;            ///< lblCommStatus2
    std::string trouble;          ///< why the port could not be opened, in the system's words; else ""
    std::string activity;         ///< "{Polling}", "{Monitoring}", ...
    Lamp send = Lamp::Rest;       ///< lblComm_Send_Icon
    Lamp receive = Lamp::Rest;    ///< lblComm_Rcv_Icon
    std::string port;             ///< lblCOMM: the number of the port in use
    std::string portIdentity;     ///< of the device behind it; "" before one was open
    std::string serialNumber;     ///< lblSerialNumber, "000000" form
    std::string firmware;         ///< lblFirmware
    std::string unitLabel;        ///< lblOrbUnit(0): "A", "L", "A Std", ...
    std::string panel3;           ///< status bar panel 3
    bool noConnectPanel = false;  ///< fraNoConnect in view
    std::string noConnectText;    ///< "Connecting...", "Updating", "AutoVE ON"
    bool progressVisible = false;
    int progressPercent = 0;    ///< 0 to 100
    std::string progressText;   ///< "42%"
    std::string frameTimes;     ///< lblFrameTimes: where the time of a frame goes, "" without frames
    std::uint64_t changes = 0;  ///< moves with every change; a view redraws when it moves
};

}  // namespace zentaq
