#include "workbench/measure/step_run.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <utility>

#include "core/extremes.h"
#include "core/instrument.h"
#include "core/sample_tape.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/analyser/model_loop.h"
#include "instruments/generator/wave.h"
#include "workbench/model/long_run.h"
#include "workbench/model/model_options.h"

namespace torvane {
namespace {

constexpr double LongestWait = 10.0;    // for a response to stand, seconds
constexpr double FirstLook = 0.01;      // at whether it stands, seconds after it was set off
constexpr double LatestEdge = 100.0;    // of the generator, seconds from then
constexpr double LatestJump = 0.1;      // of a command that is sampled, seconds
constexpr double LookLater = 1.25;      // times as late each time
constexpr double MostDrift = 0.0001;    // of all that it moves, in a response that stands
constexpr double MostRipple = 0.02;     // the same of how far it is from its mean
constexpr double BesideEdge = 1e-6;     // of a cycle
constexpr double StepsAround = 4.0;     // of the edge, in which the generator runs
constexpr double MostAround = 0.05;     // the same in cycles
constexpr double AheadOfSample = 0.75;  // steps, of a loop that samples: see JumpAt
constexpr std::size_t StepsApart = 16;  // of the rows before the step, where shape does not matter

struct Part {
  explicit Part(std::span<const double> values)
      : Mean(std::accumulate(values.begin(), values.end(), 0.0) /
             static_cast<double>(values.size())) {
    for (const double value : values) Farthest = std::max(Farthest, std::abs(value - Mean));
  }

  double Mean;
  double Farthest = 0.0;
};

/// Whether the last two quarters of a trace show the same rest. What has not moved at all may still
/// have it to come.
bool Stands(std::span<const double> values) {
  const Extremes extremes = ExtremesOf(values);
  const double range = extremes.Greatest - extremes.Least;
  const std::size_t quarter = values.size() / 4;
  const Part before(values.last(2 * quarter).first(quarter));
  const Part last(values.last(quarter));
  return range > 0.0 && std::abs(last.Mean - before.Mean) <= MostDrift * range &&
         before.Farthest <= MostRipple * range && last.Farthest <= MostRipple * range;
}

StepRun WithoutStep(const std::string& reason) {
  StepRun run;
  run.Reason = reason;
  return run;
}

/// Takes a row of the step at the end of each of the solver's steps.
class RowTaker final : public Instrument {
 public:
  /// The largest magnitude of `watched` is noted, if anything is.
  RowTaker(const Variable& command, const Variable& response, const Variable* watched, double step,
           StepRun& rows)
      : Instrument(InstrumentKind::Scope, "Rows"),
        command_(command),
        response_(response),
        watched_(watched),
        step_(step),
        rows_(rows) {}

  double NextTime() const override { return next_; }

  bool Service(double t) override {
    const double watched = watched_ ? watched_->Value : 0.0;
    Take({&t, 1}, &command_.Value, &response_.Value, &watched);
    return true;
  }

  NextSample BeginTape(const SampleTape& tape) override {
    const bool all =
        tape.Has(command_) && tape.Has(response_) && (!watched_ || tape.Has(*watched_));
    return {next_, !all};
  }
  NextSample AwaitOnTape(double t) override { return {After(t), false}; }
  void ReadTape(const SampleTape& tape, std::span<const int> rows) override {
    if (rows.empty()) return;
    const int first = rows.front();  // and each row after it, as nobody else is served
    Take({tape.Times() + first, rows.size()}, tape.Values(command_) + first,
         tape.Values(response_) + first, watched_ ? tape.Values(*watched_) + first : nullptr);
  }

 private:
  double After(double t) const { return t + 0.5 * step_; }

  // The values are those of these times, without their display multipliers.
  void Take(std::span<const double> times, const double* command, const double* response,
            const double* watched) {
    rows_.Times.insert(rows_.Times.end(), times.begin(), times.end());
    Append(rows_.Command, {command, times.size()}, command_);
    Append(rows_.Response, {response, times.size()}, response_);
    if (watched_) {
      for (const double value : std::span(watched, times.size())) {
        const double shown = std::abs(value * watched_->Multiplier());
        rows_.Peak = std::max(rows_.Peak.value_or(0.0), shown);
      }
    }
    next_ = After(times.back());
  }
  static void Append(std::vector<double>& rows, std::span<const double> values,
                     const Variable& signal) {
    const double multiplier = signal.Multiplier();
    rows.resize(rows.size() + values.size());
    std::transform(values.begin(), values.end(), rows.end() - std::ssize(values),
                   [multiplier](double value) { return value * multiplier; });
  }

  const Variable& command_;
  const Variable& response_;
  const Variable* watched_;
  double step_;
  StepRun& rows_;
  double next_ = 0.0;  // the first one at once
};

/// A model whose command makes one step, by one of its generators.
class OneStep {
 public:
  OneStep(std::unique_ptr<ZelModel> model, std::size_t generator, const StepOptions& options,
          Supervisor& supervisor)
      : options_(options),
        model_(std::move(model)),
        command_(NamedSignal(model_->Bench(), options.Command)),
        response_(NamedSignal(model_->Bench(), options.Response)),
        wave_(dynamic_cast<ZelWave&>(
            *model_->Bench().Instruments(InstrumentKind::WaveGenerator).at(generator))),
        run_(*model_, supervisor, LongestWait),
        taker_(command_, response_,
               options.Peak.empty() ? nullptr : &NamedSignal(model_->Bench(), options.Peak), Step(),
               rows_) {
    model_->Bench().History().Suspend();  // nobody takes back what is set on it
  }

  /// Nothing where the generator does not move the command.
  std::optional<StepRun> Run() {
    const WaveSettings settings = wave_.Settings();
    const auto edge = wave_.RisingEdge();
    if (!edge || !(settings.FreqHz > 0.0)) return {};
    const auto hold = [&](double cycle) { wave_.SetPhaseDeg(360.0 * cycle); };
    wave_.SetFreqHz(0.0);
    hold(*edge - BesideEdge);
    if (!Rest()) return WithoutStep("the response does not come to rest before the step");

    const double due = NextEdge(*edge, settings);
    const double jump = JumpAt(due);
    if (jump > run_.Time() + LatestEdge) {
      return WithoutStep("the command makes no step within " + FormatShortest(LatestEdge) + " s");
    }
    // Around its edge the generator runs as ever: the step has its shape.
    const double around = std::min(StepsAround * Step(), MostAround / settings.FreqHz);
    run_.StepTo(jump - around);
    wave_.SetFreqHz(settings.FreqHz);
    wave_.SetPhaseDeg(settings.PhaseDeg + 360.0 * settings.FreqHz * (due - jump));
    rows_.SolverStep = Step();
    rows_.SameUnit = command_.Unit() == response_.Unit();
    TakeRows(jump + around);
    wave_.SetFreqHz(0.0);
    hold(*edge + BesideEdge);
    if (!Respond(jump)) return {};
    return std::move(rows_);
  }

 private:
  double Step() const { return model_->Solver().Step(); }

  double Soonest() const { return run_.Time() + 2.0 * StepsAround * Step(); }

  // When the generator, with these settings, next comes to that fraction of its cycle.
  double NextEdge(double edge, const WaveSettings& settings) const {
    const double start = edge - settings.PhaseDeg / 360.0;
    return (std::ceil(Soonest() * settings.FreqHz - start) + start) / settings.FreqHz;
  }

  // An edge that is due between two samples of the loop, or at one, is seen up to a sample later,
  // and which of a generator's edges a run meets is chance. So each comes just ahead of a sample,
  // the nearest one. Three quarters of a step: a sample that lies on the solver's steps or in the
  // middle of one sees it whichever way its time is rounded.
  double JumpAt(double due) const {
    const auto loop = LoopOnBench(model_->Bench());
    if (!loop || !(loop->SampleTime > 0.0)) return due;
    const double samples = std::round((due - loop->NextSample) / loop->SampleTime);
    const double nearest = loop->NextSample + samples * loop->SampleTime - AheadOfSample * Step();
    return nearest < Soonest() ? nearest + loop->SampleTime : nearest;
  }

  // What stands still has come to rest as well.
  bool Rest() {
    std::vector<double> values{response_.DisplayValue()};
    for (double look = FirstLook; run_.Time() < LongestWait; look *= LookLater) {
      while (run_.Time() < std::min(look, LongestWait)) {
        run_.StepTo(run_.Time() + (StepsApart - 0.5) * Step());
        values.push_back(response_.DisplayValue());
      }
      const bool still = std::ranges::all_of(values, [&](double v) { return v == values.front(); });
      if (still || Stands(values)) return true;
    }
    return false;
  }

  // Until the response stands or the window is over; false where the command has made no step. What
  // stands is measured again until its drift makes no difference.
  bool Respond(double edge) {
    const double jump = FindJump() ? rows_.Times[rows_.Before + 1] : edge;
    const double longest = options_.Window.value_or(options_.Until.value_or(LongestWait));
    for (double look = options_.Window.value_or(FirstLook);; look *= LookLater) {
      TakeRows(jump + std::min(look, longest) - 0.5 * Step());
      const bool last = look >= longest;
      if (last || Stands(rows_.Response)) {
        if (!FindJump()) return false;
        Measure();
        if (last || rows_.Measures.Gap() != StepGap::NotSettled) return true;
      }
      // Another generator's signal.
      if (look > LatestJump && !FindJump()) return false;
    }
  }

  bool FindJump() {
    const auto step = FindStep(rows_.Command);
    if (step) rows_.Before = step->Before;
    return step.has_value();
  }

  void Measure() {
    rows_.Measures = MeasureStep({rows_.Times, rows_.Command, rows_.Response, rows_.SameUnit},
                                 {rows_.Before, rows_.Times.size()},
                                 {rows_.Times[rows_.Before + 1], 0.0, rows_.SolverStep});
  }

  void TakeRows(double until) { run_.Serve(taker_, until, std::numeric_limits<double>::max()); }

  const StepOptions& options_;
  std::unique_ptr<ZelModel> model_;
  const Variable& command_;
  const Variable& response_;
  ZelWave& wave_;
  LongRun run_;
  StepRun rows_;
  RowTaker taker_;
};

}  // namespace

StepRun RunOneStep(const MakeModel& make, const StepOptions& options, Supervisor& supervisor) {
  auto model = MakeFirst(make);
  const auto& generators = model->Bench().Instruments(InstrumentKind::WaveGenerator);
  const std::size_t count = generators.size();
  const bool plays = std::ranges::any_of(generators, [](const Instrument* generator) {
    return dynamic_cast<const ZelWave&>(*generator).Played() != nullptr;
  });
  StepRun without = WithoutStep(plays ? "a generator plays a file; a step is measured of a waveform"
                                      : Reason(StepGap::NoStep));
  for (std::size_t k = 0; k < count; ++k) {
    if (k > 0) model = MakeFirst(make);
    auto run = OneStep(std::move(model), k, options, supervisor).Run();
    if (!run) continue;
    if (run->Reason.empty()) return std::move(*run);
    without = std::move(*run);
  }
  return without;
}

}  // namespace torvane
