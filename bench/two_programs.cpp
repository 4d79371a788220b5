// Two programs, one unit: runs of `zentaqctl firmware` and `zentaqctl program` beside a window program that
// tries to open the port a thousand times a second, a thousand times as often as it does by itself. The unit
// answers without the wire's pacing.
// The aim: of 200 runs of each none fails; one may be refused before its first byte.
//
//   two_programs [COUNT]
#include <charconv>
#include <cstdio>
#include <cstring>

#include "system/contended_port.h"

namespace {

bool tell(const char* what, const zentaq::ContendedPort::Outcomes& all) {
    std::printf("%-8s %d done, %d refused before the first byte, %d failed\n", what, all.done, all.refused,
                all.failed);
    if (!all.firstFailure.empty()) std::printf("  %s\n", all.firstFailure.c_str());
    std::fflush(stdout);
    return all.failed == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 200;
    if (argc > 1) std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), count);
    QApplication application(argc, argv);
    zentaq::ContendedPort contended(application);
    if (!contended.ready()) return 2;
    const bool programmed = tell("program", contended.program(count));
    const bool upgraded = tell("firmware", contended.firmware(count));
    std::printf("the window program tried %d times and had the port %d times\n", contended.tries(),
                contended.openings());
    return programmed && upgraded ? 0 : 1;
}
