#include "ui/session/session.h"

#include <QFileInfo>
#include <QScopedValueRollback>
#include <utility>

#include "core/messages.h"
#include "models/catalogue_host.h"

namespace torvane {

namespace {

constexpr int KeepMilliseconds = 2000;
constexpr int Patience = 2000;  // milliseconds that a pipe may keep the windows waiting

}  // namespace

/// Holds the session's model and replaces it when a file names another.
class Session::Host final : public CatalogueHost {
 public:
  explicit Host(Session& session) : session_(session) {}

  bool MayDiscard() override { return session_.MayDiscard(); }
  bool RestoresWindows() const override { return session_.restoresWindows_; }

  void Replace(std::unique_ptr<ZelModel> model) override {
    emit session_.ModelAboutToChange();
    CatalogueHost::Replace(std::move(model));
    session_.modelReplaced_ = true;
    session_.MarkSaved();
    session_.SetFile({});
  }

 private:
  Session& session_;
};

Session::Session() : host_(std::make_unique<Host>(*this)) {
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
  return ReadAndLoad(path, Source::File);
}

bool Session::OpenAtStart(const QString& path) {
  return ReadAndLoad(path, Source::FileAtStart);
}

bool Session::OpenConfiguration(const QString& path) {
  return ReadAndLoad(path, Source::Configuration);
}

void Session::ComeBack(const QString& kept, const QString& file, bool changed, bool placed) {
  const QScopedValueRollback restoring(restoresWindows_, restoresWindows_ && placed);
  const bool hasFile = QFileInfo(file).isFile();
  if (hasFile && !changed) {
    OpenAtStart(file);
    return;
  }
  if (!OpenConfiguration(kept)) return;
  if (changed) saved_.clear();
  if (hasFile) SetFile(file);
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

// No box opens and no event is handled between the first change and the signals: nobody sees a
// model that is half loaded.
bool Session::Load(const QString& path, const std::string& text, Source source) {
  CollectedReports reports;
  modelReplaced_ = false;
  // At the start nothing can be lost: the model stands before its file is read, and nothing is
  // asked.
  const std::string named = source == Source::File ? std::string() : ModelNameIn(text);
  if (host_->InCatalogue(named) && !(Model() && Model()->Name() == named))
    host_->ChangeModel(named);
  const LoadResult result = LoadModelText(text, *host_);
  if (result.AtEnd && !result.Recognised) {
    Error("Nothing in " + path.toStdString() + " was recognised.  It is no model file.");
  }
  if (source == Source::Configuration) MarkSaved();
  const bool restored = source == Source::Recovery && result.AtEnd && result.Recognised;
  if (restored) saved_.clear();
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
  recovery_.Remove();
}

void Session::Keep() {
  if (Changed()) {
    recovery_.Write(ModelFileText(*Model()));
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
