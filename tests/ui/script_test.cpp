#include <fstream>
#include <sstream>

#include "desktop.h"
#include "support/expected_lines.h"
#include "ui/session/user_settings.h"

namespace torvane::test {
namespace {

// A file of tests/data/ui: scripts under headings "== what they show", each on a desktop of its
// own.
class Script : public Desktop, public testing::WithParamInterface<std::string> {};

TEST_P(Script, GoesAsWritten) {
  std::ifstream file(TORVANE_TEST_DATA "/ui/" + GetParam() + ".txt");
  ASSERT_TRUE(file.is_open());
  std::string script;
  std::string heading;
  const auto play = [&] {
    SCOPED_TRACE(heading);
    if (script.empty()) return;
    Panel.reset();
    UserSettings().clear();
    Panel = std::make_unique<ControlPanel>(Data);
    Panel->resize(Small);
    Panel->show();
    Panel->activateWindow();
    Reports.Answer = true;
    QCoreApplication::processEvents();
    Play(script);
    script.clear();
  };
  for (const std::string& line : LinesOf(file)) {
    if (line.starts_with("==")) play();
    (line.starts_with("==") ? heading = line : script += line + "\n");
  }
  play();
}

INSTANTIATE_TEST_SUITE_P(Files, Script,
                         testing::Values("control_panel", "scope", "trigger", "wave_gen", "meter",
                                         "constants", "input", "adjust", "analyser", "windows",
                                         "files", "measuring", "diagram", "tune", "loops",
                                         "experiments"),
                         [](const auto& script) { return script.param; });

}  // namespace
}  // namespace torvane::test
