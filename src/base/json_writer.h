// Writes JSON text, value by value, on one line. Texts are escaped, whatever no reader sees among them; what
// is no UTF-8 becomes U+FFFD.
#pragma once

#include <ostream>
#include <string_view>

namespace zentaq {

/// Commas come by themselves; the caller keeps the order: in an object each value follows its key.
class JsonWriter {
 public:
    explicit JsonWriter(std::ostream& out) : out_(out) {}

    JsonWriter& beginObject() { return open('{'); }
    JsonWriter& endObject() { return close('}'); }
    JsonWriter& beginArray() { return open('['); }
    JsonWriter& endArray() { return close(']'); }
    JsonWriter& key(std::string_view name);

    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }
    /// Up to 7 significant digits. JSON has no infinite numbers and no NaN: they are written as the texts
    /// "Infinity", "-Infinity" and "NaN".
    JsonWriter& value(float number);
    /// Up to 15.
    JsonWriter& value(double number);
    JsonWriter& value(int number);
    JsonWriter& value(bool truth);
    JsonWriter& null();

    template <typename Value>
    JsonWriter& member(std::string_view name, const Value& content) {
        return key(name).value(content);
    }

 private:
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);
    void separate();
    void quoted(std::string_view text);

    std::ostream& out_;
    bool first_ = true;  ///< nothing stands before the next value in its object or array
};

}  // namespace zentaq
