#include <algorithm>
#include <random>

#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "models/loop.h"

// Every setting, as it stands in the records of files and of undo: changed, saved, loaded, undone.

namespace torvane {
namespace {

using test::Loop;
using test::Messages;
using Lines = std::vector<std::string>;

Lines LinesOf(const std::string& text) {
  Lines lines;
  std::string line;
  for (LineReader reader(text); reader.Next(line);) lines.push_back(line);
  return lines;
}

std::string Joined(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += (line.empty() ? "" : ",") + field;
  return line;
}

/// Where the values of a setting's record begin: behind the name of what they are about.
std::size_t FirstValue(const Record& record) {
  if (record.Fields[0] == "Constant") return 2;
  return record.Keyword() == "Channel" || record.Keyword() == "Trigger" ? 4 : 3;
}

void ExpectToLoadAgain(const ZelModel& model) {
  const std::string saved = ModelFileText(model);
  test::Recorder reports;
  CatalogueHost host;
  ASSERT_TRUE(LoadModelText(saved, host));
  EXPECT_EQ(reports.Take(), Messages{}) << saved;
  EXPECT_EQ(ModelFileText(*host.Model), saved);
}

class ModelSettings : public testing::TestWithParam<std::string> {};

// Each value of each record in turn, from the last on: a switch that is on goes off when one after
// it goes on.
TEST_P(ModelSettings, TakeAnotherValueFromAFileAndGiveItBack) {
  test::Recorder reports;
  CatalogueHost host(LoadModel(FindModel(GetParam())));
  host.AddMeter("M");
  const std::string defaults = ModelFileText(*host.Model);
  const Lines lines = LinesOf(defaults);
  Lines others =
      ParseRecord("1,0,0.7,0.005,12,150,1200,wsMaximized,-90 deg,No,Yes,Cmd,Encoder,Float", 0)
          .Fields;
  for (const std::size_t i : {0U, 1U}) others.push_back(host.Model->Bench().Variables()[i]->Name());
  for (std::size_t i = lines.size() - 1; i > 1; --i) {
    const auto now = [&] { return LinesOf(ModelFileText(*host.Model))[i]; };
    for (std::size_t field = FirstValue(ParseRecord(lines[i], 0));
         field < ParseRecord(lines[i], 0).Fields.size(); ++field) {
      EXPECT_TRUE(std::ranges::any_of(others, [&](const std::string& other) {
        const std::string before = now();
        auto fields = ParseRecord(before, 0).Fields;
        fields[field] = other;
        LoadModelText(Joined(fields), host);
        return now() != before && now() == Joined(fields);
      })) << lines[i];
    }
  }
  ExpectToLoadAgain(*host.Model);
  // Back to the defaults, but for the meter's place among the records.
  LoadModelText(defaults, host);
  EXPECT_EQ(ModelFileText(*host.Model), defaults);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, ModelSettings, testing::ValuesIn(ModelNames()));

// Changes at random: each can be undone and redone, and every state on the way saves and loads
// without a word to the same bytes.
class SettingsWalk : public testing::Test {
 protected:
  int Pick(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
  template <class List>
  auto& Any(const List& list) {
    return list[static_cast<std::size_t>(Pick(0, static_cast<int>(list.size()) - 1))];
  }

  /// From the smallest to the largest, near each other, and what no setting can be.
  double Number() {
    switch (Pick(0, 5)) {
      case 0:
        return std::pow(10.0, Pick(-308, 308));
      case 1:
        return -Pick(0, 100);
      case 2:
        return Pick(0, 1) ? HUGE_VAL : std::nan("");
      default:
        return std::exponential_distribution(1.0)(random_) / Pick(1, 100);
    }
  }

  ZelBenchTop& Bench() { return model_->Bench(); }

  /// All settings that can be undone.
  Lines State() {
    std::string text;
    for (const InstrumentKind kind : AllInstrumentKinds) {
      for (const Instrument* instrument : Bench().Instruments(kind)) {
        RecordWriter writer(text, RecordKeyword(kind), instrument->Name());
        instrument->SaveState(writer);
      }
    }
    for (const Constant* c : Bench().Constants())
      text += "Constant," + c->Name() + "," + c->FileText() + "\n";
    return LinesOf(text);
  }

  /// Sets a value of one record as its instrument does when a user changes it.
  void ChangeOne() {
    Record record = ParseRecord(Any(State()), 0);
    if (record.Fields[0] == "Constant") {
      Constant& constant = *Bench().FindConst(record.Fields[1]);
      Pick(0, 1) ? constant.Set(Number()) : constant.ChangeSign();
      return;
    }
    const bool trace = record.Fields[0] == "Scope" && record.Keyword() == "Channel";
    if (trace && Pick(0, 3) == 0) {  // a file's are taken together and are no steps
      auto& scope = dynamic_cast<ZelScope&>(*Bench().Instruments(InstrumentKind::Scope).front());
      scope.SetDisplayed(*scope.FindChannel(record.Fields[3]), Pick(0, 1) == 1);
      return;
    }
    if (record.Keyword() == "Display" || record.Keyword() == "PhaseAdd") return;
    const auto field = static_cast<std::size_t>(
        Pick(static_cast<int>(FirstValue(record)), static_cast<int>(record.Fields.size()) - 1));
    if (trace && field == 4) return;
    const std::string& signal = Any(Bench().Variables())->Name();
    record.Fields[field] = Any(Lines{"0", "1", "2", std::to_string(Pick(-5, 5000)), signal,
                                     FormatShortest(Number()), FormatShortest(Number())});
    record.Line = Joined(record.Fields);
    for (const InstrumentKind kind : AllInstrumentKinds) {
      if (RecordKeyword(kind) != record.Fields[0]) continue;
      Instrument& instrument = *Bench().FindInstrument(kind, record.Fields[1]);
      instrument.LoadState(record);
      instrument.FinishLoading([](int) {});
    }
  }

  std::mt19937 random_{1};
  test::Recorder reports_;
  std::unique_ptr<ZelModel> model_;
};

TEST_F(SettingsWalk, EveryStateIsUndoneRedoneAndFiled) {
  for (int walk = 0; walk < 6; ++walk) {
    model_ = LoadModel(6);
    AddMeter(*model_, "M");
    auto& fft = dynamic_cast<ZelXfer&>(*Bench().Instruments(InstrumentKind::FftAnalyser).front());
    std::vector<Lines> states{State()};
    while (states.size() <= ZelUndo::Depth) {
      switch (Pick(0, 20)) {
        case 0:
          fft.SelectSetup(Pick(0, 2));
          break;
        case 1:
          fft.AutoRange();
          break;
        case 2:
          fft.Apply({Number(), Pick(2, 15), Number(), Number(), Number(), 1.0});
          break;
        default:
          ChangeOne();
      }
      if (State() == states.back()) continue;
      states.push_back(State());
      ExpectToLoadAgain(*model_);
    }
    ZelUndo& history = Bench().History();
    for (std::size_t i = states.size() - 1; i-- > 0;) {
      history.Undo();
      ASSERT_EQ(State(), states[i]);
    }
    EXPECT_FALSE(history.CanUndo());
    for (std::size_t i = 1; i < states.size(); ++i) {
      history.Redo();
      ASSERT_EQ(State(), states[i]);
    }
    EXPECT_FALSE(history.CanRedo());
  }
}

}  // namespace
}  // namespace torvane
