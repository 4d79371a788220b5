// Sets a flag for the span of a block, also when the block is left by a failure.
#pragma once

namespace zentaq {

class FlagScope {
 public:
    explicit FlagScope(bool& flag) : flag_(flag) { flag_ = true; }
    ~FlagScope() { flag_ = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

 private:
    bool& flag_;
};

}  // namespace zentaq
