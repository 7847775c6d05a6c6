#include "ui/session/live_theory.h"

#include <QElapsedTimer>
#include <algorithm>
#include <vector>

#include "linear/analyser_theory.h"
#include "ui/session/session.h"

namespace torvane {

namespace {

constexpr int TickMilliseconds = 40;
// What takes longer waits until the user's hand rests for so many ticks.
constexpr int LongMilliseconds = 20;
constexpr int RestTicks = 6;

}  // namespace

struct LiveTheory::Followed {
  ModelTheory Model;
  std::vector<AnalyserTheory> Analysers;
};

LiveTheory::LiveTheory(Session& session) : session_(session) {
  connect(&session, &Session::ModelAboutToChange, this, &LiveTheory::Leave);
  connect(&session, &Session::ModelChanged, this, &LiveTheory::Take);
  timer_.setObjectName(QStringLiteral("TTheory"));
  connect(&timer_, &QTimer::timeout, this, &LiveTheory::Follow);
  timer_.start(TickMilliseconds);
}

LiveTheory::~LiveTheory() = default;

const ModelTheory* LiveTheory::Model() const {
  return followed_ ? &followed_->Model : nullptr;
}

void LiveTheory::Leave() {
  const std::unique_ptr<Followed> left = std::move(followed_);
  emit Changed();
}

void LiveTheory::Take() {
  const ZelModel& model = *session_.Model();
  followed_ =
      std::make_unique<Followed>(Followed{{model, [this] { return session_.MakeAnother(); }}, {}});
  for (const InstrumentKind kind : {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine}) {
    for (Instrument* const analyser : model.Bench().Instruments(kind)) {
      followed_->Analysers.emplace_back(dynamic_cast<FrequencyAnalyser&>(*analyser));
    }
  }
  slow_ = false;
  seen_.clear();
}

void LiveTheory::Follow() {
  if (!followed_) return;
  const bool shown = std::ranges::any_of(followed_->Analysers, &AnalyserTheory::Wanted);
  if (!shown && !wanted_) return;
  const ModelTheory& model = followed_->Model;
  std::string setUp = model.SetUp();
  still_ = setUp == seen_ ? still_ + 1 : 0;
  seen_ = std::move(setUp);
  if (slow_ && still_ < RestTicks && model.Revision() > 0) return;
  QElapsedTimer timer;
  timer.start();
  if (Update()) slow_ = timer.elapsed() > LongMilliseconds;
}

bool LiveTheory::Update() {
  const int before = followed_->Model.Revision();
  followed_->Model.Update();
  const bool changed = followed_->Model.Revision() != before;
  for (AnalyserTheory& analyser : followed_->Analysers) {
    if (analyser.Wanted() && analyser.Follow(followed_->Model)) analyser.Redraw();
  }
  if (changed) emit Changed();
  return changed;
}

}  // namespace torvane
