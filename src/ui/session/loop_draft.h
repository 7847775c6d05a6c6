#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>
#include <optional>
#include <string>

namespace torvane {

/// A loop's text as its user writes it, and the file that it belongs to, which is watched: what
/// another program makes of it is offered. There is one at a time. Lines end in LF here, in the
/// file as they did there.
class LoopDraft : public QObject {
  Q_OBJECT

 public:
  LoopDraft();

  /// A file's bytes as text; what is no UTF-8 is read as Latin-1.
  static QString Decoded(const std::string& bytes);

  /// What a file holds; nothing when there is none.
  static std::optional<QString> InFile(const QString& path);

  /// Takes a text in place of the one before, as the file's own or as an unsaved one of it.
  void Open(const QString& path, const QString& text);
  /// Goes on with an unsaved text as it was left, when its file held that: what another program has
  /// made of the file since then is offered.
  void Restore(const QString& path, const QString& text, const std::optional<QString>& held);
  bool IsEmpty() const { return path_.isEmpty(); }
  const QString& Path() const { return path_; }
  const QString& Text() const { return text_; }
  /// The user has written it.
  void SetText(const QString& text) { text_ = text; }
  /// What the file held when it was read or written last.
  const QString& Saved() const { return saved_; }
  /// The file holds something else, as far as is known.
  bool Unsaved() const { return !IsEmpty() && text_ != saved_; }

  /// Writes the text to its file, or to another one that it belongs to from then on. False after a
  /// report when that cannot be written.
  bool Save() { return SaveAs(path_); }
  bool SaveAs(const QString& path);
  /// Writes a text to its file; another than this one, which is unsaved then, too.
  bool Write(const QString& text);

  /// Goes back to what the file holds.
  void Discard();

  /// Another program has written the file since it was read, and the user has not said what is to
  /// become of that.
  bool ChangedElsewhere() const { return elsewhere_.has_value(); }
  /// Takes what the file holds now, or goes on with the text.
  void ReadAgain();
  void Ignore();

 signals:
  /// There is another text, which its editor has to show.
  void TextChanged();
  /// Whether it is saved, where, or changed elsewhere, is no longer as it was.
  void FileChanged();

 private:
  void Watch();
  void Look();

  QString path_;
  QString text_;
  QString saved_;
  bool endsInCrLf_ = false;
  std::optional<QString> elsewhere_;
  QFileSystemWatcher watcher_;
  QTimer look_;
};

}  // namespace torvane
