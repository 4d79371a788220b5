// Fields that get back what they held when work on them fails half way.
// So a calibration that cannot be read leaves the one in hand whole.
#pragma once

#include <tuple>

namespace zentaq {

template <typename... Fields>
class Rollback {
 public:
    explicit Rollback(Fields&... fields) : fields_(fields...), saved_(fields...) {}
    ~Rollback() {
        if (armed_) fields_ = saved_;
    }
    Rollback(const Rollback&) = delete;
    Rollback& operator=(const Rollback&) = delete;
    /// The work has succeeded.
    void keep() { armed_ = false; }

 private:
    std::tuple<Fields&...> fields_;
    std::tuple<Fields...> saved_;
    bool armed_ = true;
};

}  // namespace zentaq
