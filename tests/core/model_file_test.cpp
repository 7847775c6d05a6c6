#include "core/files/model_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "core/constant.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/files/seal.h"
#include "core/instrument.h"
#include "core/text.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;

/// An instrument of two settings, in records of their own.
class Knobs : public Instrument, public InstrumentView {
 public:
  Knobs(ZelBenchTop& bench, InstrumentKind kind, const std::string& name) : Instrument(kind, name) {
    bench.AddInstrument(*this);
    SetView(this);
  }
  void Turn(std::size_t knob, int value) {
    Change([&] { Values.at(knob) = value; }, [&] { return "Knob " + std::to_string(value); });
  }
  void SaveRecords(RecordWriter& writer) const override {
    SaveDisplay(writer, Placement);
    for (const std::size_t knob : {0U, 1U}) {
      writer.Write("Knob", {std::to_string(knob), std::to_string(Values.at(knob))});
    }
  }
  void LoadRecord(const Record& record) override {
    if (record.Keyword() == "Display") return LoadDisplayReporting(record, Placement, "Count: ");
    const auto knob = ParseInteger(record.Field(3));
    const auto value = ParseInteger(record.Field(4));
    if (!knob || !value) return ReportUnknownRecord(record);
    Turn(static_cast<std::size_t>(*knob), *value);
  }
  void Redraw() override {}
  void SettingsChanged() override { ++Told; }

  std::array<int, 2> Values{};
  int Told = 0;
};

struct SmallModel : ZelModel {
  explicit SmallModel(const std::string& name) : ZelModel(name, 0.1) {}
  void Derivatives(double) override {}
  TimeVariable Time{Bench(), "Time", "sec", {}};
  Constant Gain{Bench(), "KP", "", 1.0, 0.0, 10.0};
  Constant Mode{Bench(), "Mode", {"Off", "On"}};
  Knobs Scope{Bench(), InstrumentKind::Scope, "Main"};
};

/// A program of the models "A, first" and "B", with room for two meters.
struct Program : ModelFileHost {
  ZelModel* CurrentModel() override { return Model.get(); }
  bool InCatalogue(const std::string& name) const override {
    return name == "A, first" || name == "B";
  }
  bool MayDiscard() override { return ++Confirmed, Discards; }
  bool ChangeModel(const std::string& name) override {
    Model = std::make_unique<SmallModel>(name);
    return true;
  }
  Instrument* AddMeter(const std::string& name) override {
    ++Asked;
    if (Model->Bench().Instruments(InstrumentKind::Meter).size() == 2) return nullptr;
    Model->Own(std::make_unique<Knobs>(Model->Bench(), InstrumentKind::Meter, name));
    return Model->Bench().Instruments(InstrumentKind::Meter).back();
  }
  bool RestoresWindows() const override { return Restores; }

  /// The model, its constants, the scope's first knob and place, and the meters' first knobs.
  std::string State() const {
    std::string state = Model->Name() + " " + Model->Gain.FileText() + " " +
                        Model->Mode.FileText() + " " + std::to_string(Model->Scope.Values[0]) +
                        " " + std::to_string(Model->Scope.Placement.Left);
    for (const Instrument* meter : Model->Bench().Instruments(InstrumentKind::Meter)) {
      state +=
          " " + meter->Name() + ":" + std::to_string(dynamic_cast<const Knobs*>(meter)->Values[0]);
    }
    return state;
  }

  std::unique_ptr<SmallModel> Model = std::make_unique<SmallModel>("A, first");
  bool Discards = true, Restores = true;
  int Asked = 0;  ///< for meters
  int Confirmed = 0;
};

std::string Flags(const LoadResult& result) {
  const std::string flags = std::string(result.AtEnd ? "E" : "") + (result.HasTitle ? "T" : "") +
                            (result.HasModel ? "M" : "") + (result.Recognised ? "R" : "");
  return flags.empty() ? "-" : flags;
}

std::string Replaced(std::string text, const std::string& mark, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += by.size()) {
    text.replace(at, mark.size(), by);
  }
  return text;
}

TEST(ModelFile, IsReadAsTheTableSays) {
  std::ifstream table(TORVANE_TEST_DATA "/model_files.txt");
  std::string row;
  int rows = 0;
  while (std::getline(table, row)) {
    const std::size_t mark = row.find(" => ");
    if (mark == std::string::npos || row[0] == '#') continue;
    Messages expected;
    while (table.peek() == '!' && ++rows > 0) {
      std::string report;
      std::getline(table, report);
      expected.push_back(Replaced(report.substr(2), "<CR>", "\r"));
    }
    test::Recorder recorder;
    Program program;
    const std::string text = Replaced(Replaced(row.substr(0, mark), "<CR>", "\r"), "|", "\n");
    const std::string flags = Flags(LoadModelText(text, program));
    EXPECT_EQ(flags + " " + program.State(), row.substr(mark + 4)) << row;
    EXPECT_EQ(recorder.Take(), expected) << row;
    EXPECT_LE(program.Asked, 3) << "a meter that was refused is asked for once";
    EXPECT_FALSE(program.Model->Bench().History().CanUndo()) << "loading is no step";
  }
  EXPECT_GT(rows, 12) << "reports";
}

TEST(ModelFile, AsksBeforeAnythingChangesAndKeepsWhatItMust) {
  test::Recorder recorder;
  Program program;
  program.Discards = false;
  EXPECT_FALSE(LoadModelText("Constant,KP,2\nModel,B\nModel,A, first\nConstant,KP,3", program));
  EXPECT_EQ(program.State(), "A, first 2 Off 0 0");
  program.Discards = true;
  EXPECT_TRUE(LoadModelText("Model,B\nModel,A, first\nConstant,KP,3", program));
  EXPECT_EQ(program.Confirmed, 2) << "once a file";
  recorder.Answer = false;
  EXPECT_FALSE(LoadModelText("Constant,KP,4\nModel,B\n", program));
  EXPECT_EQ(program.State(), "A, first 4 Off 0 0");
  EXPECT_EQ(recorder.Take().size(), 4U) << "questions";
  program.Restores = false;
  program.Model->Scope.Placement.Left = 7;
  program.Model->Scope.Turn(0, 1);
  program.Model->Gain.Set(5.0);
  // What a file leaves as it was can still be undone; the view is told of the file all the same.
  const int told = program.Model->Scope.Told;
  EXPECT_TRUE(LoadModelText("Scope,Main,Display,wsNormal,1,2,3,4\nScope,Main,Knob,0,1", program));
  EXPECT_EQ(program.State(), "A, first 5 Off 1 7");
  EXPECT_GT(program.Model->Scope.Told, told);
  EXPECT_TRUE(program.Model->Bench().History().Holds(program.Model->Scope));
  EXPECT_TRUE(LoadModelText("Scope,Main,Knob,0,2", program));
  EXPECT_FALSE(program.Model->Bench().History().Holds(program.Model->Scope));
  program.Model->Bench().History().Undo();
  EXPECT_EQ(program.State(), "A, first 4 Off 2 7");
}

TEST(ModelFile, SavesWhatLoadsAgain) {
  test::Recorder recorder;
  Program program;
  program.Model->Gain.Set(2.5);
  program.Model->Scope.Placement = {WindowState::Maximised, 300, -5, 20, 400};
  program.Model->Scope.Turn(1, -3);
  dynamic_cast<Knobs*>(program.AddMeter("a,b\n"))->Turn(0, 9);
  const std::string settings =
      "Application,Torvane--Melkorin, 2nd Edition\r\nModel,A, first\r\n"
      "Constant,KP,2.5\r\nConstant,Mode,Off\r\n";
  const std::string text = ModelFileText(*program.Model);
  EXPECT_EQ(text, settings +
                      "Scope,Main,Display,wsMaximized,300,-5,20,400\r\n"
                      "Scope,Main,Knob,0,0\r\nScope,Main,Knob,1,-3\r\n"
                      "Meter,a b ,Display,wsNormal,0,0,0,0\r\n"
                      "Meter,a b ,Knob,0,9\r\nMeter,a b ,Knob,1,0\r\n");
  EXPECT_EQ(SettingsText(*program.Model), settings +
                                              "Scope,Main,Knob,0,0\r\nScope,Main,Knob,1,-3\r\n"
                                              "Meter,a b ,Knob,0,9\r\nMeter,a b ,Knob,1,0\r\n");
  EXPECT_EQ(ModelNameIn("\nModel\n" + text), "A, first");
  EXPECT_EQ(ModelNameIn("Constant,KP,1"), "");
  const std::string path = ::testing::TempDir() + "model-" + std::to_string(::getpid()) + ".tvf";
  ASSERT_TRUE(SaveModelFile(*program.Model, path));
  Program other;
  EXPECT_TRUE(LoadModelFile(path, other).IsModelFile());
  EXPECT_EQ(ModelFileText(*other.Model), text);
  // The longest line and file that are read, and those of a byte more.
  for (const auto& [longer, size] : {std::pair{"a line longer than 64 KiB", 65536U},
                                     std::pair{"larger than 16 MiB", 16777216U}}) {
    std::string large(size, longer[0] == 'a' ? 'x' : '\n');
    std::ofstream(path) << large;
    EXPECT_TRUE(LoadModelFile(path, other));
    EXPECT_EQ(recorder.Take(), Messages{});
    std::ofstream(path) << large << large[0];
    EXPECT_FALSE(LoadModelFile(path, other));
    EXPECT_NE(recorder.Take().at(0).find(longer), std::string::npos);
  }
  std::filesystem::remove(path);
  EXPECT_FALSE(LoadModelFile(path, other));
  EXPECT_FALSE(LoadModelFile(::testing::TempDir(), other));
  EXPECT_EQ(recorder.Take(),
            (Messages{"Error: Cannot open " + path + ": No such file or directory",
                      "Error: Cannot open " + ::testing::TempDir() + ": Is a directory"}));
}

TEST(ModelFile, ASealTellsWhatIsWhole) {
  const std::string sealed = Sealed("Model,B\r\n");
  EXPECT_EQ(sealed, "Model,B\r\nSealed,9,2036013427996154951\r\n");
  EXPECT_EQ(Unsealed(sealed), "Model,B\r\n");
  for (std::size_t i = 0; i < sealed.size(); ++i) {
    std::string changed = sealed;
    changed[i] ^= 1;
    EXPECT_EQ(Unsealed(changed), std::nullopt) << i;
    EXPECT_EQ(Unsealed(sealed.substr(0, i)), std::nullopt) << i;
  }
  EXPECT_EQ(Unsealed(Sealed("")), std::nullopt);
}

TEST(InstrumentUndo, StepsBackAndForthAndMergesAGesture) {
  test::Recorder recorder;
  SmallModel model("A");
  ZelUndo& history = model.Bench().History();
  Knobs& scope = model.Scope;
  const auto turn = [&](std::initializer_list<std::pair<std::size_t, int>> turns) {
    history.BeginGesture();
    for (const auto& [knob, value] : turns) scope.Turn(knob, value);
    history.EndGesture();
  };
  using Values = std::array<int, 2>;
  turn({{0, 1}, {1, 5}, {0, 2}});
  turn({{1, 5}});          // nothing
  turn({{0, 3}, {0, 2}});  // back to where it was
  turn({{1, 6}});
  EXPECT_EQ(scope.Told, 6);
  for (const auto& [undo, values] :
       {std::pair{true, Values{2, 5}}, {true, {0, 0}}, {false, {2, 5}}, {false, {2, 6}}}) {
    EXPECT_TRUE(undo ? history.CanUndo() : history.CanRedo());
    undo ? history.Undo() : history.Redo();
    EXPECT_EQ(scope.Values, values);
    EXPECT_EQ(history.CanUndo(), values[1] != 0);
  }
  EXPECT_EQ(scope.Told, 10);
  model.Bench().RemoveInstrument(scope);
  EXPECT_FALSE(history.CanUndo());
}

}  // namespace
}  // namespace torvane
