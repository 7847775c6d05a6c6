#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "command_line.h"
#include "core/text.h"
#include "ui/desk/control_panel.h"
#include "ui/desk/desk_style.h"
#include "ui/desk/file_commands.h"
#include "ui/desk/theme.h"
#include "ui/session/end_requests.h"
#include "ui/session/message_boxes.h"

namespace {

constexpr int WrongUsage = 2;

// Without a display the toolkit would abort the program.
void EndWithoutDisplay(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type != QtFatalMsg) {
    std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, text)));
    return;
  }
  std::fputs(
      "Error: Torvane needs a display, and none could be opened.  torvane-cli works without.\n",
      stderr);
  std::exit(1);
}

// Presses Run, and prints how far the model got in that wall time.
void StartSpeedTest(torvane::ControlPanel& panel, double seconds) {
  const double start = panel.Model()->Time();
  const int framesBefore = panel.Frames();
  QElapsedTimer wall;
  wall.start();
  panel.Run();
  QTimer::singleShot(std::chrono::milliseconds(qRound64(seconds * 1e3)), Qt::PreciseTimer, &panel,
                     [&panel, start, framesBefore, wall] {
                       const double elapsed = static_cast<double>(wall.nsecsElapsed()) * 1e-9;
                       const double simulated = panel.Model()->Time() - start;
                       std::printf("simulated_s=%s wall_s=%s ratio=%s refreshes=%d\n",
                                   torvane::FormatShortest(simulated).c_str(),
                                   torvane::FormatShortest(elapsed).c_str(),
                                   torvane::FormatShortest(simulated / elapsed).c_str(),
                                   panel.Frames() - framesBefore);
                       std::fflush(stdout);
                       QCoreApplication::exit(0);
                     });
}

// A model runs from the message loop, and one whose passes are short spends a third of its time in
// the loop that is shared with GLib. Nothing here needs that one.
void ChooseMessageLoop() {
  if (!qEnvironmentVariableIsSet("QT_NO_GLIB")) qputenv("QT_NO_GLIB", "1");
}

int RunWindow(const torvane::CommandLine& command, const torvane::EndRequests& requests) {
  const bool speedTest = command.What == torvane::CommandLine::Action::SpeedTest;
  if (!speedTest) torvane::ApplyTheme(torvane::RememberedTheme());
  using Windows = torvane::ControlPanel::Windows;
  torvane::ControlPanel panel(torvane::DataFolder(QCoreApplication::applicationDirPath()),
                              command.Model, speedTest ? Windows::AsBuilt : Windows::AsLeft);
  if (!panel.Model()) {
    QApplication::exec();  // which shows why
    return 1;
  }
  QApplication::setWindowIcon(panel.windowIcon());
  QObject::connect(&requests, &torvane::EndRequests::EndAsked, &panel,
                   &torvane::ControlPanel::EndUnasked);
  QObject::connect(&requests, &torvane::EndRequests::KeepAsked, &panel.Work(),
                   &torvane::Session::Keep);
  panel.ShowAtStart(!speedTest);
  // A speed test measures a model as it is built, whatever the user's configuration.
  if (!speedTest || !command.File.empty()) {
    QTimer::singleShot(0, &panel, [&] {
      panel.Files().Start(QString::fromStdString(command.File), command.Model.empty());
    });
  }
  if (speedTest) {
    // From the message loop, so that the window is on the screen before the clock starts.
    QTimer::singleShot(0, &panel, [&] { StartSpeedTest(panel, command.SpeedSeconds); });
  }
  return QApplication::exec();
}

// Who sent a signal is to see that it ended the program.
int RunDesktop(int argc, char** argv, const torvane::CommandLine& command) {
  ChooseMessageLoop();
  const QtMessageHandler handler = qInstallMessageHandler(EndWithoutDisplay);
  QApplication application(argc, argv);
  qInstallMessageHandler(handler);
  QCoreApplication::setApplicationName(QStringLiteral("torvane"));
  QCoreApplication::setApplicationVersion(QStringLiteral(TORVANE_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("torvane"));
  const torvane::EndRequests requests;
  torvane::MessageBoxes messages;
  QApplication::setStyle(new torvane::DeskStyle);
  const int code = RunWindow(command, requests);
  if (requests.Signal() != 0) {
    std::signal(requests.Signal(), SIG_DFL);
    std::raise(requests.Signal());
  }
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  std::string error;
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const auto command = torvane::ReadCommandLine(arguments, error);
  if (!command) {
    std::fprintf(stderr, "Error: %s\n", error.c_str());
    return WrongUsage;
  }
  switch (command->What) {
    case torvane::CommandLine::Action::Help:
      std::fputs(torvane::HelpText().c_str(), stdout);
      return 0;
    case torvane::CommandLine::Action::Version:
      std::puts("torvane " TORVANE_VERSION);
      return 0;
    case torvane::CommandLine::Action::Run:
    case torvane::CommandLine::Action::SpeedTest:
      break;
  }
  return RunDesktop(argc, argv, *command);
}
