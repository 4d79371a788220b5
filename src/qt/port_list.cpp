#include "qt/port_list.h"

#include <QDir>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <QStringList>

#include "platform/runtime_folder.h"

namespace zentaq {

namespace {

std::string socketNameOf(const QString& device) {
    const QDir folder(QStringLiteral("/dev/serial/by-path"));
    const QString target = QFileInfo(device).canonicalFilePath();
    for (const QFileInfo& link : folder.entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot)) {
        if (link.canonicalFilePath() == target) return link.fileName().toStdString();
    }
    return {};
}

}  // namespace

std::vector<PortFacts> realPorts() {
    std::vector<PortFacts> ports;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
        if (info.isNull() || !QFileInfo::exists(info.systemLocation())) continue;
        PortFacts facts;
        facts.device = info.systemLocation().toStdString();
        facts.description = QString(info.manufacturer() + u' ' + info.description()).trimmed().toStdString();
        facts.usb = info.hasVendorIdentifier() && info.hasProductIdentifier();
        facts.vendorId = info.vendorIdentifier();
        facts.productId = info.productIdentifier();
        facts.serialNumber = info.serialNumber().toStdString();
        if (facts.usb && facts.serialNumber.empty()) facts.byPath = socketNameOf(info.systemLocation());
        ports.push_back(std::move(facts));
    }
    return ports;
}

std::vector<PortInfo> systemPorts() {
    return orderedPorts(simulatedPorts(runtimePortsFolder()), realPorts());
}

}  // namespace zentaq
