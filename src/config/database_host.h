// A quiet host of Unit objects with the reference database, and entries in a program without windows: what is
// refused is thrown.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "base/errors.h"
#include "refdata/database.h"
#include "unit/quiet_host.h"
#include "unit/unit.h"

namespace zentaq {

/// A value that a member does not take. The text is one line: the numbered warning with the range.
class Refused : public Failure {
 public:
    using Failure::Failure;
    explicit Refused(const Refusal& refusal);
};

/// What is ignored comes with no warning: then the text tells what does not take which value.
void throwIfRefused(const EntryOutcome& outcome, std::string_view name = {}, std::string_view value = {});

/// Where reference data comes from: an open database, none, or one that is opened when it is first asked for.
/// A program that only reads cells must not wait for a database.
class DatabaseSource {
 public:
    DatabaseSource(const Database* database = nullptr)
        : database_(database) {}  // NOLINT: converts on purpose
    /// `find` throws Failure, with the reason, for no database; it is asked for every row.
    explicit DatabaseSource(std::function<const Database&()> find) : find_(std::move(find)) {}
    /// Throws Failure, with the reason, where there is none.
    const Database& get() const;

 private:
    const Database* database_ = nullptr;
    std::function<const Database&()> find_;
};

class DatabaseHost : public QuietHost {
 public:
    /// Without a database what needs an engine or a sensor fails, as with a database file that is missing.
    explicit DatabaseHost(DatabaseSource database = {}) : database_(std::move(database)) {}

    std::optional<EngineFacts> engine(int kind, int optionType) override;
    std::optional<SensorFacts> mapSensor(int id) override;

 private:
    DatabaseSource database_;
};

/// Sets a member and throws Refused with the warning where it refuses, NoSuchMember where the kind lacks
/// it or it cannot be set, BoundsError on an element outside it. A basic figure takes what its cell holds
/// already.
void setOrThrow(Unit& unit, std::string_view member, const Entry& value, int element = 0);

}  // namespace zentaq
