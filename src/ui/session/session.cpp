#include "ui/session/session.h"

#include <QFileInfo>
#include <QScopedValueRollback>
#include <utility>

#include "core/files/atomic_save.h"
#include "core/files/loop_record.h"
#include "core/messages.h"
#include "loops/loop_file.h"
#include "models/catalogue_host.h"
#include "plot/qt_text.h"
#include "ui/session/kept_loop.h"
#include "ui/session/model_changes.h"

namespace torvane {

namespace {

constexpr int KeepMilliseconds = 2000;
constexpr int Patience = 2000;  // milliseconds that a pipe may keep the windows waiting

std::unique_ptr<ZelModel> Built(const loops::LoopFile& loop) {
  try {
    std::unique_ptr<ZelModel> model = loops::MakeLoop(loop);
    // What a constructor sets up is no change of the user's.
    model->Bench().History().Clear();
    return model;
  } catch (const std::exception& fault) {
    Error("The loop in " + loop.Path + " cannot be built: " + fault.what());
    return nullptr;
  }
}

}  // namespace

/// Holds the session's model and replaces it when a file names another.
class Session::Host final : public CatalogueHost {
 public:
  explicit Host(Session& session) : session_(session) {}

  bool MayDiscard() override { return session_.MayDiscard(); }
  bool RestoresWindows() const override { return session_.restoresWindows_; }

  bool InCatalogue(const std::string& model) const override {
    return Offers(model) || CatalogueHost::InCatalogue(model);
  }
  bool ChangeModel(const std::string& name) override {
    return Offers(name) ? TakeLoop(Offered) : CatalogueHost::ChangeModel(name);
  }

  bool TakeLoop(std::shared_ptr<const loops::LoopFile> loop) {
    std::unique_ptr<ZelModel> model = Built(*loop);
    if (!model) return false;
    next_ = std::move(loop);
    Replace(std::move(model));
    return true;
  }

  void Replace(std::unique_ptr<ZelModel> model) override {
    emit session_.ModelAboutToChange();
    CatalogueHost::Replace(std::move(model));
    Loop = std::exchange(next_, nullptr);
    session_.modelReplaced_ = true;
    session_.MarkSaved();
    session_.SetFile({});
  }

  /// The one that is current, and the one that the file that is being loaded is for.
  std::shared_ptr<const loops::LoopFile> Loop;
  std::shared_ptr<const loops::LoopFile> Offered;

 private:
  bool Offers(const std::string& name) const {
    return Offered && Offered->Reading.Plan->Name == name;
  }

  Session& session_;
  std::shared_ptr<const loops::LoopFile> next_;  ///< of the model that is about to be current
};

Session::Session() : host_(std::make_unique<Host>(*this)) {
  connect(this, &Session::ModelChanged, this, &Session::FollowLoop);
  connect(&keep_, &QTimer::timeout, this, &Session::Keep);
  keep_.start(KeepMilliseconds);
}

Session::~Session() = default;

ZelModel* Session::Model() const {
  return host_->Model.get();
}

const Catalogue& Session::Models() const {
  return host_->Models;
}

bool Session::Choose(const std::string& name) {
  std::unique_ptr<ZelModel> model = Models().Load(name);
  if (!model) return false;
  MakeCurrent(std::move(model));
  return true;
}

const loops::LoopFile* Session::Loop() const {
  return host_->Loop.get();
}

bool Session::BuildAnew() {
  if (!host_->Loop) return Choose(Model()->Name());
  if (!host_->TakeLoop(host_->Loop)) return false;
  emit ModelChanged();
  return true;
}

std::unique_ptr<ZelModel> Session::MakeAnother() const {
  return host_->Loop ? Built(*host_->Loop) : Models().Load(Model()->Name());
}

// A text that is not saved stays, whatever becomes of the model.
void Session::FollowLoop() {
  if (!Loop() || draft_.Unsaved()) return;
  const QString path = QtText(Loop()->Path);
  if (draft_.Path() != path || !IsApplied()) draft_.Open(path, LoopDraft::Decoded(Loop()->Text));
}

bool Session::IsApplied() const {
  return Loop() && draft_.Path() == QtText(Loop()->Path) &&
         draft_.Text() == LoopDraft::Decoded(Loop()->Text);
}

bool Session::Apply(const loops::LoopFile& loop, std::vector<std::string>& notes) {
  if (Loop() && Loop()->Path == loop.Path) return ReplaceLoop(loop, notes);
  if (!MayDiscard() || !host_->TakeLoop(std::make_shared<const loops::LoopFile>(loop))) {
    return false;
  }
  emit ModelChanged();
  emit FileLoaded();
  return true;
}

// It stays what the file is that the model belongs to, and whether all of it is saved there.
bool Session::ReplaceLoop(const loops::LoopFile& loop, std::vector<std::string>& notes) {
  const std::unique_ptr<ZelModel> fresh = MakeAnother();
  if (!fresh) return false;
  const ModelChanges changes(*Model(), *fresh);
  const bool moved = Loop()->Path != loop.Path;
  const bool changed = Changed();
  const std::string saved = saved_;
  const QString file = file_;
  emit AboutToApply();
  applying_ = true;
  const bool taken = host_->TakeLoop(std::make_shared<const loops::LoopFile>(loop));
  if (taken) {
    const QScopedValueRollback windows(restoresWindows_, true);
    notes = changes.GiveTo(*host_);
    Model()->Bench().History().Clear();
    saved_ = changed || moved || !notes.empty() ? saved : SettingsText(*Model());
    SetFile(file);
    emit ModelChanged();
    emit FileLoaded();
  }
  applying_ = false;
  emit Applied();
  return taken;
}

bool Session::IsLoopInItsFile() const {
  return !Loop() || LoopDraft::InFile(QtText(Loop()->Path)) == LoopDraft::Decoded(Loop()->Text);
}

// Of that file the text that is being written may be further on, or of another one.
bool Session::SaveLoop() {
  const bool written = draft_.Path() == QtText(Loop()->Path);
  return written ? draft_.Write(LoopDraft::Decoded(Loop()->Text))
                 : SaveAtomically(Loop()->Path, Loop()->Text);
}

bool Session::SaveDraftAs(const QString& path) {
  const bool present = Loop() && draft_.Path() == QtText(Loop()->Path);
  const QString absolute = QFileInfo(path).absoluteFilePath();
  if (!draft_.SaveAs(absolute)) return false;
  if (!present || absolute == QtText(Loop()->Path)) return true;
  loops::LoopFile moved = *Loop();
  moved.Path = absolute.toStdString();
  std::vector<std::string> notes;
  ReplaceLoop(moved, notes);
  return true;
}

void Session::MakeCurrent(std::unique_ptr<ZelModel> model) {
  host_->Replace(std::move(model));
  emit ModelChanged();
}

bool Session::Changed() const {
  return Model() && SettingsText(*Model()) != saved_;
}

bool Session::MayDiscard(const std::string& toDo) const {
  return !Changed() || WarningQuestion(
                           "Parameter values have changed since the last File Save.\r"
                           "Those values will be lost.  Press OK to " +
                           toDo + ".");
}

QString Session::Title() const {
  QString title = QString::fromLatin1(ApplicationTitle);
  if (Model()) title.prepend(QString::fromStdString(Model()->Name()) + QStringLiteral(" - "));
  if (!file_.isEmpty()) title = QFileInfo(file_).fileName() + QStringLiteral(" - ") + title;
  if (Changed()) title.prepend(QStringLiteral("* "));
  return title;
}

bool Session::CanRead(const QString& path) {
  std::string text;
  return ReadModelText(path.toStdString(), text, Patience);
}

bool Session::Open(const QString& path) {
  const bool isLoop = path.endsWith(QLatin1String(LoopEnding.data()));
  return isLoop ? OpenLoop(path, Source::File) : ReadAndLoad(path, Source::File);
}

bool Session::OpenAtStart(const QString& path) {
  const bool isLoop = path.endsWith(QLatin1String(LoopEnding.data()));
  return isLoop ? OpenLoop(path, Source::FileAtStart) : ReadAndLoad(path, Source::FileAtStart);
}

bool Session::OpenConfiguration(const QString& path) {
  return ReadAndLoad(path, Source::Configuration);
}

void Session::ComeBack(const QString& kept, const QString& file, bool changed, bool placed) {
  const QScopedValueRollback restoring(restoresWindows_, restoresWindows_ && placed);
  const bool unchangedFile = !changed && !file.isEmpty();
  if (unchangedFile && OpenAtStart(file) && File() == file) return;
  if (!OpenConfiguration(kept)) return;
  if (unchangedFile) {
    Warning(file.toStdString() +
            " is not the file any more that it was when Torvane ended.\n"
            "What was in it has been kept and is back.  It is not saved.");
  }
  if (changed || unchangedFile) saved_.clear();
  if (changed && QFileInfo(file).isFile()) SetFile(file);
}

bool Session::Restore(KeptSession kept) {
  if (!Load(kept.File.Path(), kept.Text, Source::Recovery)) {
    kept.SetAside("cannot be brought back");
    return false;
  }
  recovery_.Adopt(std::move(kept));
  Keep();
  return true;
}

bool Session::ReadAndLoad(const QString& path, Source source) {
  std::string text;
  return ReadModelText(path.toStdString(), text, Patience) && Load(path, text, source);
}

bool Session::OpenLoop(const QString& path, Source source) {
  auto loop = std::make_shared<loops::LoopFile>(
      loops::ReadLoopFile(path.toStdString(), Models().Names(), Patience));
  if (!loop->Fault.empty()) {
    Error(loop->Fault);
    return false;
  }
  if (!loop->Reading.Plan) {
    emit LoopRefused(*loop);
    return false;
  }
  if (source == Source::File && !MayDiscard()) return false;
  if (!host_->TakeLoop(loop)) return false;
  emit ModelChanged();
  emit FileLoaded();
  emit LoopOpened(QString::fromStdString(loop->Path));
  return true;
}

// The own loop that a model file is for: the present one, when it is that, as it runs; none for a
// built-in model's. False when there is no loop to be had, or the present model is not to be left.
bool Session::FindLoop(const QString& path, const std::string& text, Source source,
                       std::shared_ptr<const loops::LoopFile>& found) {
  const std::string kept = source == Source::Recovery ? KeptLoop::In(text).Text : std::string();
  if (!kept.empty()) {
    auto loop = std::make_shared<const loops::LoopFile>(
        loops::ReadLoopText(LoopFileIn(text), kept, Models().Names()));
    if (loop->Reading.Plan) found = loop;
    return loop->Reading.Plan != nullptr;
  }
  const auto& present = host_->Loop;
  const auto isPresent = [&](const std::string& file) {
    return present && present->Path == file && present->Reading.Plan->Name == ModelNameIn(text);
  };
  if (isPresent(LoopFileIn(text))) {
    found = present;
    return true;
  }
  std::string at;
  for (;;) {
    auto wanted = loops::FindWantedLoop(path.toStdString(), text, Models().Names(), at);
    if (wanted.WasAt.empty()) return true;
    if (wanted.Fault.empty() && !wanted.File.Reading.Plan) {
      emit LoopRefused(wanted.File);
      return false;
    }
    if (wanted.Fault.empty()) {
      found = isPresent(wanted.File.Path)
                  ? present
                  : std::make_shared<const loops::LoopFile>(std::move(wanted.File));
      return true;
    }
    if (!askForLoop_) Error(wanted.Fault);
    const QString other = askForLoop_ ? askForLoop_(wanted) : QString();
    if (other.isEmpty()) return false;
    at = other.toStdString();
  }
}

// No box opens and no event is handled between the first change and the signals: nobody sees a
// model that is half loaded.
bool Session::Load(const QString& path, const std::string& text, Source source) {
  std::shared_ptr<const loops::LoopFile> loop;
  if (!FindLoop(path, text, source, loop)) return false;
  const std::string name = ModelNameIn(text);
  // Who reads the file tells models by their names alone.
  const bool namesake = Model() && Model()->Name() == name && loop && host_->Loop != loop;
  if (namesake && source == Source::File &&
      !(WarningQuestion("This file is for another loop of that name, in " + loop->Path +
                        ".  Press OK to change to it.") &&
        MayDiscard())) {
    return false;
  }
  CollectedReports reports;
  modelReplaced_ = false;
  const QScopedValueRollback offered(host_->Offered, loop);
  // At the start nothing can be lost: the model stands before its file is read, and nothing is
  // asked.
  const bool before = source != Source::File && !(Model() && Model()->Name() == name);
  if (namesake || (before && host_->InCatalogue(name))) host_->ChangeModel(name);
  const LoadResult result = LoadModelText(text, *host_);
  if (result.AtEnd && !result.Recognised) {
    Error("Nothing in " + path.toStdString() + " was recognised.  It is no model file.");
  }
  if (source == Source::Configuration) MarkSaved();
  const bool restored = source == Source::Recovery && result.AtEnd && result.Recognised;
  if (restored) {
    saved_.clear();
    RestoreDraft(text);
  }
  if (result.IsModelFile() && (source == Source::File || source == Source::FileAtStart)) {
    MarkSaved();
    SetFile(QFileInfo(path).absoluteFilePath());
  }
  if (modelReplaced_) emit ModelChanged();
  emit FileLoaded();
  const CollectedReports::Rest rest = reports.Forward();
  if (rest.Count > 0) emit ManyReports(rest);
  return source == Source::Recovery ? restored : result.AtEnd;
}

bool Session::Save(const QString& path) {
  if (!SaveModelFile(*Model(), path.toStdString())) return false;
  MarkSaved();
  SetFile(QFileInfo(path).absoluteFilePath());
  return true;
}

void Session::SetFile(const QString& path) {
  file_ = path;
  emit FileChanged();
}

void Session::MarkSaved() {
  saved_ = SettingsText(*Model());
  Keep();
}

// Of windows that stand as the program has put them there are no places.
std::string Session::KeptText() const {
  if (WindowsPlaced()) return ModelFileText(*Model());
  std::vector<std::pair<Instrument*, WindowPlacement>> places;
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (Instrument* const instrument : Model()->Bench().Instruments(kind)) {
      places.emplace_back(instrument, std::exchange(instrument->Placement, {}));
    }
  }
  std::string text = ModelFileText(*Model());
  for (const auto& [instrument, place] : places) instrument->Placement = place;
  return text;
}

std::string Session::KeptLoops() const {
  KeptLoop kept;
  if (Loop()) kept.Text = Loop()->Text;
  if (draft_.Unsaved()) {
    kept.DraftPath = draft_.Path();
    kept.Draft = draft_.Text();
    kept.DraftFile = draft_.Saved();
  }
  return kept.Records();
}

void Session::RestoreDraft(const std::string& text) {
  const KeptLoop kept = KeptLoop::In(text);
  if (kept.DraftPath.isEmpty()) return;
  draft_.Restore(kept.DraftPath, kept.Draft, kept.DraftFile);
  emit DraftRestored();
}

void Session::Keep() {
  if (Changed() || draft_.Unsaved()) {
    recovery_.Write(KeptText() + KeptLoops());
  } else {
    recovery_.Remove();
  }
}

void Session::LeaveForNextStart() {
  Keep();
  recovery_.Leave();
  keep_.stop();
}

}  // namespace torvane
