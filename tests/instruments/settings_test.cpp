// Every setting of every instrument: saved, read again, undone and redone, limited and refused.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <variant>

#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/text.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using Lines = std::multiset<std::string>;

struct Instruments : UndoItems {
  Instruments() {
    Bench.History().Attach(this);
    Fft.SetTEndDelay(0.001);
    Fft.Run();
    while (Fft.Measuring()) Fft.Service(Fft.NextTime());
    Fft.LoadMemory(1, {{1.0, 0.0, 0.0}}, "m.csv");
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
  test::BareModel Model{1e-3, {.Scale = 40.0}};
  ZelBenchTop& Bench = Model.Bench();
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

/// The rows of a table of tests/data: what is done, and what comes of it.
std::vector<std::pair<std::string, std::string>> Rows(const std::string& table) {
  std::ifstream file(TORVANE_TEST_DATA "/" + table);
  std::vector<std::pair<std::string, std::string>> rows;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') rows.push_back(Cut(line, " => "));
  }
  EXPECT_GT(rows.size(), 20U) << table;
  return rows;
}

TEST(Settings, DoWhatTheTableSays) {
  for (const auto& [record, outcome] : Rows("settings.txt")) {
    SCOPED_TRACE(record);
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
}

template <class Setup>
using Fields = std::map<std::string, std::variant<double Setup::*, int Setup::*>>;
const Fields<FftSetup> FftFields{
    {"TSample", &FftSetup::TSample},         {"Order", &FftSetup::Order},
    {"TStartDelay", &FftSetup::TStartDelay}, {"TEndDelay", &FftSetup::TEndDelay},
    {"Amplitude", &FftSetup::Amplitude},     {"Averages", &FftSetup::Averages}};
const Fields<SweepSetup> SweepFields{
    {"TSample", &SweepSetup::TSample},       {"StepsPerDecade", &SweepSetup::StepsPerDecade},
    {"StartFreq", &SweepSetup::StartFreq},   {"EndFreq", &SweepSetup::EndFreq},
    {"SettleTime", &SweepSetup::SettleTime}, {"MeasurementTime", &SweepSetup::MeasurementTime},
    {"Amplitude", &SweepSetup::Amplitude},   {"Averages", &SweepSetup::Averages}};

/// What is said of the set-up with one field changed; it is applied.
template <class Setup>
std::string Said(auto& analyser, Setup setup, const Fields<Setup>& fields, const Record& row) {
  const double value = *ParseNumber(row.Field(2));
  std::visit([&](auto field) { setup.*field = static_cast<decltype(setup.*field + 0)>(value); },
             fields.at(row.Field(1)));
  const SetupFinding found = analyser.Check(setup);
  EXPECT_EQ(analyser.Apply(setup), found.What != SetupFinding::Kind::Refusal);
  static constexpr const char* kinds[] = {"nothing", "refusal ", "warning ", "note "};
  return kinds[static_cast<std::size_t>(found.What)] + found.Text;
}

TEST(Settings, SetupsAreCheckedAsAWhole) {
  for (const auto& [row, outcome] : Rows("setups.txt")) {
    test::Recorder recorder;
    test::BareModel model(0.001);
    Variable in(model.Bench(), "In", "");
    Variable out(model.Bench(), "Out", "");
    ZelXfer fft(model.Bench(), 4);
    ZelSweptDSA sweep(model.Bench(), "Sweep");
    const Record record = ParseRecord(row, 1);
    const std::string said =
        row[0] == 'X' ? Said(fft, FftSetup{0.016, 4, 0.0, 0.064, 1.0, 0.0}, FftFields, record)
                      : Said(sweep, SweepSetup{.TSample = 0.001}, SweepFields, record);
    EXPECT_TRUE(said.starts_with(outcome)) << row << ": " << said;
    EXPECT_EQ(recorder.Take().size(), outcome.starts_with("refusal") ? 1U : 0U);
    // The ends of the sweep, in either order, become the plot's.
    EXPECT_EQ(sweep.FreqMin(), row == "SweptDSA,EndFreq,0.5" ? 0.5 : 0.2);
  }
}

}  // namespace
}  // namespace torvane
