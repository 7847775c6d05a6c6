#include "ui/session/model_changes.h"

#include <algorithm>
#include <set>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/messages.h"
#include "instruments/analyser/analyser.h"

namespace torvane {

namespace {

constexpr InstrumentKind Analysers[] = {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine};

std::vector<std::string> LinesOf(const ZelModel& model) {
  const std::string text = ModelFileText(model);
  LineReader reader(text);
  std::vector<std::string> lines;
  for (std::string line; reader.Next(line);) lines.push_back(line);
  return lines;
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

ModelChanges::ModelChanges(const ZelModel& model, const ZelModel& fresh) {
  const std::vector<std::string> begun = LinesOf(fresh);
  const std::set<std::string> before(begun.begin(), begun.end());
  for (const std::string& line : LinesOf(model)) {
    const bool frame =
        line.starts_with("Application,") || line.starts_with("Loop,") || line.starts_with("Model,");
    if (!frame && !before.contains(line)) lines_.push_back(line);
  }
  for (const InstrumentKind kind : Analysers) {
    for (const Instrument* instrument : model.Bench().Instruments(kind)) {
      const auto& analyser = dynamic_cast<const FrequencyAnalyser&>(*instrument);
      for (int slot = 1; slot < FrequencyAnalyser::SlotCount; ++slot) {
        if (!analyser.HasData(slot)) continue;
        const Response& held = analyser.ResponseAt(slot);
        const ResponseSubject& of = held.Subject();
        const std::string name = held.Name().empty() ? of.Output + " / " + of.Input : held.Name();
        memories_.push_back(
            {kind, analyser.Name(), slot, name, {held.Curve().begin(), held.Curve().end()}});
      }
    }
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
  for (const Memory& memory : memories_) {
    auto* const analyser =
        dynamic_cast<FrequencyAnalyser*>(bench.FindInstrument(memory.Kind, memory.Analyser));
    if (analyser) analyser->LoadMemory(memory.Slot, memory.Curve, memory.Name);
  }
  return heard.Texts;
}

}  // namespace torvane
