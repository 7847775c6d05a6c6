#include "ui/desk/arrangement.h"

#include <QUrl>

#include "core/bench.h"
#include "core/files/record.h"
#include "core/instrument.h"
#include "ui/desk/workspace.h"
#include "ui/panes/instrument_pane.h"
#include "ui/session/user_settings.h"

namespace torvane::arrangement {

namespace {

const QString Shown = QStringLiteral("false");
const QString Hidden = QStringLiteral("true");
const QString Yielded = QStringLiteral("yielded");

// A name may hold what divides the keys of the settings into groups.
QString Key(const char* group, const Instrument& instrument) {
  const std::string_view kind = RecordKeyword(instrument.Kind());
  return QStringLiteral("%1/%2 %3")
      .arg(QLatin1String(group), QLatin1String(kind.data(), static_cast<qsizetype>(kind.size())),
           QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(instrument.Name()))));
}

QString PlaceKey(const Instrument& instrument) {
  return Key("places", instrument);
}

QString HiddenKey(const Instrument& instrument) {
  return Key("hidden", instrument);
}

// One that has yielded its place is wanted, but behind the one that took it.
QString HiddenText(const InstrumentFrame& frame) {
  return frame.HasYielded() ? Yielded : frame.IsShown() ? Shown : Hidden;
}

// As in a model file.
std::string PlaceText(const Instrument& instrument) {
  std::string text;
  RecordWriter writer(text, RecordKeyword(instrument.Kind()), instrument.Name());
  SaveDisplay(writer, instrument.Placement);
  return text.substr(0, text.find('\r'));
}

bool IsRemembered(const Instrument& instrument) {
  return instrument.Kind() != InstrumentKind::Meter;
}

}  // namespace

void Remember(const Workspace& workspace) {
  QSettings settings = UserSettings();
  for (const InstrumentFrame* frame : workspace.Frames()) {
    const Instrument& instrument = frame->Pane().Engine();
    if (!IsRemembered(instrument)) continue;
    if (workspace.IsFilled()) {
      settings.remove(PlaceKey(instrument));
    } else {
      settings.setValue(PlaceKey(instrument), QString::fromStdString(PlaceText(instrument)));
    }
    if (frame->IsChosen()) settings.setValue(HiddenKey(instrument), HiddenText(*frame));
  }
}

void RecallPlaces(const ZelBenchTop& bench) {
  const QSettings settings = UserSettings();
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (Instrument* instrument : bench.Instruments(kind)) {
      if (instrument->Placement.Width > 0 || !IsRemembered(*instrument)) continue;
      const std::string place = settings.value(PlaceKey(*instrument)).toString().toStdString();
      if (!place.empty()) LoadDisplay(ParseRecord(place, 0), instrument->Placement);
    }
  }
}

void RecallHidden(Workspace& workspace) {
  const QSettings settings = UserSettings();
  for (const QString& left : {Yielded, Shown, Hidden}) {
    for (const InstrumentFrame* frame : workspace.Frames()) {
      const Instrument& instrument = frame->Pane().Engine();
      const QString hidden = settings.value(HiddenKey(instrument)).toString();
      if (hidden == left) workspace.SetShown(instrument, left != Hidden);
    }
  }
}

}  // namespace torvane::arrangement
