#include "cli/study/study.h"

#include <chrono>
#include <cmath>

#include "cli/io/interrupt.h"
#include "cli/io/pictures.h"
#include "cli/study/study_columns.h"
#include "cli/study/study_result.h"
#include "core/csv_table.h"
#include "core/messages.h"
#include "core/text.h"
#include "study/shares.h"
#include "study/study_fault.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

std::string Count(std::size_t done, std::size_t all) {
  return std::to_string(done) + " of " + std::to_string(all) + " runs";
}

/// "N of M runs", and when they are likely to be done.
class Progress {
 public:
  Progress(Console& console, std::size_t all, std::size_t before, bool shown)
      : console_(console), all_(all), before_(before), shown_(shown) {}
  ~Progress() { console_.ShowProgress(""); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(std::size_t done) {
    const auto now = std::chrono::steady_clock::now();
    if (!shown_ || now < next_) return;
    next_ = now + std::chrono::milliseconds(200);
    std::string text = Count(done, all_);
    if (done > before_) {
      const double seconds = std::chrono::duration<double>(now - start_).count();
      const double left =
          seconds * static_cast<double>(all_ - done) / static_cast<double>(done - before_);
      text += ", about " + FormatGeneral(std::ceil(left), 6, 2) + " s left";
    }
    console_.ShowProgress(text);
  }

 private:
  Console& console_;
  std::size_t all_;
  std::size_t before_;
  bool shown_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point next_ = start_ + std::chrono::milliseconds(400);
};

bool Traced(const StudyCommand& command) {
  return !command.Picture.empty() && command.Map.Measure.empty();
}

void CheckPicture(const StudyCommand& command, Study& study) {
  if (!command.Map.Measure.empty()) {
    CheckMeasured("--map", NamedMeasure(command.Map.Measure), study.Measures());
  }
  if (!command.Picture.empty()) CheckStudyPicture(command, study.TableToCome());
}

}  // namespace

void RunStudy(const StudyCommand& command, Console& console) {
  CheckPictureFile(command.Picture);
  const StudyOptions& options = command.Study;
  if (!options.Shard.empty() && !command.Form.IsPlain()) {
    throw UsageError("--shard writes what --merge reads; --format and --units go with --merge");
  }
  const bool table = options.Vary.empty() && !options.Files.empty();
  CheckOutputs(command.Out, command.Picture, table ? options.Files[0] : "");
  Study study(options, console);
  CheckPicture(command, study);
  StudyResult result(command.Out, study.Identity(), study.Head(), StudyColumns(study),
                     command.Form);
  const std::size_t all = study.RunCount();
  if (result.RowCount() > 0) Note(Count(result.RowCount(), all) + " stand already");
  StudyCourse course;
  // Responses are not kept: a picture of them takes all runs again.
  if (!Traced(command)) course.Has = [&](std::size_t run) { return result.Has(run); };
  StudyResponses responses;
  std::size_t done = Traced(command) ? 0 : result.RowCount();
  std::size_t failed = 0;
  const std::size_t measured = all - done;
  course.Take = [&](RunResult run) {
    ++done;
    if (!result.Has(run.Row.Run)) result.Append(run.Row);
    if (!run.Row.HasMeasures()) ++failed;
    if (Traced(command)) responses.Runs.push_back(std::move(run.Trace));
  };
  try {
    const InterruptGuard guard;
    Progress progress(console, all, done, Console::CanShowProgress(command.Out.empty()));
    course.GoOn = [&] {
      progress.Show(done);
      result.FlushNowAndThen();
      return !InterruptGuard::Interrupted();
    };
    study.Run(course, Traced(command));
  } catch (const StudyFault& fault) {
    throw StudyFault(fault.What(),
                     fault.what() + (" after " + Count(done, all)) + result.HowToGoOn());
  }
  if (failed > 0) Note(Count(failed, measured) + " have no measures; their rows say why");
  const std::string rows = result.Table();
  result.Close();
  TellStudyBest(command, rows);
  if (command.Picture.empty()) return;
  responses.Signal = study.Measured().Bode.Response.Output;
  responses.TimeUnit = study.First().Bench().TimeVar()->Unit();
  WriteStudyPicture(command, rows, std::move(responses));
}

namespace {

void WriteTable(const std::string& text, const std::vector<std::string>& units,
                const TableForm& form, ResultFile& file) {
  if (form.IsPlain()) {
    file.Write(text);
  } else {
    CsvReader rows(text);
    CsvRow row;
    rows.Next(row);
    TableWriter table(TableColumns(text, units), form, file);
    while (rows.Next(row)) table.Write(row.Fields);
    table.End();
  }
  file.Close();
}

}  // namespace

void MergeStudies(const StudyCommand& command) {
  const std::vector<std::string>& files = command.Study.Files;
  if (files.empty()) throw UsageError("--merge needs the results of shares");
  CheckStudyBest(command.Study, {true, true, true, true});
  CheckPictureFile(command.Picture);
  for (const std::string& path : files) {
    CheckOutputs(command.Out, command.Picture, path);
  }
  Shares shares;
  for (const std::string& path : files) shares.Add(path);
  const std::string table = shares.Table();
  if (command.Map.Measure.empty() && !command.Picture.empty()) {
    throw UsageError("--merge draws a map alone; --map names its measure");
  }
  CheckStudyPicture(command, table);
  ResultFile file(command.Out);
  WriteTable(table, shares.Units(), command.Form, file);
  TellStudyBest(command, table);
  if (!command.Picture.empty()) WriteStudyPicture(command, table, {});
}

}  // namespace torvane::cli
