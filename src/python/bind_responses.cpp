#include <pybind11/stl.h>

#include <cstdint>
#include <limits>

#include "core/messages.h"
#include "instruments/analyser/margins.h"
#include "python/arrays.h"
#include "python/bindings.h"
#include "workbench/measure/loop_findings.h"
#include "workbench/response/bode_measurement.h"
#include "workbench/response/file_overlay.h"
#include "workbench/response/sweep_measurement.h"

namespace torvane::python {
namespace {

void WarnOf(const std::vector<std::string>& doubts) {
  for (const std::string& doubt : doubts) Warning(doubt);
}

/// A response with the model that it was measured of, off which margins are read.
class MeasuredResponse {
 public:
  MeasuredResponse(std::unique_ptr<ZelModel> model, FrequencyAnalyser& analyser)
      : model_(std::move(model)), analyser_(analyser) {}

  /// All of its bins or points: frequency, gain, phase, whether excited, coherence if it is known.
  py::tuple Columns() const {
    const Response& response = analyser_.ResponseAt(0);
    std::vector<double> hz;
    std::vector<double> gain;
    std::vector<double> phase;
    std::vector<double> coherence;
    std::vector<std::uint8_t> excited;
    for (int index = 0; index < response.End(); ++index) {
      const ResponsePoint* const point = response.At(index);
      hz.push_back(FrequencyOf(index));
      gain.push_back(analyser_.ResponseGain(0, index));
      phase.push_back(analyser_.ResponsePhase(0, index));
      excited.push_back(point == nullptr || point->Excited ? 1 : 0);
      coherence.push_back(point ? point->Coherence : 1.0);
    }
    const py::object known = analyser_.HasCoherence(0) ? py::object(ArrayOf(std::move(coherence)))
                                                       : py::object(py::none());
    return py::make_tuple(ArrayOf(std::move(hz)), ArrayOf(std::move(gain)),
                          ArrayOf(std::move(phase)), ArrayOf(std::move(excited)), known);
  }

  std::vector<std::string> Doubts() const { return analyser_.ResponseAt(0).Doubts(); }
  std::string Input() const { return analyser_.Input()->Name(); }
  std::string Output() const { return analyser_.Output()->Name(); }

  /// Gain and phase of a file's response at the same frequencies, NaN beyond its ends; margins can
  /// be read off it from then on.
  py::tuple Overlay(const std::string& path, const std::string& columns, const std::string& units) {
    Do(py::none(), [&](PythonSupervisor&) { LayFile(analyser_, path, columns, units); });
    constexpr double None = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> gain;
    std::vector<double> phase;
    for (int index = 0; index < analyser_.ResponseAt(0).End(); ++index) {
      const double hz = FrequencyOf(index);
      gain.push_back(analyser_.GainRead(OverlaySlot, hz).value_or(None));
      phase.push_back(analyser_.PhaseRead(OverlaySlot, hz).value_or(None));
    }
    return py::make_tuple(ArrayOf(std::move(gain)), ArrayOf(std::move(phase)));
  }

  py::dict Read(const std::string& as, int slot) const {
    if (slot == 0 && analyser_.OutputOnly()) {
      throw py::value_error("margins need a response; spectrum=False measures one");
    }
    std::optional<int> choice;
    Keywords(py::dict(py::arg("read_as") = as))
        .TakeChoice("read_as", choice, {ReadAsNames.begin(), ReadAsNames.end()});
    MarginReader reader;
    const Margins margins = reader.Read(analyser_, slot, static_cast<ReadAs>(choice.value_or(0)));
    Do(py::none(), [&](PythonSupervisor&) {
      const double accurate = analyser_.ResponseAt(slot).Subject().AccurateUpTo;
      if (margins.HighestHz() > accurate) Warning(SampleTimeWarning(accurate));
      const auto* const xfer = dynamic_cast<const ZelXfer*>(&analyser_);
      const auto warning = xfer && slot == 0 ? LoopSampleWarning(*xfer) : std::nullopt;
      if (warning) Warning(*warning);
    });
    const auto optional = [](const std::optional<Margins::Reading>& one) {
      return one ? py::object(py::make_tuple(one->Hz, one->Value)) : py::object(py::none());
    };
    const auto all = [](const std::vector<Margins::Reading>& readings) {
      py::list list;
      for (const auto& one : readings) list.append(py::make_tuple(one.Hz, one.Value));
      return list;
    };
    py::dict read;
    read["bandwidth"] = margins.GainBandwidth;
    read["phase_bandwidth"] = margins.PhaseBandwidth;
    read["peaking"] = optional(margins.Peaking);
    read["phase_margins"] = all(margins.PhaseMargins);
    read["gain_margins"] = all(margins.GainMargins);
    read["sensitivity"] = optional(margins.Sensitivity);
    read["missing"] = margins.Missing;
    read["accurate_up_to"] = analyser_.ResponseAt(slot).Subject().AccurateUpTo;
    return read;
  }

 private:
  double FrequencyOf(int index) const {
    if (const auto* const xfer = dynamic_cast<const ZelXfer*>(&analyser_)) {
      return xfer->BinFrequency(index);
    }
    return dynamic_cast<const ZelSweptDSA&>(analyser_).PointFrequency(0, index);
  }

  std::unique_ptr<ZelModel> model_;
  FrequencyAnalyser& analyser_;
};

ResponseOptions OptionsOf(const ScriptModel& model, Keywords& keywords) {
  ResponseOptions options;
  options.Model = model.Options();
  keywords.Take("setup", options.Setup);
  keywords.Take("input", options.Input);
  keywords.Take("output", options.Output);
  keywords.Take("tsample", options.TSample, Accepts::Positive);
  keywords.Take("amplitude", options.Amplitude, Accepts::NotNegative);
  keywords.Take("offset", options.Offset, Accepts::Any);
  keywords.Take("average", options.Average);
  if (!options.Setup.empty() && !(options.Input.empty() && options.Output.empty())) {
    throw py::value_error("setup stands in place of input and output");
  }
  return options;
}

std::unique_ptr<MeasuredResponse> Bode(ScriptModel& model, const py::dict& given,
                                       const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  BodeOptions options;
  options.Response = OptionsOf(model, keywords);
  keywords.Take("order", options.Order);
  keywords.Take("start_delay", options.StartDelay, Accepts::NotNegative);
  keywords.Take("end_delay", options.EndDelay, Accepts::NotNegative);
  keywords.Take("spectrum", options.Spectrum);
  keywords.Take("between_samples", options.BetweenSamples);
  return Do(onProgress, [&](PythonSupervisor& supervisor) {
    CheckChannels(options.Response);
    auto measured = model.Make(supervisor);
    auto& xfer = dynamic_cast<ZelXfer&>(
        ChooseAnalyser(measured->Bench(), InstrumentKind::FftAnalyser, options.Response));
    xfer.SetAtOnce(options.StartDelay && !options.BetweenSamples);
    supervisor.ApplySettings([&] { SetUp(xfer, options); });
    MeasureResponse(*measured, xfer, supervisor);
    WarnOf(xfer.ResponseAt(0).Doubts());
    return std::make_unique<MeasuredResponse>(std::move(measured), xfer);
  });
}

std::unique_ptr<MeasuredResponse> SweptResponse(ScriptModel& model, const py::dict& given,
                                                const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  SweepOptions options;
  options.Response = OptionsOf(model, keywords);
  keywords.Take("from", options.From, Accepts::Positive);
  keywords.Take("to", options.To, Accepts::Positive);
  keywords.Take("per_decade", options.PerDecade);
  keywords.Take("settle", options.Settle, Accepts::NotNegative);
  keywords.Take("measure", options.Measure, Accepts::NotNegative);
  return Do(onProgress, [&](PythonSupervisor& supervisor) {
    CheckChannels(options.Response);
    auto measured = model.Make(supervisor);
    auto& analyser = dynamic_cast<ZelSweptDSA&>(
        ChooseAnalyser(measured->Bench(), InstrumentKind::SweptSine, options.Response));
    supervisor.ApplySettings([&] { SetUp(analyser, options); });
    MeasureResponse(*measured, analyser, supervisor);
    WarnOf(analyser.ResponseAt(0).Doubts());
    return std::make_unique<MeasuredResponse>(std::move(measured), analyser);
  });
}

}  // namespace

void BindResponses(py::module_& module, py::class_<ScriptModel>& model) {
  py::class_<MeasuredResponse>(module, "MeasuredResponse")
      .def("columns", &MeasuredResponse::Columns)
      .def("doubts", &MeasuredResponse::Doubts)
      .def_property_readonly("input", &MeasuredResponse::Input)
      .def_property_readonly("output", &MeasuredResponse::Output)
      .def("overlay", &MeasuredResponse::Overlay)
      .def("margins", &MeasuredResponse::Read, py::arg("read_as"), py::arg("slot") = 0);
  model.def("bode", &Bode).def("sweep", &SweptResponse);
}

}  // namespace torvane::python
