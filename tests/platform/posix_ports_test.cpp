// The ports of a machine, from a folder made like the system's own.
#include "platform/posix_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "temporary_folder.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

class PosixPorts : public testing::Test {
 protected:
    PosixPorts() {
        for (const fs::path& made : {folders.terminals, folders.devices, folders.sockets}) {
            fs::create_directories(made);
        }
    }
    static void fill(const fs::path& file, const std::string& line) { std::ofstream(file) << line << '\n'; }
    /// A terminal `name` whose hardware stands below `hardware`, as the system links them.
    void terminal(const std::string& name, const std::string& hardware) {
        const fs::path place = folder.path() / "sys/devices" / hardware;
        fs::create_directories(place);
        fs::create_directories(folders.terminals / name);
        fs::create_directory_symlink(place, folders.terminals / name / "device");
        fill(folders.devices / name, "");
    }
    fs::path usbDevice(const std::string& name) const { return folder.path() / "sys/devices/usb1" / name; }
    void usb(const std::string& name, const std::string& vendor, const std::string& product) {
        fs::create_directories(usbDevice(name));
        fill(usbDevice(name) / "idVendor", vendor);
        fill(usbDevice(name) / "idProduct", product);
    }

    TemporaryFolder folder;
    PosixFolders folders{folder.path() / "sys/class/tty", folder.path() / "dev",
                         folder.path() / "dev/serial/by-path"};
};

TEST_F(PosixPorts, AFolderThatIsNotThereHasNoPorts) {
    EXPECT_THAT(posixRealPorts({"/nonexistent/tty", "/nonexistent/dev", "/nonexistent/by-path"}), IsEmpty());
}

TEST_F(PosixPorts, AConsoleIsNoPort) {
    fs::create_directories(folders.terminals / "tty1");
    fill(folders.devices / "tty1", "");
    EXPECT_THAT(posixRealPorts(folders), IsEmpty());
}

TEST_F(PosixPorts, AnAdapterTellsWhoMadeIt) {
    usb("1-2", "0403", "6001");
    fill(usbDevice("1-2") / "manufacturer", "Acme");
    fill(usbDevice("1-2") / "product", "Serial Cable");
    fill(usbDevice("1-2") / "serial", "AB 12");
    terminal("ttyUSB0", "usb1/1-2/1-2:1.0/ttyUSB0");
    const auto ports = posixRealPorts(folders);
    ASSERT_EQ(ports.size(), 1U);
    EXPECT_TRUE(ports[0].usb);
    EXPECT_EQ(ports[0].device, (folders.devices / "ttyUSB0").string());
    EXPECT_EQ(ports[0].vendorId, 0x0403);
    EXPECT_EQ(ports[0].productId, 0x6001);
    EXPECT_EQ(ports[0].description, "Acme Serial Cable");
    EXPECT_EQ(ports[0].serialNumber, "AB_12");
    EXPECT_EQ(ports[0].byPath, "") << "a serial number is enough";
}

TEST_F(PosixPorts, AnAdapterWithoutASerialNumberTellsItsSocket) {
    usb("1-3", "1a86", "7523");
    terminal("ttyUSB4", "usb1/1-3/1-3:1.0/ttyUSB4");
    fs::create_symlink(folders.devices / "ttyUSB4", folders.sockets / "pci-usb-0:3");
    const auto ports = posixRealPorts(folders);
    ASSERT_EQ(ports.size(), 1U);
    EXPECT_EQ(ports[0].vendorId, 0x1A86);
    EXPECT_EQ(ports[0].byPath, "pci-usb-0:3");
}

TEST_F(PosixPorts, APortOfTheBoardIsListedBehindAnAdapter) {
    terminal("ttyAMA0", "platform/uart");
    usb("1-2", "0403", "6001");
    terminal("ttyACM0", "usb1/1-2/1-2:1.0");
    const auto ports = orderedPorts({}, posixRealPorts(folders));
    ASSERT_EQ(ports.size(), 2U);
    EXPECT_EQ(ports[0].device, (folders.devices / "ttyACM0").string());
    EXPECT_EQ(ports[0].number, 1);
    EXPECT_EQ(ports[1].device, (folders.devices / "ttyAMA0").string());
    EXPECT_EQ(ports[1].description, "Serial port");
}

TEST_F(PosixPorts, AChipIsAskedForWithoutOpeningThePort) {
    terminal("ttyS0", "platform/serial8250");
    fill(folders.terminals / "ttyS0" / "type", "4");
    fs::permissions(folders.devices / "ttyS0", fs::perms::none);  // nor may it be opened
    const auto ports = posixRealPorts(folders);
    ASSERT_EQ(ports.size(), 1U) << "it is told why when it is opened";
    EXPECT_EQ(ports[0].device, (folders.devices / "ttyS0").string());
}

TEST_F(PosixPorts, APlaceWithoutAChipAndADeviceThatIsGoneAreLeftOut) {
    terminal("ttyS3", "platform/serial8250");
    fill(folders.terminals / "ttyS3" / "type", "0");
    terminal("ttyS4", "platform/serial8250");  // tells nothing
    terminal("ttyUSB9", "usb1/1-9/ttyUSB9");
    fs::remove(folders.devices / "ttyUSB9");
    EXPECT_THAT(posixRealPorts(folders), IsEmpty());
}

TEST_F(PosixPorts, ALineWithoutEndIsReadAsFarAsAFactGoes) {
    usb("1-2", "0403", "6001");
    fill(usbDevice("1-2") / "product", std::string(1'000'000, 'x'));
    terminal("ttyUSB0", "usb1/1-2/1-2:1.0/ttyUSB0");
    const auto ports = posixRealPorts(folders);
    ASSERT_EQ(ports.size(), 1U);
    EXPECT_EQ(ports[0].description, std::string(4096, 'x'));
}

TEST_F(PosixPorts, APipeInThePlaceOfAFactHoldsNobodyUp) {
    usb("1-2", "0403", "6001");
    ASSERT_EQ(::mkfifo((usbDevice("1-2") / "product").c_str(), 0600), 0);
    terminal("ttyUSB0", "usb1/1-2/1-2:1.0/ttyUSB0");
    EXPECT_EQ(posixRealPorts(folders).size(), 1U);
}

}  // namespace
}  // namespace zentaq
