#include <cstddef>

#include "base/rounding.h"
#include "unit/image_layout.h"
#include "unit/safe_file.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr std::string_view digits = "0123456789ABCDEF";
constexpr std::string_view endRecord = "S9030000FC\r\n";

void appendByte(std::string& text, int value) {
    const auto byte = static_cast<unsigned>(value) & 255U;
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
}

}  // namespace

int Unit::sRecordRows() const {
    if (kind_->image == nullptr) return 0;
    return FW_Release() >= kind_->image->newerFrom ? kind_->image->newerRows : kind_->image->olderRows;
}

std::string Unit::sRecordText() const {
    constexpr int recordLength = 19;
    constexpr std::size_t lineLength = 44;
    const int rows = sRecordRows();
    std::string text;
    text.reserve(static_cast<std::size_t>(rows) * lineLength + endRecord.size());
    for (int row = 0; row < rows; ++row) {
        const int address = baseAddress + bytesPerRow * row;
        int sum = recordLength + (address & 255) + address / 256;
        text += "S113";
        appendByte(text, address / 256);
        appendByte(text, address);
        for (int column = 0; column < bytesPerRow; ++column) {
            // Two digits for every element: whatever does not fit is cut to its low byte.
            const int value =
                toInt32(image_.at(static_cast<std::size_t>(bytesPerRow) * static_cast<std::size_t>(row) +
                                  static_cast<std::size_t>(column))) &
                255;
            appendByte(text, value);
            sum += value;
        }
        appendByte(text, 255 ^ (sum & 255));
        text += "\r\n";
    }
    text += endRecord;
    return text;
}

std::vector<std::uint8_t> Unit::memoryBytes() const {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(sRecordRows() * bytesPerRow));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(toInt32(image_[i]) & 255);
    }
    return bytes;
}

std::string Unit::MakeS19() {
    if (!kind_->hasCalibration) return {};
    std::string path = host_.applicationFolder() + "/ORB.s19";
    writeScratchFile(path, sRecordText());
    host_.addToLastLine("SUCCESS!");
    return path;
}

}  // namespace zentaq
