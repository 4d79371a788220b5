// A calibration as a value: the cells and control bytes of its file, and what goes with them while it is in
// hand. It can be copied and compared. WatchedCalibration holds one for work and tells each change of it.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

#include "base/errors.h"

namespace zentaq {

class MemberIndex;
struct Parameter;

struct Calibration {
    static constexpr int cellCount = 3001;

    /// First and last tooth offset of the engine, for engines that the reference data lacks.
    struct Teeth {
        float minimum = 0;
        float maximum = 0;
        bool operator==(const Teeth&) const = default;
    };
    /// What no cell holds.
    struct Facts {
        std::string binFile;
        int release = 0;
        int owedRelease = 0;  ///< told, but the calibration could not be moved to it; 0 for none
        int build = 0;
        int defaultSplit = 0;
        Teeth teeth;
        float programVersion = 0;  ///< of the program that wrote the file, for example 9.44
        float firmwareCode = 0;    ///< that the cells are made for, as the file has it; 0: not told
        int cellsCutOff = 0;       ///< that the file lacks, having been cut; they were taken as 0
        bool operator==(const Facts&) const = default;
    };

    std::array<float, cellCount> cells{};
    std::array<std::uint8_t, 3> control{};
    Facts facts;

    /// Bit for bit: a cell that holds no number is equal to itself.
    bool operator==(const Calibration& other) const;
};

struct CalibrationChange {
    enum class What : std::uint8_t {
        Cell,
        ControlByte,
        Facts,
        All  ///< a file, a copy put back, another slot: anything may be different
    };
    What what = What::All;
    int place = 0;  ///< the cell, or the control byte from 0
    float before = 0;
    float after = 0;
    /// Whose entry it is, or else whose cell; nullptr for nobody's.
    const Parameter* member = nullptr;
    int element = 0;
};

class WatchedCalibration {
 public:
    /// Gets each change behind it. It must not throw and not change the calibration.
    using Hook = std::function<void(const CalibrationChange&, const Calibration& now)>;

    explicit WatchedCalibration(const MemberIndex& members) : members_(members) {}
    WatchedCalibration(const WatchedCalibration&) = delete;
    WatchedCalibration& operator=(const WatchedCalibration&) = delete;

    const Calibration& value() const { return value_; }
    void watch(Hook hook) { hook_ = std::move(hook); }

    // An image reads some thousand cells, so both stand here. BoundsError.
    float cell(int index) const { return value_.cells[place(index)]; }
    void cell(int index, float value) {
        const float before = std::exchange(value_.cells[place(index)], value);
        if (isWatched() && !sameBits(before, value)) tellCell(index, before);
    }
    void control(int which, std::uint8_t value);
    template <typename Change>
    void facts(Change&& change) {
        const Calibration::Facts before = value_.facts;
        std::forward<Change>(change)(value_.facts);
        if (value_.facts != before) tell({.what = CalibrationChange::What::Facts});
    }
    void take(const Calibration& value);
    void tellAll() { tell({.what = CalibrationChange::What::All}); }

    /// Changes from here to the end are the entry of one member.
    class Writing {
     public:
        Writing(WatchedCalibration& inHand, const Parameter& row, int element)
            : inHand_(inHand), was_(std::exchange(inHand.writing_, {&row, element})) {}
        ~Writing() { inHand_.writing_ = was_; }
        Writing(const Writing&) = delete;
        Writing& operator=(const Writing&) = delete;

     private:
        WatchedCalibration& inHand_;
        std::pair<const Parameter*, int> was_;
    };

    /// Work that ends, or leaves the calibration as it was. What it has changed is told when it has ended.
    class Step {
     public:
        explicit Step(WatchedCalibration& inHand) : inHand_(inHand), before_(inHand.value_) {
            ++inHand_.steps_;
        }
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;
        void cells(std::span<const float> all);  ///< those behind its end become 0
        void end();                              ///< tells what is different now
        void endAsWhole();                       ///< tells that all may be

     private:
        WatchedCalibration& inHand_;
        Calibration before_;
        bool ended_ = false;
    };

 private:
    static std::size_t place(int index) {
        if (index < 0 || index >= Calibration::cellCount) throw BoundsError();
        return static_cast<std::size_t>(index);
    }
    static bool sameBits(float one, float other) {
        return std::bit_cast<std::uint32_t>(one) == std::bit_cast<std::uint32_t>(other);
    }
    bool isWatched() const { return hook_ && steps_ == 0; }
    void tell(const CalibrationChange& change) const;
    void tellCell(int index, float before) const;
    void tellControl(int which, std::uint8_t before) const;

    Calibration value_;
    Hook hook_;
    const MemberIndex& members_;
    std::pair<const Parameter*, int> writing_;
    int steps_ = 0;
};

}  // namespace zentaq
