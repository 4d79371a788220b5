#include "base/json_writer.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

namespace zentaq {
namespace {

template <typename Value>
std::string written(const Value& value) {
    std::ostringstream out;
    JsonWriter(out).value(value);
    return out.str();
}

TEST(JsonWriter, PutsCommasBetweenMembersAndElementsOnly) {
    std::ostringstream out;
    JsonWriter json(out);
    json.beginObject().member("a", 1).key("b").beginArray().value(2).value(3).endArray();
    json.key("c").beginObject().endObject().key("d").beginArray().endArray().key("e").null().endObject();
    EXPECT_EQ(out.str(), R"({"a":1,"b":[2,3],"c":{},"d":[],"e":null})");
}

TEST(JsonWriter, PutsCommasBetweenObjectsInAnArray) {
    std::ostringstream out;
    JsonWriter json(out);
    json.beginArray().beginObject().member("a", true).endObject();
    json.beginObject().member("a", false).endObject().endArray();
    EXPECT_EQ(out.str(), R"([{"a":true},{"a":false}])");
}

TEST(JsonWriter, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(written("say \"14.7\""), R"("say \"14.7\"")");
    EXPECT_EQ(written("C:\\tunes"), R"("C:\\tunes")");
    EXPECT_EQ(written("one\ntwo\tthree"), R"("one\ntwo\tthree")");
    EXPECT_EQ(written("\x01\x1F\x7F"), R"("\u0001\u001f\u007f")");
    EXPECT_EQ(written(std::string_view("\0", 1)), R"("\u0000")");
}

TEST(JsonWriter, EscapesKeysToo) {
    std::ostringstream out;
    JsonWriter(out).beginObject().member("a\"b", 1).endObject();
    EXPECT_EQ(out.str(), R"({"a\"b":1})");
}

TEST(JsonWriter, LeavesWholeCharactersAsTheyAre) {
    EXPECT_EQ(written("20 °C – 日 😀"), "\"20 °C – 日 😀\"");
}

TEST(JsonWriter, WritesAReplacementForEachByteThatIsNoUtf8) {
    const std::string lost = "\xEF\xBF\xBD";
    EXPECT_EQ(written("a\xFFz"), "\"a" + lost + "z\"");
    EXPECT_EQ(written("\xC3"), "\"" + lost + "\"");                        // cut short
    EXPECT_EQ(written("\xC0\xAF"), "\"" + lost + lost + "\"");             // longer than needed
    EXPECT_EQ(written("\xED\xA0\x80"), "\"" + lost + lost + lost + "\"");  // half of a pair
    EXPECT_EQ(written("\xF4\x90\x80\x80"), "\"" + lost + lost + lost + lost + "\"");
}

TEST(JsonWriter, WritesNumbersAsAUserSeesThem) {
    EXPECT_EQ(written(12.5F), "12.5");
    EXPECT_EQ(written(-0.1F), "-0.1");
    EXPECT_EQ(written(1e20F), "1E+20");
    EXPECT_EQ(written(-7), "-7");
    EXPECT_EQ(written(86400000.125), "86400000.125") << "twice as many digits of a double";
}

TEST(JsonWriter, WritesWhatIsNoJsonNumberAsText) {
    EXPECT_EQ(written(std::numeric_limits<float>::quiet_NaN()), R"("NaN")");
    EXPECT_EQ(written(std::numeric_limits<double>::infinity()), R"("Infinity")");
    EXPECT_EQ(written(std::numeric_limits<float>::infinity()), R"("Infinity")");
    EXPECT_EQ(written(-std::numeric_limits<float>::infinity()), R"("-Infinity")");
}

}  // namespace
}  // namespace zentaq
