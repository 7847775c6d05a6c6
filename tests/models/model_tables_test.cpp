#include <fstream>
#include <sstream>

#include "core/text.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "models/loop.h"

// What the models register, held against a table of its own: every name stands in users' files.

namespace torvane {
namespace {

using test::Loop;

/// The table of that model.
std::string ReadTable(const std::string& model) {
  std::ifstream file(TORVANE_TEST_DATA "/model_tables.csv");
  std::string table;
  for (std::string line; std::getline(file, line);) {
    if (table.empty() ? line.starts_with("model," + model + ",") : !line.empty()) {
      table += line + "\n";
    } else if (!table.empty()) {
      break;
    }
  }
  return table;
}

/// What every instrument multiplies a signal by, so that its unit is right.
double MultiplierOf(const std::string& unit) {
  if (unit == "RPM") return 60.0 / (2.0 * M_PI);
  if (unit == "Revs") return 1.0 / (2.0 * M_PI);
  if (unit == "Deg") return 180.0 / M_PI;
  return 1.0;
}

/// A text, and with it the unit.
template <class Named>
void ExpectDescribed(const Named& named) {
  const std::string unit = named.Unit().empty() ? "" : " (" + named.Unit() + ")";
  EXPECT_GT(named.Description().size(), unit.size()) << named.Name();
  EXPECT_TRUE(named.Description().ends_with(unit)) << named.Description();
}

/// Writes what a model registers as the table has it.
class Listing {
 public:
  explicit Listing(Loop& loop) : loop_(loop) {
    ZelModel& model = loop.Model();
    auto& scope = loop.The<ZelScope>(InstrumentKind::Scope);
    Line("model", model.Name(), model.Solver().Step(), model.PictureFile(), model.TextFile());
    if (!loop.Bench().Instruments(InstrumentKind::FftAnalyser).empty()) Analysers();
    for (const Instrument* i : loop.Bench().Instruments(InstrumentKind::WaveGenerator)) {
      const WaveSettings& s = dynamic_cast<const ZelWave&>(*i).Settings();
      Line("generator", i->Name(), s.Index, s.Amplitude, s.FreqHz, s.Offset, s.PhaseDeg,
           s.DutyCycle);
    }
    Line("scope", scope.Name(), scope.TimeChannel().Horizontal().Scale,
         scope.Trigger().Source().Name(), scope.Trigger().Level());
    for (const Constant* c : loop.Bench().Constants()) OfConstant(*c);
    const Variable& time = *loop.Bench().TimeVar();
    ExpectDescribed(time);
    Line("time", time.Name(), time.Unit(), time.DefaultScale(), time.DefaultOffset());
    for (const Variable* v : loop.Bench().Variables()) {
      if (v->Internal()) continue;
      const ZelChannel& channel = *scope.FindChannel(v->Name());
      OfSignal(v->IsState() ? "state" : "signal", *v, channel.Vertical(),
               channel.Displayed() ? "shown" : "hidden");
    }
  }

  std::string Text;

 private:
  static std::string Field(const std::string& text) { return text; }
  static std::string Field(double number) { return FormatShortest(number); }

  template <class... Fields>
  void Line(const std::string& first, const Fields&... fields) {
    Text += first;
    ((Text.append(",").append(Field(fields))), ...);
    Text += "\n";
  }

  void Analysers() {
    auto& fft = loop_.Fft();
    auto& sweep = loop_.The<ZelSweptDSA>(InstrumentKind::SweptSine);
    Line("fft", fft.Name(), fft.MaxOrder(), fft.Order(), fft.TSample(), fft.TStartDelay(),
         fft.TEndDelay(), fft.Amplitude());
    Line("sweep", sweep.Name(), sweep.StartFreq(), sweep.EndFreq(), sweep.TSample(),
         sweep.SettleTime(), sweep.MeasurementTime(), sweep.Amplitude());
    for (std::size_t i = 0; i < fft.Setups().size(); ++i) {
      const AnalyserSetup& setup = fft.Setups()[i];
      Line("setup", setup.Name, setup.Input, setup.Output, setup.PhaseAdd);
      EXPECT_EQ(sweep.Setups().at(i).Name, setup.Name);
    }
  }

  void OfConstant(const Constant& c) {
    ExpectDescribed(c);
    if (!c.IsList()) {
      Line("constant", c.Name(), c.Unit(), c.Default(), c.Lower(), c.Upper());
      return;
    }
    std::string choices;
    for (const std::string& choice : c.Choices()) choices += (choices.empty() ? "" : ";") + choice;
    Line("list", c.Name(), c.FileText(), choices);
  }

  void OfSignal(const std::string& kind, const Variable& v, const AxisScale& axis,
                const std::string& shown) {
    ExpectDescribed(v);
    EXPECT_NEAR(v.Multiplier() / MultiplierOf(v.Unit()), 1.0, 2e-8);  // pi is taken to eight digits
    Line(kind, v.Name(), v.Unit(), axis.Scale, axis.Offset, shown);
  }

  Loop& loop_;
};

class ModelTable : public testing::TestWithParam<std::string> {};

TEST_P(ModelTable, IsWhatTheModelRegisters) {
  Loop loop(GetParam());
  EXPECT_EQ(Listing(loop).Text, ReadTable(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, ModelTable, testing::ValuesIn(ModelNames()));

}  // namespace
}  // namespace torvane
