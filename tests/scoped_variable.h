// An environment variable for the time of a test.
#pragma once

#include <stdlib.h>

#include <optional>
#include <string>

namespace zentaq {

/// Sets or, with nullptr, unsets the variable until it goes; whatever was set meanwhile goes as well.
class ScopedVariable {
 public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* former = ::getenv(name)) former_ = former;
        put(value);
    }
    ~ScopedVariable() { put(former_ ? former_->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
    void put(const char* value) const { value != nullptr ? ::setenv(name_, value, 1) : ::unsetenv(name_); }

    const char* name_;
    std::optional<std::string> former_;
};

}  // namespace zentaq
