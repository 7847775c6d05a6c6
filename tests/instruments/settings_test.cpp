// Every setting of every instrument: saved, read again, undone and redone, limited and refused.

#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using Lines = std::multiset<std::string>;

struct Instruments : UndoItems {
  Instruments() {
    Bench.History().Attach(this);
    Fft.SetTEndDelay(0.001);
    Bench.History().Clear();  // analysers set their ranges when they are made
  }
  void SetCaption(UndoItem item, const std::string& text) override {
    if (item == UndoItem::UndoMenu) Caption = text;
  }
  void SetEnabled(UndoItem, bool) override {}

  /// The instrument that a record is of.
  Instrument& Of(const std::string& record) {
    for (Instrument* each : std::initializer_list<Instrument*>{&Scope, &Fft, &Sweep, &Meter}) {
      if (record.starts_with(RecordKeyword(each->Kind()))) return *each;
    }
    throw std::runtime_error(record);
  }
  static Lines State(const Instrument& instrument) {
    std::string text;
    RecordWriter writer(text, RecordKeyword(instrument.Kind()), instrument.Name());
    instrument.SaveState(writer);
    Lines lines;
    LineReader reader(text);
    for (std::string line; reader.Next(line);) lines.insert(line);
    return lines;
  }

  std::string Caption;
  ZelBenchTop Bench;
  TimeVariable Time{Bench, "Time", "sec", {.Scale = 40.0}};
  Variable In{Bench, "In", "", {.Shown = true}};
  Variable Out{Bench, "Out", ""};
  Variable Inside{Bench, "Inside", "", {}, Visibility::Internal};
  ZelScope Scope{Bench, "S"};
  ZelXfer Fft{Bench, 4, "F"};
  ZelSweptDSA Sweep{Bench, "D"};
  ZelMeter Meter{Bench, "M"};
};

/// What stands before and after a mark; nothing after it where there is none.
std::pair<std::string, std::string> Cut(const std::string& text, const std::string& mark) {
  const std::size_t at = text.find(mark);
  if (at == std::string::npos) return {text, ""};
  return {text.substr(0, at), text.substr(at + mark.size())};
}

TEST(Settings, DoWhatTheTableSays) {
  std::ifstream file(TORVANE_TEST_DATA "/settings.txt");
  int rows = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    SCOPED_TRACE(line);
    ++rows;
    const auto [record, outcome] = Cut(line, " => ");
    const std::string report = Cut(outcome, "! ").second;
    const auto [caption, limited] = Cut(outcome, " as ");
    test::Recorder recorder;
    Instruments set;
    ZelUndo& history = set.Bench.History();
    Instrument& instrument = set.Of(record);
    const Lines before = Instruments::State(instrument);
    instrument.LoadState(ParseRecord(record, 1));
    instrument.FinishLoading([](int at) { EXPECT_EQ(at, 1); });
    const Lines after = Instruments::State(instrument);
    EXPECT_EQ(recorder.Take(), report.empty() ? Messages{} : Messages{report});
    const bool changes = report.empty() && outcome != "-";
    EXPECT_EQ(after != before, changes);
    EXPECT_EQ(history.CanUndo(), changes && outcome != "~");
    if (!changes) continue;
    EXPECT_TRUE(after.contains(limited.empty() ? record : limited));
    if (outcome == "~") continue;
    EXPECT_EQ(set.Caption, (caption[0] == '=' ? "Undo  " : "Undo ") + caption);
    history.Undo();
    EXPECT_EQ(Instruments::State(instrument), before);
    EXPECT_FALSE(history.CanUndo()) << "a setting is one step";
    history.Redo();
    EXPECT_EQ(Instruments::State(instrument), after);
  }
  EXPECT_GT(rows, 120);
}

}  // namespace
}  // namespace torvane
