#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "core/text.h"
#include "instruments/scope/scope.h"
#include "models/loop.h"

// What the models register, held against a table of its own: every name stands in users' files.

namespace torvane {
namespace {

using Fields = std::vector<std::string>;
using test::Loop;

Fields Split(const std::string& text, char separator) {
  Fields fields(1);
  for (const char c : text) {
    if (c == separator) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

/// The lines of one model's table, "model" first.
std::map<std::string, std::vector<Fields>> ReadTables() {
  std::map<std::string, std::vector<Fields>> tables;
  std::ifstream file(TORVANE_TEST_DATA "/model_tables.csv");
  std::string model;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    const Fields fields = Split(line, ',');
    if (fields[0] == "model") model = fields[1];
    tables[model].push_back(fields);
  }
  return tables;
}

/// What every instrument multiplies a signal by, so that its unit is right.
double MultiplierOf(const std::string& unit) {
  if (unit == "RPM") return 60.0 / (2.0 * M_PI);
  if (unit == "Revs") return 1.0 / (2.0 * M_PI);
  if (unit == "Deg") return 180.0 / M_PI;
  return 1.0;
}

std::string Number(double value) {
  return FormatShortest(value);
}
std::string Number(const std::string& text) {
  return text.empty() ? text : FormatShortest(ParseNumber(text).value());
}

std::string Join(const Fields& fields, const char* separator) {
  std::string all;
  for (const std::string& field : fields) all += (all.empty() ? "" : separator) + field;
  return all;
}

/// The expected lines, with numbers in their shortest form.
Fields Expected(const std::vector<Fields>& table) {
  Fields lines;
  for (Fields fields : table) {
    if (fields[0] == "model") continue;
    if (fields[0] == "constant") {
      for (std::size_t i = 3; i < 6; ++i) fields[i] = Number(fields[i]);
    }
    lines.push_back(Join(fields, ","));
  }
  return lines;
}

/// The same lines of a model; set-ups only if the table has some.
Fields Actual(Loop& loop, bool withSetups) {
  Fields lines;
  if (withSetups) {
    for (const AnalyserSetup& s : loop.Fft().Setups()) {
      lines.push_back(Join({"setup", s.Name, s.Input, s.Output, Number(s.PhaseAdd)}, ","));
    }
  }
  for (const Constant* c : loop.Bench().Constants()) {
    lines.push_back(c->IsList()
                        ? Join({"list", c->Name(), c->FileText(), Join(c->Choices(), ";")}, ",")
                        : Join({"constant", c->Name(), c->Unit(), Number(c->Default()),
                                Number(c->Lower()), Number(c->Upper())},
                               ","));
  }
  const Variable& time = *loop.Bench().TimeVar();
  lines.push_back(Join(
      {"time", time.Name(), time.Unit(), Number(time.DefaultScale()), Number(time.DefaultOffset())},
      ","));
  for (const Variable* v : loop.Bench().Variables()) {
    if (v->Internal()) continue;
    lines.push_back(Join({v->IsState() ? "state" : "signal", v->Name(), v->Unit()}, ","));
  }
  return lines;
}

/// A text, and with it the unit.
template <class Named>
bool IsDescribed(const Named& named) {
  const std::string unit = named.Unit().empty() ? "" : " (" + named.Unit() + ")";
  return named.Description().size() > unit.size() && named.Description().ends_with(unit);
}

Fields InstrumentNames(Loop& loop, InstrumentKind kind) {
  Fields names;
  for (const Instrument* i : loop.Bench().Instruments(kind)) names.push_back(i->Name());
  return names;
}

class ModelTable : public testing::TestWithParam<int> {};

TEST_P(ModelTable, IsWhatTheModelRegisters) {
  const std::string& name = ModelNames().at(static_cast<std::size_t>(GetParam()));
  const auto tables = ReadTables();
  ASSERT_EQ(tables.size(), ModelNames().size());
  ASSERT_TRUE(tables.contains(name)) << name;
  const auto& table = tables.at(name);
  const Fields& model = table.front();
  Loop loop(name);

  EXPECT_EQ(Actual(loop, table[1][0] == "setup"), Expected(table));
  EXPECT_EQ(Number(loop.Model().Solver().Step()), Number(model[2]));
  EXPECT_EQ(loop.Model().PictureFile(), model[3]);
  EXPECT_EQ(loop.Model().TextFile(), model[4]);
  EXPECT_EQ(Join(InstrumentNames(loop, InstrumentKind::WaveGenerator), ";"), model[5]);
  EXPECT_EQ(InstrumentNames(loop, InstrumentKind::Scope), Fields{"MainScope"});
  const bool analysed = model[6] != "none";
  EXPECT_EQ(InstrumentNames(loop, InstrumentKind::FftAnalyser),
            analysed ? Fields{"MainXFer"} : Fields{});
  EXPECT_EQ(InstrumentNames(loop, InstrumentKind::SweptSine).size(), analysed ? 1U : 0U);
  if (analysed && !model[6].empty()) {
    EXPECT_EQ(Number(loop.Fft().MaxOrder()), model[6]);
  }
  EXPECT_EQ(Number(loop.The<ZelScope>(InstrumentKind::Scope).TimeChannel().Horizontal().Scale),
            Number(model[7]));
  if (analysed) {
    EXPECT_EQ(Number(loop.Fft().Order()), model[8]);
    EXPECT_EQ(Number(loop.Fft().TSample()), Number(model[9]));
    EXPECT_EQ(loop.Fft().TStartDelay(), 0.4);
    EXPECT_EQ(loop.Fft().TEndDelay(), 0.2);
    EXPECT_EQ(loop.Fft().Amplitude(), 1.0);
  }
  for (const Variable* v : loop.Bench().Variables()) {
    // Pi is taken to eight digits.
    EXPECT_NEAR(v->Multiplier() / MultiplierOf(v->Unit()), 1.0, 2e-8) << v->Name();
    EXPECT_TRUE(v->Internal() || IsDescribed(*v)) << v->Name();
  }
  EXPECT_TRUE(IsDescribed(*loop.Bench().TimeVar()));
  for (const Constant* c : loop.Bench().Constants()) {
    EXPECT_TRUE(IsDescribed(*c)) << c->Name();
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, ModelTable, testing::Range(0, 15));

}  // namespace
}  // namespace torvane
