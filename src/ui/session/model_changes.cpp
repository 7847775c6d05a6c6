#include "ui/session/model_changes.h"

#include <algorithm>
#include <set>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/messages.h"
#include "instruments/analyser/analyser.h"
#include "instruments/scope/scope.h"

namespace torvane {

namespace {

// Of states: what goes with traces and memories, and with a pair of signals.
constexpr std::string_view NotOfTheWindow[] = {"Kept", "Shown", "PhaseAdd"};
constexpr std::string_view ColoursKeyword = "Colours";
constexpr InstrumentKind Analysers[] = {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine};

// In the names of responses.
constexpr const char* BeforeApply = " before Apply";
constexpr const char* OfFormerText = " of a former text";

std::vector<std::string> LinesOf(const std::string& text) {
  LineReader reader(text);
  std::vector<std::string> lines;
  for (std::string line; reader.Next(line);) lines.push_back(line);
  return lines;
}

// The lines of a text that are not among others.
std::vector<std::string> LinesBeside(const std::string& text, const std::string& others) {
  const std::vector<std::string> known = LinesOf(others);
  const std::set<std::string> among(known.begin(), known.end());
  std::vector<std::string> lines = LinesOf(text);
  std::erase_if(lines, [&](const std::string& line) { return among.contains(line); });
  return lines;
}

// As SaveRecords or SaveState writes them.
std::string RecordsOf(const Instrument& instrument, void (Instrument::*save)(RecordWriter&) const) {
  std::string text;
  RecordWriter writer(text, RecordKeyword(instrument.Kind()), instrument.Name());
  (instrument.*save)(writer);
  return text;
}

std::vector<std::string> SignalsOf(const ZelBenchTop& bench) {
  std::vector<std::string> names;
  for (const Variable* signal : bench.Variables()) names.push_back(signal->Name());
  return names;
}

// 0 when there is none.
int SlotFor(const FrequencyAnalyser& analyser) {
  int free = 0;
  for (int slot = FrequencyAnalyser::SlotCount - 1; slot > 0; --slot) {
    if (analyser.LoadedFrom(slot).ends_with(BeforeApply)) return slot;
    if (!analyser.HasData(slot)) free = slot;
  }
  return free;
}

/// Keeps what is reported.
class Heard final : public MessageSink {
 public:
  Heard() : outer_(InstallMessageSink(this)) {}
  ~Heard() override { InstallMessageSink(outer_); }
  Heard(const Heard&) = delete;
  Heard& operator=(const Heard&) = delete;

  void Show(MessageKind /*kind*/, const std::string& text) override { Texts.push_back(text); }
  bool Ask(MessageKind /*kind*/, const std::string& /*text*/) override { return false; }
  void EndApplication() override {
    if (outer_) outer_->EndApplication();
  }

  std::vector<std::string> Texts;

 private:
  MessageSink* outer_;
};

}  // namespace

ModelChanges::ModelChanges(const ZelModel& model, const ZelModel& fresh)
    : signals_(SignalsOf(model.Bench())) {
  for (const std::string& line : LinesBeside(ModelFileText(model), ModelFileText(fresh))) {
    const bool frame =
        line.starts_with("Application,") || line.starts_with("Loop,") || line.starts_with("Model,");
    if (!frame) lines_.push_back(line);
  }
  const ZelBenchTop& begun = fresh.Bench();
  for (const InstrumentKind kind : Analysers) {
    for (const Instrument* instrument : model.Bench().Instruments(kind)) {
      TakeState(*instrument, begun.FindInstrument(kind, instrument->Name()));
      TakeMemories(dynamic_cast<const FrequencyAnalyser&>(*instrument));
    }
  }
  for (const Instrument* instrument : model.Bench().Instruments(InstrumentKind::Scope)) {
    TakeState(*instrument, begun.FindInstrument(InstrumentKind::Scope, instrument->Name()));
    TakeTraces(dynamic_cast<const ZelScope&>(*instrument));
  }
}

void ModelChanges::TakeState(const Instrument& instrument, const Instrument* fresh) {
  const std::string inFile = RecordsOf(instrument, &Instrument::SaveRecords);
  const std::string begun = fresh ? RecordsOf(*fresh, &Instrument::SaveState) : std::string();
  State state{instrument.Kind(), instrument.Name(), {}};
  for (const std::string& line :
       LinesBeside(RecordsOf(instrument, &Instrument::SaveState), inFile + begun)) {
    const std::string keyword = ParseRecord(line, 0).Keyword();
    const bool other = std::ranges::any_of(
        NotOfTheWindow, [&](std::string_view beginning) { return keyword.starts_with(beginning); });
    if (!other) state.Records += line + "\n";
  }
  if (!state.Records.empty()) states_.push_back(std::move(state));
}

// A spectrum is no response, which a memory keeps.
void ModelChanges::TakeMemories(const FrequencyAnalyser& analyser) {
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    const Response& held = analyser.ResponseAt(slot);
    if (!analyser.HasData(slot) || (analyser.OutputOnly() && held.Name().empty())) continue;
    const ResponseSubject& of = held.Subject();
    const char* const when = slot == 0 ? BeforeApply : OfFormerText;
    const std::string name =
        held.Name().empty() ? of.Output + " / " + of.Input + when : held.Name();
    memories_.push_back({analyser.Kind(), analyser.Name(), slot, held.Loaded(name),
                         analyser.Origin(slot), analyser.KeptTrace(slot).Shown});
  }
}

void ModelChanges::TakeTraces(const ZelScope& scope) {
  if (!scope.Kept()) return;
  Traces traces{scope.Name(), *scope.Kept(), {}};
  for (const auto& channel : scope.Channels()) {
    traces.Signals.emplace_back(channel->Name(), channel->Signal().Unit());
  }
  traces_.push_back(std::move(traces));
}

// The current measurement goes to the memory that has had the one before it, else to a free one.
void ModelChanges::Give(const Memory& memory, FrequencyAnalyser& analyser,
                        std::vector<std::string>& notes) {
  int slot = memory.Slot;
  if (slot == 0) {
    const ResponseSubject& of = memory.Held.Subject();
    const auto has = [&](const std::string& signal) {
      return std::ranges::any_of(analyser.Channels(),
                                 [&](const auto& channel) { return channel->Name() == signal; });
    };
    if (!has(of.Input) || !has(of.Output)) return;
    slot = SlotFor(analyser);
    if (slot == 0) {
      notes.push_back("The measurement " + of.Output + " / " + of.Input +
                      " was of the former text and has not been kept: no memory is free");
      return;
    }
  }
  analyser.LoadMemory(slot, memory.Held, memory.Origin);
  analyser.SetShown(slot, memory.Shown);
}

// Values of a signal that has another unit now would be read as what they are not.
void ModelChanges::Give(const Traces& traces, ZelScope& scope, std::vector<std::string>& notes) {
  ScopeScreen screen = traces.Screen;
  screen.Values.assign(scope.Channels().size(), {});
  bool any = false;
  for (std::size_t i = 0; i < traces.Signals.size(); ++i) {
    const auto& signal = traces.Signals[i];
    const auto found = std::ranges::find_if(scope.Channels(), [&](const auto& channel) {
      return std::pair(channel->Name(), channel->Signal().Unit()) == signal;
    });
    if (found == scope.Channels().end() || traces.Screen.Values[i].empty()) continue;
    screen.Values[static_cast<std::size_t>(found - scope.Channels().begin())] =
        traces.Screen.Values[i];
    any = true;
  }
  if (any) {
    scope.KeepTraces(screen);
  } else {
    notes.emplace_back("The kept traces have gone: none of their signals is there any more");
  }
}

std::vector<std::string> ModelChanges::GiveTo(ModelFileHost& host) const {
  Heard heard;
  ZelBenchTop& bench = host.CurrentModel()->Bench();
  std::string text;
  for (const std::string& line : lines_) {
    const Record record = ParseRecord(line, 0);
    const bool lost = record.Field(0) == "Constant" && !bench.FindConst(record.Field(1));
    if (lost) {
      heard.Texts.push_back("There is no constant " + record.Field(1) + " any more. It was " +
                            record.Field(2));
    } else {
      text += line + "\n";
    }
  }
  LoadModelText(text, host);
  // The memories first: the current measurement goes where they leave room.
  for (auto memory = memories_.rbegin(); memory != memories_.rend(); ++memory) {
    auto* const analyser =
        dynamic_cast<FrequencyAnalyser*>(bench.FindInstrument(memory->Kind, memory->Analyser));
    if (analyser) Give(*memory, *analyser, heard.Texts);
  }
  const bool sameSignals = SignalsOf(bench) == signals_;
  for (const State& state : states_) {
    Instrument* const instrument = bench.FindInstrument(state.Kind, state.Name);
    std::string records;
    for (const std::string& line : LinesOf(state.Records)) {
      if (sameSignals || ParseRecord(line, 0).Keyword() != ColoursKeyword) records += line + "\n";
    }
    // As an undo brings it back.
    if (instrument) instrument->Undo({instrument, {}, RecordsChange{records, {}}});
  }
  for (const Traces& traces : traces_) {
    auto* const scope =
        dynamic_cast<ZelScope*>(bench.FindInstrument(InstrumentKind::Scope, traces.Scope));
    if (scope) Give(traces, *scope, heard.Texts);
  }
  return heard.Texts;
}

}  // namespace torvane
