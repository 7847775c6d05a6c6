#pragma once

#include <QObject>
#include <QString>
#include <vector>

class QComboBox;

namespace torvane {

class LoopShelf;
class Session;

/// The list from which a model is chosen: the built-in ones and, below a line, the user's own
/// loops. Choosing the present model builds it anew.
class ModelList : public QObject {
  Q_OBJECT

 public:
  ModelList(QComboBox& list, Session& session, LoopShelf& shelf);

  /// Makes the list show the present model.
  void ShowPresent();

 private:
  struct Item {
    QString Text;  // empty: a line
    QString Path;  // of a loop
    bool operator==(const Item&) const = default;
  };

  std::vector<Item> Offered() const;
  void Fill();
  Item At(int row) const;
  void Choose(const Item& chosen);
  int IndexOfPresent() const;

  QComboBox& list_;
  Session& session_;
  LoopShelf& shelf_;
};

}  // namespace torvane
