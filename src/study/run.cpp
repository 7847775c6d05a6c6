#include "study/run.h"

#include "core/csv.h"

namespace torvane {

std::unique_ptr<ZelModel> MakeFirst(const MakeModel& make) {
  std::unique_ptr<ZelModel> model = make();
  model->KeepOwnMemory();
  return model;
}

RunResult RunOfStudy(const StudyDesign& design, std::size_t run, const MakeModel& make,
                     const MeasureModel& measure, const MeasureSet& set, bool traced) {
  RunResult result{{run, design.Runs[run], {}, {}}, {}};
  std::vector<std::string> remarks;
  const MakeModel makeRun = [&] {
    std::unique_ptr<ZelModel> model = make();
    AppliedRun applied = ApplyRun(model->Bench(), design, run);
    result.Row.Settings = std::move(applied.Settings);
    remarks = std::move(applied.Remarks);
    return model;
  };
  RunReadings readings;
  try {
    readings = measure(makeRun, traced ? &result.Trace : nullptr);
  } catch (const std::exception& error) {
    readings.Reasons.emplace_back(error.what());
  }
  result.Row.Measures = MeasureValues(readings, set);
  Append(remarks, readings.Reasons);
  Append(remarks, readings.Warnings);
  result.Row.Reason = Joined(remarks);
  return result;
}

}  // namespace torvane
