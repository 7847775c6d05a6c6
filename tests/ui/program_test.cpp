#include <gtest/gtest.h>

#include <QProcess>
#include <QRegularExpression>

#include "models/catalogue.h"

namespace torvane {
namespace {

struct Outcome {
  int Code;
  QString Out;
  QString Err;
};

Outcome RunProgram(const QStringList& arguments, const QProcessEnvironment& environment =
                                                     QProcessEnvironment::systemEnvironment()) {
  QProcess program;
  program.setProcessEnvironment(environment);
  program.start(TORVANE_PROGRAM, arguments);
  program.waitForFinished(120000);
  return {program.exitCode(), QString::fromUtf8(program.readAllStandardOutput()),
          QString::fromUtf8(program.readAllStandardError())};
}

TEST(ProgramTest, TheSpeedTestRunsTheNamedModel) {
  for (const char* model : {"3-1 PI Controller", "0", "6-1"}) {
    // As a session manager starts it again, too.
    const Outcome outcome = RunProgram({model, "--speed-test", "0.3", "-session", "a_1_2"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err.toStdString();
    const QRegularExpression line(
        "^simulated_s=(\\S+) wall_s=(\\S+) ratio=(\\S+) refreshes=(\\d+)\n$");
    const auto match = line.match(outcome.Out);
    ASSERT_TRUE(match.hasMatch()) << outcome.Out.toStdString();
    EXPECT_GT(match.captured(1).toDouble(), 0.0);
    EXPECT_GE(match.captured(2).toDouble(), 0.299);
    EXPECT_NEAR(match.captured(3).toDouble(),
                match.captured(1).toDouble() / match.captured(2).toDouble(), 1e-6);  // rounding
    EXPECT_GE(match.captured(4).toInt(), 1);
  }
}

TEST(ProgramTest, HelpAndVersion) {
  const Outcome help = RunProgram({"--help"});
  EXPECT_EQ(help.Code, 0);
  for (const std::string& name : ModelNames()) {
    EXPECT_TRUE(help.Out.contains(QString::fromStdString(name))) << name;
  }
  EXPECT_TRUE(RunProgram({"--version"}).Out.startsWith("torvane "));
}

TEST(ProgramTest, WithoutADisplayItSaysSoAndEnds) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", "none");
  const Outcome outcome = RunProgram({}, environment);
  EXPECT_EQ(outcome.Code, 1);
  EXPECT_TRUE(outcome.Err.contains("Error: Torvane needs a display")) << outcome.Err.toStdString();
}

TEST(ProgramTest, WrongArgumentsEndInOneLineAndCodeTwo) {
  const std::pair<QStringList, const char*> cases[] = {
      {{"--fast"}, "Error: Unknown option --fast (see --help)\n"},
      {{"2-2 PI"}, "Error: There is no model or file \"2-2 PI\" (see --help)\n"},
      {{"99"}, "Error: There is no model or file \"99\" (see --help)\n"},
      {{"0", "1"}, "Error: One model or file at most: 1\n"},
      {{"--speed-test"},
       "Error: --speed-test needs a number of seconds, above 0 and up to 86400\n"},
      {{"--speed-test", "-1"},
       "Error: --speed-test needs a number of seconds, above 0 and up to 86400\n"},
  };
  for (const auto& [arguments, message] : cases) {
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(outcome.Code, 2) << message;
    EXPECT_EQ(outcome.Err, message);
    EXPECT_EQ(outcome.Out, "");
  }
}

}  // namespace
}  // namespace torvane
