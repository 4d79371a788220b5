// A disk that takes no further byte, for as long as the object lives.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace zentaq {

class NoFileGrows {
 public:
    NoFileGrows() : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit none = before_;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~NoFileGrows() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    NoFileGrows(const NoFileGrows&) = delete;
    NoFileGrows& operator=(const NoFileGrows&) = delete;

 private:
    rlimit before_{};
    void (*handler_)(int);
};

}  // namespace zentaq
