#include "platform/port_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "platform/pty_pair.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

PortFacts adapter(const std::string& device, const std::string& serial, const std::string& byPath = {}) {
    PortFacts port;
    port.device = device;
    port.usb = true;
    port.vendorId = 0x0403;
    port.productId = 0x6001;
    port.serialNumber = serial;
    port.byPath = byPath;
    return port;
}

PortFacts plain(const std::string& device) {
    PortFacts port;
    port.device = device;
    return port;
}

std::vector<std::string> devices(const std::vector<PortInfo>& ports) {
    std::vector<std::string> result;
    for (const PortInfo& port : ports) result.push_back(std::to_string(port.number) + " " + port.device);
    return result;
}

TEST(PortList, HasNoSimulatedUnitWithoutTheirFolder) {
    EXPECT_THAT(simulatedPorts("/nonexistent/zentaq4/ports"), IsEmpty());
}

TEST(PortList, ListsSimulatedUnitsByNameAndSkipsDeadLinksAndFiles) {
    const TemporaryFolder folder;
    const PtyPair first;
    const PtyPair second;
    announce(folder.path(), "orbl", second.path());
    announce(folder.path(), "orba", first.path());
    announce(folder.path(), "gone", "/dev/pts/nonexistent");
    std::ofstream(folder.path("notes.txt")) << "no port";
    announce(folder.path(), "notes", folder.path("notes.txt"));
    EXPECT_THAT(devices(orderedPorts(simulatedPorts(folder.path()), {})),
                ElementsAre("1 " + first.path(), "2 " + second.path()));
}

TEST(PortList, PutsAdaptersBeforeOtherPortsInTheOrderOfTheirIdentity) {
    const auto ports = orderedPorts(
        {}, {plain("/dev/ttyS0"), adapter("/dev/ttyUSB0", "ZZ9"), adapter("/dev/ttyUSB1", "AA1")});
    EXPECT_THAT(devices(ports), ElementsAre("1 /dev/ttyUSB1", "2 /dev/ttyUSB0", "3 /dev/ttyS0"));
    EXPECT_EQ(ports[0].identity, "usb:0403:6001:AA1");
}

TEST(PortList, AnAdapterKeepsItsIdentityUnderAnotherDeviceName) {
    EXPECT_EQ(orderedPorts({}, {adapter("/dev/ttyUSB0", "AA1")})[0].identity,
              orderedPorts({}, {adapter("/dev/ttyUSB7", "AA1")})[0].identity);
}

TEST(PortList, AdaptersWithoutASerialNumberAreToldApartByTheirSocket) {
    const auto ports =
        orderedPorts({}, {adapter("/dev/ttyUSB0", "", "pci-2"), adapter("/dev/ttyUSB1", "", "pci-1")});
    EXPECT_THAT(devices(ports), ElementsAre("1 /dev/ttyUSB1", "2 /dev/ttyUSB0"));
    EXPECT_NE(ports[0].identity, ports[1].identity);
}

}  // namespace
}  // namespace zentaq
