#include "ui/session/session.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/seal.h"
#include "instruments/generator/wave.h"
#include "support/recorder.h"
#include "ui/session/end_requests.h"

namespace torvane {
namespace {

using test::Messages;

// No window is made here.
class SessionTest : public testing::Test {
 protected:
  SessionTest() {
    qputenv("XDG_STATE_HOME", Folder.filePath("state").toUtf8());
    Work = std::make_unique<Session>();
    Work->Choose("2-1 PI+ Controller");
  }

  QString Path(const char* name) { return Folder.filePath(QString::fromLatin1(name)); }
  QString Put(const char* name, const std::string& text) {
    QDir().mkpath(QFileInfo(Path(name)).path());
    QFile file(Path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromStdString(text));
    return Path(name);
  }
  static QByteArray Content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  QStringList Kept() { return QDir(Path("state/torvane")).entryList(QDir::Files); }
  ZelBenchTop& Bench() { return Work->Model()->Bench(); }
  Constant& Const(const char* name) { return *Bench().FindConst(name); }
  // As an earlier process left it.
  std::string SessionWithKp(const char* value) {
    return Sealed(std::string("Application,") + ApplicationTitle +
                  "\r\nModel,3-1 PI Controller\r\nConstant,KP," + value + "\r\n");
  }

  test::Recorder Reports;
  QTemporaryDir Folder;
  std::unique_ptr<Session> Work;
};

TEST_F(SessionTest, WhatDiffersFromTheLastSaveOrLoadIsChanged) {
  auto& generator =
      dynamic_cast<ZelWave&>(*Bench().Instruments(InstrumentKind::WaveGenerator).front());
  EXPECT_FALSE(Work->Changed());
  generator.Placement.Left += 10;
  EXPECT_FALSE(Work->Changed());
  const double amplitude = generator.Settings().Amplitude;
  generator.SetAmplitude(33);
  EXPECT_TRUE(Work->Changed());
  generator.SetAmplitude(amplitude);
  Const("KVP").Set(1.5);
  EXPECT_EQ(Work->Title(), "* 2-1 PI+ Controller - Torvane--Melkorin, 2nd Edition");
  Bench().History().Undo();
  EXPECT_FALSE(Work->Changed());

  Const("KVP").Set(1.5);
  EXPECT_FALSE(Work->Save(Path("no/such/folder.tvf")));
  EXPECT_TRUE(Work->Changed());
  EXPECT_TRUE(Work->Save(Path("stiff.tvf")));
  EXPECT_FALSE(Work->Changed());
  EXPECT_EQ(Work->Title(), "stiff.tvf - 2-1 PI+ Controller - Torvane--Melkorin, 2nd Edition");
  Const("KVP").Set(3);
  EXPECT_TRUE(Work->Open(Path("stiff.tvf")));
  EXPECT_FALSE(Work->Changed());
  Work->Choose("3-1 PI Controller");
  EXPECT_EQ(Work->File(), "");
}

TEST_F(SessionTest, AFileThatIsNoModelsOwnIsNotTakenOver) {
  const QString own = Path("own.tvf");
  ASSERT_TRUE(Work->Save(own));
  Const("KVP").Set(1.5);
  struct Case {
    const char* Name;
    std::string Text;
    std::size_t Messages;
  } cases[] = {
      {"empty.tvf", "", 1},
      {"blank.tvf", std::string(MaxModelFileSize / 16, '\n'), 1},
      {"noise.tvf",
       "\x7f"
       "ELF\x02\x01,\x03\n",
       1},
      {"others.tvf", "Constant,Other,1\n", 2},
      {"untitled.tvf", "Model,2-1 PI+ Controller\r\nConstant,KVI,7\r\n", 0},
  };
  for (const Case& foreign : cases) {
    EXPECT_TRUE(Work->Open(Put(foreign.Name, foreign.Text)));
    EXPECT_EQ(Work->File(), own) << foreign.Name;
    EXPECT_TRUE(Work->Changed()) << foreign.Name;
    const Messages reports = Reports.Take();
    ASSERT_EQ(reports.size(), foreign.Messages) << foreign.Name;
    if (foreign.Messages > 0) {
      EXPECT_EQ(reports.back(), "Error: Nothing in " + Path(foreign.Name).toStdString() +
                                    " was recognised.  It is no model file.");
    }
  }
  EXPECT_EQ(Const("KVI").Value(), 7);
}

TEST_F(SessionTest, ReportsComeWhenAllIsLoadedAndAreFew) {
  std::string text = std::string("Application,") + ApplicationTitle +
                     "\nModel,3-1 PI Controller\nConstant,KP,abc\n";
  for (int i = 0; i < 3000; ++i) text += "Constant,Nothing,1\n";
  text += "Constant,KI,90\n";
  struct Watcher : test::Recorder {
    explicit Watcher(Session& watched) : session(watched) {}
    void Show(MessageKind kind, const std::string& report) override {
      whole = whole && session.Model()->Bench().FindConst("KI")->Value() == 90 && changes == 1 &&
              !session.File().isEmpty();
      Recorder::Show(kind, report);
    }
    Session& session;
    int changes = 0;
    bool whole = true;
  } watcher(*Work);
  QObject::connect(Work.get(), &Session::ModelChanged, [&] { ++watcher.changes; });
  CollectedReports::Rest rest;
  QObject::connect(Work.get(), &Session::ManyReports,
                   [&](const CollectedReports::Rest& many) { rest = many; });
  EXPECT_TRUE(Work->Open(Put("bad.tvf", text)));
  EXPECT_TRUE(watcher.whole);
  const Messages shown = watcher.Take();
  ASSERT_EQ(shown.size(), 1 + CollectedReports::ShownOneByOne);  // and the question
  EXPECT_EQ(shown[1],
            "Message Box: Cannot convert \"abc\" to a Number\rin line 3:  Constant,KP,abc");
  EXPECT_EQ(rest.Texts.size(), CollectedReports::MostKept - CollectedReports::ShownOneByOne);
  EXPECT_EQ(rest.Count, 3001 - CollectedReports::ShownOneByOne);
}

TEST_F(SessionTest, AnUnsavedSessionIsKeptUntilItIsSaved) {
  EXPECT_EQ(Kept(), QStringList());
  Const("KVP").Set(1.25);
  // The timer asks every two seconds.
  ASSERT_TRUE(QTest::qWaitFor([&] { return !Kept().isEmpty(); }, 120000));
  ASSERT_EQ(Kept().size(), 1);
  EXPECT_TRUE(Content(Path("state/torvane/") + Kept()[0]).contains("Constant,KVP,1.25\r\n"));
  // It has an owner that lives: nobody is offered it.
  EXPECT_TRUE(Session::LeftBehind().empty());
  EXPECT_TRUE(Work->Save(Path("safe.tvf")));
  EXPECT_EQ(Kept(), QStringList());
}

TEST_F(SessionTest, ASessionThatWasLeftBehindIsBroughtBack) {
  const QString left = Put("state/torvane/session-a.tvf", SessionWithKp("0.125"));
  Put("state/torvane/session-b.tvf.new", "cut of");
  std::vector<KeptSession> found = Session::LeftBehind();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_TRUE(Session::LeftBehind().empty()) << "claimed already";
  EXPECT_TRUE(Work->Restore(std::move(found[0])));
  EXPECT_EQ(Work->Model()->Name(), "3-1 PI Controller");
  EXPECT_EQ(Const("KP").Value(), 0.125);
  EXPECT_TRUE(Work->Changed());
  EXPECT_EQ(Work->File(), "");
  EXPECT_EQ(Reports.Take(), Messages{});
  EXPECT_EQ(Kept(), QStringList("session-a.tvf"));  // until the session is saved or ends
  Work.reset();
  EXPECT_EQ(Kept(), QStringList());

  // What is not answered stays for the next start.
  Put("state/torvane/session-a.tvf", SessionWithKp("0.125"));
  found = Session::LeftBehind();
  found.clear();
  EXPECT_EQ(Session::LeftBehind().size(), 1U);
}

// The user's own file may be gone, cut to nothing or another by the next start.
TEST_F(SessionTest, TheLastSessionOutlivesItsFile) {
  const std::string kept = "Model,3-1 PI Controller\r\nConstant,KP,0.125\r\n";
  const QString left = Put("state/torvane/last-session", kept);
  const QString own = Path("own.tvf");
  for (const char* now : {static_cast<const char*>(nullptr), "", "no model file\n"}) {
    if (now) Put("own.tvf", now);
    Work->ComeBack(left, own, false, true);
    EXPECT_EQ(Const("KP").Value(), 0.125);
    EXPECT_EQ(Work->Title(), "* 3-1 PI Controller - Torvane--Melkorin, 2nd Edition");
    EXPECT_TRUE(Reports.Take().back().ends_with("is back.  It is not saved."));
    Work->Choose("2-1 PI+ Controller");
  }
  Put("own.tvf", std::string("Application,") + ApplicationTitle + "\r\n" + kept);
  Work->ComeBack(left, own, false, true);
  EXPECT_EQ(Work->File(), own);
  EXPECT_FALSE(Work->Changed());
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(SessionTest, ADamagedSessionIsSetAsideAndSaid) {
  const std::string whole = SessionWithKp("0.125");
  const std::string damaged[] = {"", whole.substr(0, whole.size() / 2), "some text\n",
                                 std::string("x").append(whole, 1), whole + "more\n"};
  int number = 0;
  for (const std::string& text : damaged) {
    const std::string name = std::string("session-") + std::to_string(++number) + ".tvf";
    Put(("state/torvane/" + name).c_str(), text);
    EXPECT_TRUE(Session::LeftBehind().empty()) << text;
    const QString aside = Path("state/torvane/damaged-") + QString::fromStdString(name);
    EXPECT_EQ(Content(aside).toStdString(), text);
    const Messages reports = Reports.Take();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(reports[0].find(aside.toStdString()), std::string::npos);
    EXPECT_TRUE(Session::LeftBehind().empty());
    EXPECT_EQ(Reports.Take(), Messages{});  // said once
  }
}

TEST_F(SessionTest, WhatCannotBeBroughtBackIsSetAsideAndSaid) {
  for (const char* text : {"Application,Another\nConstant,KVP,3\n", "no model file\n",
                           "Application,Torvane--Melkorin, 2nd Edition\nModel,9-9 None\n"}) {
    Put("state/torvane/session-a.tvf", Sealed(text));
    std::vector<KeptSession> found = Session::LeftBehind();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_FALSE(Work->Restore(std::move(found[0]))) << text;
    const std::string aside = Path("state/torvane/damaged-session-a.tvf").toStdString();
    EXPECT_EQ(Reports.Take().back(),
              "Warning: A session that was kept before Torvane ended cannot be brought back.\n"
              "What is left of it has been set aside in\n" +
                  aside);
    EXPECT_EQ(Kept(), QStringList("damaged-session-a.tvf"));
    EXPECT_FALSE(Work->Changed());
  }
}

TEST_F(SessionTest, ThatNothingCanBeKeptIsSaidOnce) {
  Put("state", "a file where the folder would be");
  for (const double value : {1.25, 1.5, 1.75}) {
    Const("KVP").Set(value);
    Work->Keep();
  }
  const Messages reports = Reports.Take();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_TRUE(
      reports[0].starts_with("Warning: What is not saved cannot be kept over a crash.\n"
                             "Cannot write " +
                             Path("state/torvane/").toStdString()));
  EXPECT_TRUE(reports[0].ends_with(": Not a directory")) << reports[0];
}

// Long before the timer comes round.
TEST_F(SessionTest, ASignalLeavesTheSessionAsItIsForTheNextStart) {
  for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
    const EndRequests requests;
    QObject::connect(&requests, &EndRequests::EndAsked, Work.get(), &Session::LeaveForNextStart);
    Const("KVP").Set(signal);
    std::raise(signal);
    while (requests.Signal() == 0) QCoreApplication::processEvents();
    EXPECT_EQ(requests.Signal(), signal);
    Work = std::make_unique<Session>();
    Work->Choose("2-1 PI+ Controller");
    std::vector<KeptSession> found = Session::LeftBehind();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(Work->Restore(std::move(found[0])));
    EXPECT_EQ(Const("KVP").Value(), signal);
  }
}

// A process of its own meets the limit of file sizes half way through the second session, as on a
// full disk, and is killed.
TEST_F(SessionTest, TheLastWholeSessionOutlivesAFullDiskAndAKill) {
  const pid_t child = ::fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    RecoveryFile kept;
    kept.Write("first");
    const rlimit limit{100, 100};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    kept.Write(std::string(1000, 'x'));
    ::raise(SIGKILL);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  const std::vector<KeptSession> found = Session::LeftBehind();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].Text, "first");
  EXPECT_EQ(Kept().size(), 1);
}

}  // namespace
}  // namespace torvane
