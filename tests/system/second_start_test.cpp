// The program started twice on one virtual screen: the second process says so and ends, the first is
// unaffected, even while it asks for its first file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "temporary_folder.h"

namespace zentaq {
namespace {

/// Answers 0 when all went well, otherwise the number of the step that failed.
constexpr const char* script = R"script(
cp -r "$APP" "$SCRATCH/app" && mkdir -p "$SCRATCH/home/.config" "$SCRATCH/runtime" || exit 1
chmod 700 "$SCRATCH/runtime"
unset WAYLAND_DISPLAY
export HOME=$SCRATCH/home XDG_CONFIG_HOME=$SCRATCH/home/.config XDG_RUNTIME_DIR=$SCRATCH/runtime
export QT_QPA_PLATFORM=xcb ZENTAQ=$SCRATCH/app/zentaq4 LOG=$SCRATCH/app/zentaq.log
xvfb-run -a -s '-screen 0 1366x768x24' bash -c '
  seen() { timeout 20 xdotool search --sync --onlyvisible --name "$1" | head -n 1; }
  "$ZENTAQ" & first=$!
  trap "kill $first 2>/dev/null" EXIT
  [ -n "$(seen "^Open Zentaq4 User Calibration Files$")" ] || exit 2
  cp "$LOG" "$SCRATCH/before"
  "$ZENTAQ" & second=$!
  box=$(seen "^Zentaq4$")
  [ -n "$box" ] || exit 3
  kill -0 $second || exit 4
  xdotool windowfocus --sync "$box" key Return
  for wait in $(seq 100); do kill -0 $second 2>/dev/null || break; sleep 0.05; done
  if kill -0 $second 2>/dev/null; then kill $second; exit 5; fi
  wait $second || exit 6
  kill -0 $first || exit 7
  cmp -n "$(stat -c %s "$SCRATCH/before")" "$LOG" "$SCRATCH/before" || exit 8
  [ "$(grep -c "Program Initialized on" "$LOG")" = 1 ] || exit 8
  [ -n "$(seen "^Open Zentaq4 User Calibration Files$")" ] || exit 9
'
)script";

TEST(SecondStart, IsToldAndEndsWhileTheFirstAsksForAFileUndisturbed) {
    const TemporaryFolder scratch;
    scratch.write("script", script);
    const std::string command = "APP='" ZENTAQ_APP_DIR "' SCRATCH='" + scratch.path().string() + "' bash '" +
                                scratch.path("script") + "'";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the step of the script that failed";
}

}  // namespace
}  // namespace zentaq
