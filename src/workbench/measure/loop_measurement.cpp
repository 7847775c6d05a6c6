#include "workbench/measure/loop_measurement.h"

#include <cmath>

#include "core/constant.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/margins.h"
#include "kit/sources_at_rest.h"
#include "workbench/measure/loop_findings.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

constexpr int Averages = 4;
constexpr double Rest = 0.2;  // of the record, without excitation
// Where that scatters by more than this share of what is borne, more records are averaged.
constexpr double LeastScatter = 0.1;
constexpr int MoreAverages = 32;

ZelXfer& Analyser(ZelModel& model) {
  const auto& analysers = model.Bench().Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) throw UsageError("the model has no such analyser");
  return dynamic_cast<ZelXfer&>(*analysers.front());
}

std::optional<ModelLoop> OpenLoop(const ZelXfer& xfer, const LoopOptions& options) {
  std::optional<ModelLoop> loop = xfer.Loop();
  if (options.Loop.empty()) return loop && loop->Input.empty() ? std::nullopt : loop;
  const std::size_t colon = options.Loop.find(':');
  if (colon == std::string::npos) {
    throw UsageError("--loop needs two signals, IN:OUT, not \"" + options.Loop + "\"");
  }
  ModelLoop chosen = std::move(loop).value_or(ModelLoop{});
  chosen.Input = options.Loop.substr(0, colon);
  chosen.Output = options.Loop.substr(colon + 1);
  chosen.FromClosed = false;
  chosen.Meanwhile.clear();
  return chosen;
}

// What the model's loop asks for where the options leave it open. A loop that samples is measured
// when it does: it has no response in between.
BodeOptions Completed(BodeOptions bode, const std::optional<ModelLoop>& named) {
  ResponseOptions& response = bode.Response;
  const ModelLoop loop = named.value_or(ModelLoop{});
  const double period = loop.SampleTime > 0.0 ? loop.SampleTime : loop.RecordPeriod;
  if (!bode.Order) bode.Order = loop.RecordOrder;
  if (!response.Average) response.Average = Averages;
  if (!response.TSample) response.TSample = period;
  if (!bode.EndDelay) bode.EndDelay = Rest * std::ldexp(*response.TSample, *bode.Order);
  if (!response.Amplitude && named) response.Amplitude = loop.Amplitude;
  bode.Spectrum = false;  // margins are read off a response
  return bode;
}

ZelXfer& SetUpAnalyser(ZelModel& model, const BodeOptions& options, Supervisor& supervisor) {
  auto& xfer = dynamic_cast<ZelXfer&>(
      ChooseAnalyser(model.Bench(), InstrumentKind::FftAnalyser, options.Response));
  supervisor.ApplySettings([&] { SetUp(xfer, options); });
  return xfer;
}

std::string ValueText(const Constant& constant, double value) {
  const auto& choices = constant.Choices();
  return choices.empty() ? FormatShortest(value) : choices[static_cast<std::size_t>(value)];
}

using Settings = std::vector<ModelLoop::Setting>;

// ", with KVFR at 100 and Res at 1e10": those that are not so already.
std::string WithSettings(const Settings& settings) {
  std::string with;
  for (const auto& [constant, value] : settings) {
    if (constant->Value() == value) continue;
    with += (with.empty() ? " with " : " and ") + constant->Name() + " at " +
            ValueText(*constant, value);
  }
  return with;
}

// Nothing of what is plain: the pair is that of an open loop, and no constant is in its way.
void NoteHow(const ModelLoop& loop) {
  const std::string meanwhile = WithSettings(loop.Meanwhile);
  if (loop.FromClosed) {
    Note("The margins are computed from the closed loop, " + loop.Input + " to " + loop.Output +
         ", whose feedback is its output" + (meanwhile.empty() ? "" : "," + meanwhile) + ".");
  } else if (!meanwhile.empty()) {
    Note("The margins are those" + meanwhile + ".");
  }
}

/// The measurements of a model and its loop.
class LoopRuns {
 public:
  LoopRuns(const MakeModel& make, const LoopOptions& options, Supervisor& supervisor)
      : make_(make), options_(options), supervisor_(supervisor) {}

  void Run(RunReadings& readings) {
    LoopFindings findings(readings);
    const ResponseOptions& response = options_.Bode.Response;
    findings.TakeClosed(Read(response.Input, response.Output, ReadAs::Closed));
    findings.Doubt(doubts_);
    const auto first = make_();
    if (const auto loop = OpenLoop(Analyser(*first), options_)) {
      const ReadAs as = loop->FromClosed ? ReadAs::Unity : ReadAs::Open;
      findings.TakeOpen(Read(loop->Input, loop->Output, as));
      findings.Doubt(doubts_);
    } else {
      findings.Miss({"no margins: the model names no loop of its own"});
    }
    if (findings.HighestHz() > accurateUpTo_) findings.Doubt({SampleTimeWarning(accurateUpTo_)});
  }

 private:
  // Few records are enough but for a loop that rings on beyond their ends, or is disturbed.
  const Margins& Read(const std::string& input, const std::string& output, ReadAs as) {
    BodeOptions bode = options_.Bode;
    bode.Response.Input = input;
    bode.Response.Output = output;
    const Margins& once = Measure(bode, as);
    if (once.Scatter <= LeastScatter || bode.Response.Average) return once;
    bode.Response.Average = MoreAverages;
    return Measure(bode, as);
  }

  const Margins& Measure(const BodeOptions& asked, ReadAs as) {
    const auto model = MakeFirst(make_);
    const auto named = Analyser(*model).Loop();
    const auto loop = OpenLoop(Analyser(*model), options_);
    ZelXfer& xfer = SetUpAnalyser(*model, Completed(asked, named), supervisor_);
    RestSources(model->Bench());  // apart from the excitation nothing is to move
    if (named) Hold(named->Linear);
    if (loop && as != ReadAs::Closed) Hold(loop->Meanwhile);
    const bool together = named && named->SampleTime == xfer.TSample();
    accurateUpTo_ = together ? 0.5 / xfer.TSample() : xfer.AccurateUpTo();
    MeasureResponse(*model, xfer, supervisor_);
    doubts_ = xfer.ResponseAt(0).Doubts();
    if (auto warning = LoopSampleWarning(xfer)) doubts_.push_back(std::move(*warning));
    return reader_.Read(xfer, 0, as);
  }

  static void Hold(const Settings& settings) {
    for (const auto& [constant, value] : settings) constant->Set(value);
  }

  const MakeModel& make_;
  const LoopOptions& options_;
  Supervisor& supervisor_;
  MarginReader reader_;
  // Of the last measurement.
  double accurateUpTo_ = 0.0;
  std::vector<std::string> doubts_;
};

}  // namespace

void CheckLoop(ZelModel& model, const LoopOptions& options, Supervisor& supervisor) {
  const auto loop = OpenLoop(Analyser(model), options);
  if (loop) {
    NamedSignal(model.Bench(), loop->Input);
    NamedSignal(model.Bench(), loop->Output);
    const std::string linear = WithSettings(loop->Linear);
    if (!linear.empty()) Note("The responses are measured" + linear + ".");
    NoteHow(*loop);
  }
  SetUpAnalyser(model, Completed(options.Bode, Analyser(model).Loop()), supervisor);
}

void NoteLoop(const ZelModel& model) {
  const auto loop = LoopOnBench(model.Bench());
  if (loop && !loop->Input.empty()) NoteHow(*loop);
}

void ReadLoop(const MakeModel& make, const LoopOptions& options, Supervisor& supervisor,
              RunReadings& readings) {
  LoopRuns(make, options, supervisor).Run(readings);
}

}  // namespace torvane
