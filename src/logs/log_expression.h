// A condition or a formula over the channels of a datalog, as a tuner types it:
// "RPM > 3000 and MAP > 80 and abs(AAFR - DAFR) > 0.5".
//
//   or, ||            weakest
//   and, &&
//   not, !
//   < <= > >= = == <> !=     not in chains
//   + -
//   * / mod
//   - +               in front of a value
//   abs min max sqrt floor ceil round (…), numbers, channels by either of their names, in any case
//
// A comparison is 1 or 0, and whatever is not 0 counts as true. What has no value, as a division by 0, makes
// every comparison with it false.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"

namespace zentaq {

/// What is wrong with an expression, and where: the text tells both.
class ExpressionError : public Failure {
 public:
    ExpressionError(const std::string& what, std::size_t where) : Failure(what), place(where) {}
    std::size_t place;  ///< from 0, in the expression
};

class LogExpression {
 public:
    static constexpr std::size_t longest = 4096;

    /// Over rows of these columns. Throws ExpressionError.
    LogExpression(std::string_view text, const std::vector<std::string>& columns);

    /// NaN where there is no value. `at(column)` answers the value of the row.
    template <typename At>
    double value(const At& at) const {
        stack_.clear();
        for (const Step& step : steps_) {
            if (step.does == Does::Channel) {
                stack_.push_back(static_cast<double>(at(step.column)));
            } else {
                apply(step);
            }
        }
        return stack_.back();
    }
    template <typename At>
    bool holds(const At& at) const {
        const double result = value(at);
        return result == result && result != 0;
    }

 private:
    friend class ExpressionParser;
    enum class Does : std::uint8_t {
        Number,
        Channel,
        Or,
        And,
        Not,
        Less,
        LessOrEqual,
        More,
        MoreOrEqual,
        Equal,
        Unequal,
        Plus,
        Minus,
        Times,
        Over,
        Modulo,
        Negative,
        Abs,
        Least,
        Most,
        Root,
        Floor,
        Ceiling,
        Round
    };
    struct Step {
        Does does = Does::Number;
        int column = 0;
        double number = 0;
    };
    void apply(const Step& step) const;

    std::vector<Step> steps_;  ///< operands first
    mutable std::vector<double> stack_;
};

}  // namespace zentaq
