// A Unit object: the whole model of one calibration for one kind of engine controller unit.
// It has the calibration in hand, reads and writes calibration files, makes the unit's memory image and
// on-the-fly records.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/calibration.h"
#include "unit/entry_outcome.h"
#include "unit/parameter.h"
#include "unit/unit_host.h"
#include "unit/unit_kind.h"

namespace zentaq {

/// What a user typed, or a number that a program computed.
class Entry {
 public:
    Entry(double value) : number_(value), isText_(false) {}         // NOLINT: entries convert on purpose
    Entry(int value) : number_(value), isText_(false) {}            // NOLINT
    Entry(std::string_view text) : text_(text), isText_(true) {}    // NOLINT
    Entry(const char* text) : text_(text), isText_(true) {}         // NOLINT
    Entry(const std::string& text) : text_(text), isText_(true) {}  // NOLINT
    /// The text as typed, or the number's plain text.
    std::string text() const;
    bool isBlank() const;
    /// Throws TypeMismatch when the text is no number.
    float number() const;

 private:
    std::string text_;
    double number_ = 0;
    bool isText_;
};

class Unit {
 public:
    static constexpr int cellCount = Calibration::cellCount;
    static constexpr int imageCount = 2501;
    static constexpr int baseAddress = 4352;  ///< unit address of cell 0, 0x1100
    static constexpr int bytesPerRow = 16;    ///< of an S-record

    Unit(const UnitKind& kind, UnitHost& host);
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;

    const UnitKind& kind() const { return *kind_; }
    /// Gives this object the slot of another one of its class, and that one its own: a calibration follows
    /// the unit that it is for, and whoever holds the object goes on holding that calibration.
    /// Throws Failure for an object of another class.
    void exchangeSlots(Unit& other);
    UnitHost& host() const { return host_; }

    // ---- The calibration in hand as a value
    const Calibration& calibration() const { return inHand_.value(); }
    const Calibration::Facts& facts() const { return calibration().facts; }
    /// Puts one of the same class in hand as it stands: nothing is converted and nothing is sent.
    void calibration(const Calibration& value);
    /// Every change of the calibration passes this one hook, of whatever kind and from wherever it comes.
    void watch(WatchedCalibration::Hook hook) { inHand_.watch(std::move(hook)); }

    // ---- Members by name ("KNK_MIN", "VE", "opt_KnockActive"). A kind that lacks one is silent:
    // get answers 0, set ignores the entry. An element outside the member throws BoundsError.
    bool has(std::string_view member) const { return find(member) != nullptr; }
    const Parameter* find(std::string_view member) const;
    float get(std::string_view member, int element = 0);
    /// Checks, stores and sends. What is refused changes nothing; whose command it was tells the user.
    EntryOutcome set(std::string_view member, const Entry& value, int element = 0);
    /// The limits in force; an infinite pair where there is no range. Reading may repair cells.
    Limits limits(std::string_view member, int element = 0);
    /// The same by row, for callers that walk `kind().parameters`.
    float read(const Parameter& row, int element = 0);
    EntryOutcome write(const Parameter& row, const Entry& value, int element = 0);
    /// Stores without checks and without sending, by the member's own rule.
    void store(std::string_view member, float value, int element = 0);

    // ---- Mode switches
    void IndexPolling(bool on) { indexPolling_ = on; }
    bool ONFLY_MODE() const { return onTheFly_; }
    /// A calibration that could not be moved to the unit's firmware sends nothing.
    void ONFLY_MODE(bool on) { onTheFly_ = on && kind_->hasCalibration && facts().owedRelease == 0; }
    bool SILENT_MODE() const { return silent_; }
    void SILENT_MODE(bool on) { silent_ = on; }

    // ---- Raw access: nothing converted, nothing sent. BoundsError outside 0 to 3000.
    float DirectIndex(int index) const { return cellAt(index); }
    void AssignDirectIndex(float value, int index);

    // ---- Identity
    const std::string& BinFile() const { return facts().binFile; }  ///< clsNull: "None."
    void BinFile(const std::string& path);                          ///< also stores the calibration name
    int FW_Release() const { return facts().release; }
    /// Also migrates sensor and injector scaling when the release crosses 3, where the calibration in hand
    /// says what it was made for. Where the sensor cannot be looked up nothing is changed and the user is
    /// told; the release is then owed.
    void FW_Release(int release);
    /// Makes up for a release that is owed. Throws ReferenceNeeded where that still cannot be done.
    void settleFirmware();
    int FW_Build() const { return facts().build; }
    FirmwareVersion firmware() const { return {FW_Release(), FW_Build()}; }
    void FW_Build(int build);
    bool ValidFirmware(std::string_view name) const;
    int DefaultSplit() const { return facts().defaultSplit; }
    void DefaultSplit(int split);
    using Teeth = Calibration::Teeth;
    Teeth teeth() const { return facts().teeth; }
    void teeth(Teeth teeth);
    std::string BiName() const;
    void BiName(std::string_view path);
    std::string NOTES_TEXT() const;
    void NOTES_TEXT(std::string_view text);

    // ---- Option bits of ControlByte1 to ControlByte3
    bool Get_Control(int bit) const { return controlBit(0, bit); }
    void Set_Control(int bit, bool on) { setControlBit(0, bit, on); }
    bool Get_Control2(int bit) const { return controlBit(1, bit); }
    void Set_Control2(int bit, bool on) { setControlBit(1, bit, on); }
    bool Get_Control3(int bit) const { return controlBit(2, bit); }
    void Set_Control3(int bit, bool on) { setControlBit(2, bit, on); }
    std::uint8_t controlByte(int which) const {
        return calibration().control.at(static_cast<std::size_t>(which));
    }
    void controlByte(int which, std::uint8_t value) { inHand_.control(which, value); }

    // ---- Table shape. Tables: "ADV", "AFR", "SPW", "VE", "GPO1", "GPO2".
    int GET_TBL_DIMENSIONS(std::string_view table, std::string_view what);
    void SET_TBL_DIMENSIONS(std::string_view table, std::string_view what, int count);
    std::string GET_TBL_AXIS_TYPE(std::string_view table, std::string_view axis) const;
    void SET_TBL_AXIS_TYPE(std::string_view table, std::string_view axis, std::string_view name);
    float Get_GPO_Stop(int i, std::string_view axis, std::string_view table);
    EntryOutcome Set_GPO_Stop(const Entry& value, int i, std::string_view axis, std::string_view table);

    // ---- Input/output blocks
    int Get_GPIOFUNC(int pin) const;
    /// The cell of the function code as it stands, whatever IndexPolling says.
    /// BoundsError for a pin that the kind does not have.
    float gpioFunctionWord(int pin) const { return cellAt(gpioCell(pin, 0)); }
    /// On the ORB L without a known firmware some functions write down the release that they need.
    void Set_GPIO_Func(int pin, int code);
    /// Parameters count from 0.
    float Get_GPIO_Param(int pin, int parameter) const;
    void Set_GPIO_Param(int pin, int parameter, float value);
    float Get_GPIO_Table(int table, int index);
    /// Whole percent, 0 to 100.
    EntryOutcome Set_GPIO_Table(int table, int index, float value);
    static Limits outputTableLimits() { return {0, 100, "(0 to 100%)"}; }
    int Get_GPO_TblNum(int pin) const;
    void Zeroize_GPIO(int pin);
    /// As the kind calls the function, offered or not.
    std::string GPIO_Function_Name(int code) const;
    void Initialize_Trims();

    // ---- Pressure. User units unless the name says kPa; volts of the sensor.
    float MAPMax();
    float MAPMin();
    float MAPRange();
    int MAPPrecision();
    std::string MAPUnits() const;
    void MAPUnits(std::string_view units);
    float voltsToPressure(float volts);
    float pressureToVolts(float pressure);
    float pressureToRatio(float pressure);
    float voltsToKPa(float volts);
    float KpaToVolts(float kpa);
    float KpaToCounts(float kpa, bool eightBit);

    // ---- Files. All throw FileError.
    void FileOpen(const std::string& path);
    /// The same of a file that has been read already.
    void FileOpen(const std::string& path, std::string_view bytes);
    /// Reads a file of the older generation, which has no header, and moves it to today's places.
    void OldFileOpen(const std::string& path);
    /// The same of a file that has been read already.
    void OldFileOpen(const std::string& path, std::string_view bytes);
    /// The calibration in hand is a new one, that no file holds yet.
    void startFile();
    void SaveFile();
    /// What SaveFile writes, and the step behind it, for who writes it elsewhere.
    struct FileContent {
        std::string bytes;
        float firmwareCode = 0;
    };
    FileContent fileContent();
    void noteSaved(const FileContent& content);
    void CloseFile();

    // ---- Image
    void ConvertData();
    double convertStopPointsToUnit(int cellIndex);
    /// One byte of unit memory per element, as ConvertData left it.
    const std::array<float, imageCount>& ImageData() const { return image_; }
    /// The S-record text of ImageData, CR LF line ends.
    std::string sRecordText() const;
    /// The bytes that the unit's memory holds after programming, from baseAddress on.
    std::vector<std::uint8_t> memoryBytes() const;
    /// Writes "/ORB.s19" in the application folder and answers its path.
    std::string MakeS19();

    // ---- What the unit of this slot has told on the link
    LinkedState& linked() const { return host_.linkedState(kind_->slot); }
    const std::string& FirmWare() const { return linked().FirmWare; }
    void FirmWare(const std::string& text) {
        if (kind_->hasCalibration) linked().FirmWare = text;
    }
    const std::string& Serial() const { return linked().Serial; }
    void Serial(const std::string& text) {
        if (kind_->hasCalibration) linked().Serial = text;
    }
    bool hasPIC18() const { return answer(kind_->pic18, linked().hasPIC18); }
    void hasPIC18(bool on) { linked().hasPIC18 = on; }
    /// Live frames do not carry the input and output state: the link must ask for it.
    bool GPIO_Req() const { return answer(kind_->gpioRequest, linked().gpioListRead); }
    /// The link has read the list of the unit's pins, or has lost the unit.
    void gpioListRead(bool read) { linked().gpioListRead = read; }
    void Set_ECData(std::span<const std::uint8_t> reply) { linked().Set_ECData(reply); }
    int Get_ECData(int index) const { return linked().Get_ECData(index); }  ///< 0 to 11
    std::array<std::int16_t, 16>& GPIOData() const { return linked().GPIOData; }
    std::array<std::string, 16>& GPIODisplay() const { return linked().GPIODisplay; }

    /// Hands one record to the link when ONFLY_MODE is on. A failure is logged, never thrown.
    void SendOnFly(int index, double first, int count);
    void SendOnFly(int index, double first, double second);
    /// Initialize_Trims behind a change of one cylinder's injector trim, counted from 0. Sends the bytes of
    /// its first output and of the next one, then one record for each further output of that cylinder whose
    /// byte has changed.
    void SpreadTrim(int cylinder);

    /// The bytes that changing a value sends: one record, no line end.
    /// Throws Overflow for a number of more than 16 bits.
    /// `count` is 1 or 2 bytes; a lone value with count 2 is split.
    static std::string onTheFlyRecord(int index, double first, int count);
    static std::string onTheFlyRecord(int index, double first, double second);

 private:
    static bool answer(Trait trait, bool written) {
        return trait == Trait::Yes || (trait == Trait::Written && written);
    }
    bool controlBit(int which, int bit) const;
    void setControlBit(int which, int bit, bool on);
    void storeControlBytes();

    void send(const Parameter& row, int element, float entry);
    template <typename MakeRecord>
    void handOver(MakeRecord&& record);

    void putByte(int index, double value) {
        image_.at(static_cast<std::size_t>(index)) = static_cast<float>(value);
    }
    void putWord(int index, double value);
    void putCell(const Encoding& encoding, int index, float cell);
    void convertMembers();
    void convertRun(std::string_view name, int first, int count, const Encoding& encoding);
    void convertCellsWithoutMember();
    void convertMovedCells();
    void convertSensorWords();
    void convertGpioBlocks();
    void convertTrims();
    int trimmedCylinders() const;
    void convertStopPoints();

    float cellAt(int index) const { return inHand_.cell(index); }
    template <typename Number>
    void put(int index, Number value) {
        inHand_.cell(index, static_cast<float>(value));
    }
    int gpioCell(int pin, int word) const;
    int sRecordRows() const;

    void adoptFirmware(float code);
    void storeFirmware(FirmwareVersion firmware);
    void recordFirmware(float code);
    void recordReleaseOf(int gpioCode);
    void sendGpioParameter(int pin, int parameter, float value);
    void takeRelease(int release);
    void oweRelease(int release);
    void moveFrom(int formerRelease);
    std::optional<SensorFacts> sensorById(int id);
    void repairAfterOpening(int fileRelease);
    void repairSensor(int fromRelease);
    void defineSensor();
    /// The sensor of a bar rating takes the place of the rating, where the firmware knows sensors.
    void adoptSensor(float bar);
    void migrateInjectors(int fromRelease);
    void scaleInjectors(bool up);
    void seedStopPoints();
    void seedShape();
    void seedBaroTrim();

    const UnitKind* kind_;  ///< slots of one class may be exchanged
    UnitHost& host_;
    WatchedCalibration inHand_;
    std::array<float, imageCount> image_{};
    bool indexPolling_ = false;
    bool onTheFly_ = false;
    bool silent_ = false;
};

}  // namespace zentaq
