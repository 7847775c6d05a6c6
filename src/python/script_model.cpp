#include "python/script_model.h"

#include <unistd.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/text.h"
#include "loops/own_loop.h"
#include "study/run.h"
#include "workbench/quiet.h"
#include "workbench/recording.h"
#include "workbench/work_fault.h"

namespace torvane::python {
namespace {

constexpr double MostReserved = 1e7;  // rows

std::string KeyOf(const std::string& assignment) {
  return assignment.substr(0, assignment.find('='));
}

}  // namespace

ScriptModel::ScriptModel(ModelOptions options, Supervisor& supervisor)
    : options_(std::move(options)),
      live_(MakeFirst([&] { return OpenModel(options_, supervisor); })) {}

std::unique_ptr<ScriptModel> ScriptModel::Thawed(const FrozenModel& frozen,
                                                 Supervisor& supervisor) {
  ModelOptions options;
  options.Model = "model.tvf";
  options.FileText = frozen.Text;
  if (frozen.Loop) options.Loop = {frozen.LoopPath, *frozen.Loop};
  return std::make_unique<ScriptModel>(std::move(options), supervisor);
}

ScriptModel::Use::Use(ScriptModel& model) : model_(model) {
  const int process = getpid();
  int user = 0;
  if (model_.busy_.compare_exchange_strong(user, process)) return;
  if (user == process) {
    throw std::runtime_error("the model is running; another thread has to wait for it");
  }
  // A copy of the process in which it was running: what was half done there is left alone.
  model_.busy_ = process;
  static_cast<void>(model_.live_.release());
  const Quiet quiet;
  class Nobody final : public Supervisor {
    std::unique_ptr<RunWatch> WatchRun(const ZelModel& /*model*/, double /*until*/) override {
      return nullptr;
    }
    void Report(std::string_view /*label*/, std::string_view /*text*/) override {}
    void Print(std::string_view /*lines*/) override {}
  } nobody;
  model_.Restart(nobody);
}

std::unique_ptr<ZelModel> ScriptModel::Make(Supervisor& supervisor) const {
  const Quiet quiet;  // the first opening has said all that there is to say
  return MakeFirst([&] { return OpenModel(options_, supervisor); });
}

void ScriptModel::Restart(Supervisor& supervisor) {
  live_ = Make(supervisor);
  ran_ = false;
}

// What is played brings numbers of its own: what was set before it counts again when it ends.
void ScriptModel::Remember(std::vector<std::string>& all, const std::string& assignment) {
  const std::string key = KeyOf(assignment);
  const auto played = std::find_if(all.rbegin(), all.rend(), [](const std::string& one) {
    return KeyOf(one).ends_with("File");
  });
  all.erase(std::remove_if(played.base(), all.end(),
                           [&](const std::string& one) { return KeyOf(one) == key; }),
            all.end());
  all.push_back(assignment);
}

void ScriptModel::Set(ModelSetting setting, const std::string& text) {
  const std::string before = setting.Text();
  setting.Set(text);
  const std::string remark = setting.Remark();
  if (remark.empty()) return;
  setting.Set(before);
  throw UsageError(remark);
}

void ScriptModel::SetConstant(const std::string& name, const std::string& text) {
  Set(ModelSetting::OfConstant(live_->Bench(), name), text);
  Remember(options_.Settings, name + "=" + ModelSetting::OfConstant(live_->Bench(), name).Text());
}

void ScriptModel::SetGenerator(const std::string& name, const std::string& text) {
  Set(ModelSetting::OfGenerator(live_->Bench(), name), text);
  Remember(options_.Waves, name + "=" + ModelSetting::OfGenerator(live_->Bench(), name).Text());
}

void ScriptModel::Play(const std::string& generator, std::vector<WaveTable::Point> points,
                       const std::string& name) {
  const std::string fault = WaveTable::Fault(points);
  if (!fault.empty()) throw UsageError(fault);
  std::string key = generator + ":File";
  ZelWave& wave = AddressedGenerator(live_->Bench(), key);
  const auto table = std::make_shared<const WaveTable>(name, std::move(points));
  // Models that were opened before keep what they play.
  options_.PlayedFiles = std::make_shared<WaveFiles>(*options_.PlayedFiles);
  options_.PlayedFiles->Keep(name, table);
  wave.Play(table);
  Remember(options_.Waves, generator + ":File=" + name);
}

RunRows ScriptModel::Run(double until, std::optional<double> every, const std::string& record,
                         bool goOn, Supervisor& supervisor) {
  if (ran_ && !goOn) Restart(supervisor);
  RunRows rows;
  if (!every) {
    ran_ = true;
    RecordRows(*live_, until, std::numeric_limits<double>::infinity(), supervisor, [] {});
    return rows;
  }
  const std::vector<Variable*> signals = ListedSignals(live_->Bench(), record);
  rows.Names.emplace_back("Time");
  rows.Units.push_back(live_->Bench().TimeVar()->Unit());
  for (const Variable* signal : signals) {
    rows.Names.push_back(signal->Name());
    rows.Units.push_back(signal->Unit());
  }
  rows.Columns.resize(rows.Names.size());
  const double count = std::clamp((until - live_->Time()) / *every + 2.0, 0.0, MostReserved);
  for (auto& column : rows.Columns) column.reserve(static_cast<std::size_t>(count));
  ran_ = true;
  RecordRows(*live_, until, *every, supervisor, [&] {
    rows.Columns.front().push_back(live_->Time());
    for (std::size_t i = 0; i < signals.size(); ++i) {
      rows.Columns[i + 1].push_back(signals[i]->DisplayValue());
    }
  });
  return rows;
}

FrozenModel ScriptModel::Frozen() const {
  FrozenModel frozen{ModelFileText(*live_), {}, {}};
  if (const auto* const own = dynamic_cast<const loops::OwnLoop*>(live_.get())) {
    frozen.Loop = own->Text();
    frozen.LoopPath = own->TextFile();
  }
  return frozen;
}

}  // namespace torvane::python
