#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "core/constant.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/generator/wave.h"
#include "study/measures.h"
#include "study/setting.h"
#include "workbench/model/model_options.h"
#include "workbench/quiet.h"

namespace torvane::cli {
namespace {

using Words = std::vector<std::string>;

struct Completion {
  std::string Kind;
  std::string Model;
  std::string Typed;
};

Words Names(const ZelBenchTop& bench) {
  Words names;
  for (const Variable* signal : OfferedSignals(bench)) names.push_back(signal->Name());
  return names;
}

Words Constants(const ZelBenchTop& bench) {
  Words names;
  for (const Constant* constant : bench.Constants()) names.push_back(constant->Name());
  return names;
}

// Those of the first generator by their names alone, others behind the generator's.
Words GeneratorSettings(const ZelBenchTop& bench) {
  Words names;
  for (const Instrument* generator : bench.Instruments(InstrumentKind::WaveGenerator)) {
    const std::string before = names.empty() ? "" : generator->Name() + ":";
    names.push_back(before + "Waveform");
    for (const WaveNumber& number : ZelWave::Numbers()) names.push_back(before + number.Name);
  }
  return names;
}

Words With(Words words, const std::string& end) {
  for (std::string& word : words) word += end;
  return words;
}

Words Behind(const std::string& begin, Words words) {
  for (std::string& word : words) word.insert(0, begin);
  return words;
}

void Add(Words more, Words& words) {
  words.insert(words.end(), more.begin(), more.end());
}

// What is typed up to the last such character, with it; empty without one.
std::string UpTo(const std::string& typed, char last) {
  return typed.substr(0, typed.rfind(last) + 1);
}

// "NAME=" of each setting or, behind that, its choices or the value that it has.
Words Assignments(const ZelBenchTop& bench, const Words& names, const std::string& typed) {
  const std::string begin = typed.substr(0, typed.find('=') + 1);
  if (begin.empty()) return With(names, "=");
  const std::string name = begin.substr(0, begin.size() - 1);
  if (const Constant* const constant = bench.FindConst(name)) {
    if (!constant->Choices().empty()) return Behind(begin, constant->Choices());
  } else if (name.ends_with("Waveform")) {
    const auto& waveforms = ZelWave::WaveformNames();
    return Behind(begin, {waveforms.begin(), waveforms.end()});
  }
  return {begin + ModelSetting::Named(bench, name).Text()};
}

// Without blanks.
std::string Typed(const RunMeasure& measure) {
  std::string word = measure.Caption;
  std::erase(word, ' ');
  return word;
}

Words MeasureWords() {
  Words words;
  for (const RunMeasure& measure : Measures()) words.push_back(Typed(measure));
  return words;
}

// A bound on the side that is worse.
Words Requirements() {
  Words words;
  for (const RunMeasure& measure : Measures()) {
    words.push_back(Typed(measure) + (measure.MoreIsBetter ? ">" : "<"));
  }
  return words;
}

Words PairNames(const ZelBenchTop& bench) {
  Words names;
  const auto& analysers = bench.Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) return names;
  const auto& analyser = dynamic_cast<const FrequencyAnalyser&>(*analysers.front());
  for (const AnalyserSetup& pair : analyser.Setups()) names.push_back(pair.Name);
  return names;
}

Words WordsOf(const Completion& asked, Console& console) {
  const std::string& typed = asked.Typed;
  if (asked.Kind == "measure") return MeasureWords();
  if (asked.Kind == "requirement") return Requirements();
  const Quiet quiet;
  const auto model = OpenModel(asked.Model, console);
  const ZelBenchTop& bench = model->Bench();
  if (asked.Kind == "signal") return Names(bench);
  if (asked.Kind == "signals") return Behind(UpTo(typed, ','), Names(bench));
  if (asked.Kind == "signal-pair") {
    const std::string begin = UpTo(typed, ':');
    return begin.empty() ? With(Names(bench), ":") : Behind(begin, Names(bench));
  }
  if (asked.Kind == "signal-number") {
    return typed.find('=') == std::string::npos ? With(Names(bench), "=") : Words();
  }
  if (asked.Kind == "constant") return Assignments(bench, Constants(bench), typed);
  if (asked.Kind == "wave") {
    Words words = GeneratorSettings(bench);
    words.emplace_back("File");
    return Assignments(bench, words, typed);
  }
  Words settings = Constants(bench);
  Add(GeneratorSettings(bench), settings);
  if (asked.Kind == "range") {
    return typed.find('=') == std::string::npos ? With(settings, "=") : Words();
  }
  if (asked.Kind == "axes") {
    const std::string begin = UpTo(typed, ',');
    return begin.empty() ? With(settings, ",") : Behind(begin, settings);
  }
  return asked.Kind == "pair" ? PairNames(bench) : Words();
}

// A word that cannot be completed, of no model or of a file that is not there, is none of an error.
void Complete(const Completion& asked, Console& console) {
  ResultFile output("");
  try {
    for (const std::string& word : WordsOf(asked, console)) {
      if (word.starts_with(asked.Typed)) output.Write(word + "\n");
    }
  } catch (const std::exception&) {
    return;
  }
  output.Close();
}

}  // namespace

void AddCompleteCommand(CLI::App& app, Console& console) {
  CLI::App* const command =
      app.add_subcommand("complete", "For the shells' completion: words that begin as TYPED");
  command->group("");
  const auto asked = std::make_shared<Completion>();
  command->add_option("KIND", asked->Kind, "What the word is")->required()->type_name("");
  command->add_option("MODEL", asked->Model, "The model, if there is one")
      ->required()
      ->type_name("");
  command->add_option("TYPED", asked->Typed, "What there is of the word")
      ->required()
      ->type_name("");
  command->callback([asked, &console] { Complete(*asked, console); });
}

}  // namespace torvane::cli
