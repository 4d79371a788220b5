// Where bytes of the image come from: what fails on the way names member, cell and value.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"

namespace zentaq {

struct ImageSource {
    std::string_view member;  ///< "KNK_MIN"; "cell" for a cell without one
    int cell = 0;
    float value = 0;
    int element = 0;
    int count = 1;               ///< of elements; a table of 256 has rows of 16
    std::string_view part = {};  ///< ".parameter", with `partIndex`
    int partIndex = 0;

    /// "ADV[3,5] (cell 709) holds 1E+20, which does not fit the bytes that the unit has for it"
    std::string whyNoImage() const {
        constexpr int tableCells = 256;
        constexpr int tableColumns = 16;
        std::string text(member);
        if (count == tableCells) {
            text += "[" + numberText(element / tableColumns) + "," + numberText(element % tableColumns) + "]";
        } else if (count > 1) {
            text += "[" + numberText(element) + "]";
        }
        if (!part.empty()) text += std::string(part) + "[" + numberText(partIndex) + "]";
        return text + " (cell " + numberText(cell) + ") holds " + numberText(value) +
               ", which does not fit the bytes that the unit has for it";
    }
};

/// Runs one conversion; an Overflow in it becomes one that tells the source.
template <typename Convert>
void convertFrom(const ImageSource& source, Convert&& convert) {
    try {
        std::forward<Convert>(convert)();
    } catch (const Overflow&) {
        throw Overflow(source.whyNoImage());
    }
}

/// The same for each of `count` conversions. Only the one that fails is asked for its source(i): an image has
/// thousands.
template <typename Source, typename Convert>
void convertEach(int count, const Source& source, const Convert& convert) {
    int i = 0;
    try {
        for (; i < count; ++i) convert(i);
    } catch (const Overflow&) {
        throw Overflow(source(i).whyNoImage());
    }
}

}  // namespace zentaq
