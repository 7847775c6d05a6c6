// Plays with the real windows at random:  torvane_monkey SECONDS SEED RECORD [--wait|--haste]
// or plays a record once more:            torvane_monkey --replay RECORD [--wait|--haste]

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "monkey.h"
#include "ui/desk/control_panel.h"
#include "ui/desk/desk_style.h"
#include "ui/desk/file_commands.h"
#include "ui/session/end_requests.h"
#include "ui/session/message_boxes.h"

namespace {

using torvane::test::Monkey;

// The toolkit's warnings about how it is used are faults; about the machine they are none.
void EndOnMisuse(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, text)));
  for (const char* misuse : {"does not belong", "QObject:", "QLayout",
                             "QWidget:", "QPainter::", "QAction", "Cannot", "QBackingStore"}) {
    if (type != QtDebugMsg && text.contains(QLatin1String(misuse))) std::abort();
  }
}

void Copy(const QString& from, const QString& to) {
  QDir().mkpath(to);
  for (const QFileInfo& file :
       QDir(from).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot)) {
    const QString copy = to + u'/' + file.fileName();
    file.isDir() ? Copy(file.filePath(), copy) : void(QFile::copy(file.filePath(), copy));
  }
}

void Put(const QString& path, const QByteArray& text) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly)) file.write(text);
}

// Whole files, files cut short, others, names of none; their names as they stand in a record.
QStringList MakeFiles(const QString& folder, const QString& examples) {
  QStringList files = {folder + "/none.tvf", folder + "/saved.tvf", folder + "/saved.png",
                       folder + "/no/such/folder.tvf", folder};
  const QStringList names = QDir(examples).entryList({QStringLiteral("*.tvf")});
  for (qsizetype i = 0; i < names.size(); i += 3) {
    files << examples + u'/' + names[i];
    QFile file(files.back());
    if (!file.open(QIODevice::ReadOnly)) continue;
    QByteArray text = file.readAll();
    files << folder + u'/' + QString::number(i) + ".tvf";
    if (i % 2 == 0) text.truncate(static_cast<int>(text.size() / 2));
    Put(files.back(), i % 2 == 0 ? text : text.replace("1", "x").replace(",0", ",,-1e400"));
  }
  Put(folder + "/response.csv", "Frequency,Gain,Phase\n1,0,0\n10,-3,-45\n100,-20,-90\n");
  Put(folder + "/units.csv", "Frequency,Magnitude,Phase\n1,1,0\n10,0.7,-0.8\n100,0.1,-1.6\n");
  Put(folder + "/traces.csv", "Time (ms),vC,vF\n-5,0,0\n0,20,0\n5,20,14\n900,-1e30,20\n");
  Put(folder + "/noise.tvf", QByteArray(3000, '\xff'));
  for (const char* name : {"/response.csv", "/units.csv", "/traces.csv", "/noise.tvf"}) {
    files << folder + name;
  }
  return files.replaceInStrings(folder, QStringLiteral("~"));
}

}  // namespace

int main(int argc, char** argv) {
  QStringList arguments(argv + 1, argv + argc);
  auto haste = Monkey::Haste::Both;
  if (arguments.removeAll(QStringLiteral("--wait")) > 0) haste = Monkey::Haste::Waits;
  if (arguments.removeAll(QStringLiteral("--haste")) > 0) haste = Monkey::Haste::Hastens;
  const QString record = QFileInfo(arguments.value(arguments.size() - 1)).absoluteFilePath();
  // Nothing of the user's own is read or written; a file dialog starts in the current folder.
  const QTemporaryDir folder;
  const QString home = folder.path();
  QDir::setCurrent(home);
  const QString share = home + QStringLiteral("/share/torvane");
  Copy(QStringLiteral(TORVANE_SHARE "/models"), share);
  Copy(QStringLiteral(TORVANE_SHARE "/examples"), share + QStringLiteral("/examples"));
  for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
    qputenv(variable, home.toUtf8());
  }
  const QStringList files = MakeFiles(home, share + QStringLiteral("/examples"));
  qInstallMessageHandler(EndOnMisuse);
  qputenv("QT_NO_GLIB", "1");
  QApplication application(argc, argv);
  const torvane::MessageBoxes boxes;
  QApplication::setStyle(new torvane::DeskStyle);
  Monkey monkey = arguments.value(0) == QLatin1String("--replay")
                      ? Monkey(record, haste)
                      : Monkey(arguments.value(1).toUInt(), arguments.value(0).toDouble(), haste,
                               files, record);
  // Who ends the program starts it again.
  while (!monkey.Over()) {
    torvane::ControlPanel panel(torvane::DataFolder(home + QStringLiteral("/bin")), {},
                                torvane::ControlPanel::Windows::AsLeft);
    const torvane::EndRequests requests;
    QObject::connect(&requests, &torvane::EndRequests::EndAsked, &panel,
                     &torvane::ControlPanel::EndUnasked);
    panel.ShowAtStart(true);
    QTimer::singleShot(0, &panel, [&] {
      monkey.Begin();
      panel.Files().Start({}, true);
    });
    QApplication::exec();
  }
  return EXIT_SUCCESS;
}
