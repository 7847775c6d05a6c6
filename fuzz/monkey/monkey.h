#pragma once

#include <QFile>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <random>

namespace torvane::test {

/// Plays with the windows that there are until its time is over: from the message loop, whichever
/// of them turns, so that dialogs and menus get their share. Each gesture is written down before it
/// is made, one that did not wait for the loop with a "+" before it.
class Monkey : public QObject {
 public:
  enum class Haste { Waits, Hastens, Both };

  Monkey(unsigned seed, double seconds, Haste haste, QStringList files, const QString& record);
  /// Makes the gestures of a record again; as they were, or all of them hastily or not.
  Monkey(const QString& record, Haste haste);

  /// From now on, until the message loop ends.
  void Begin();
  bool Over() const;

 private:
  void Prepare();
  void Step();
  void Make(const QString& gesture);
  QStringList Invent();
  QStringList InventAnywhere();
  QStringList InventInMenu(const QWidget& menu);
  QStringList InventInBox(const QWidget& box);
  QStringList InventAt(const QWidget& widget);
  QStringList InventText();
  int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  template <typename T>
  T AnyOf(const QList<T>& list) {
    return list[Any(static_cast<int>(list.size()))];
  }
  QString AnyPlace();

  std::mt19937 random_;
  qint64 end_;
  Haste haste_;
  QStringList files_;
  QFile record_;
  QStringList gestures_;  // still to be made
  QTimer timer_;
  bool replays_ = false;
};

}  // namespace torvane::test
