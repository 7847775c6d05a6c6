#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

class QDialog;
class QLineEdit;

namespace torvane {

struct SetupFinding;

/// The numbers of a set-up dialog, which are taken when it is accepted. A number that nobody has
/// typed over keeps all its digits, though fewer are shown. The buttons of an edit "EOrder" are
/// "BOrderDown" and "BOrderUp".
class SetupFields : public QObject {
 public:
  using Step = std::function<double(double)>;

  /// `changed` is called at every change of a text.
  SetupFields(QDialog& dialog, std::function<void()> changed);

  void Add(QLineEdit& edit, double value);
  void AddStepped(QLineEdit& edit, double value, Step down, Step up);

  /// In the order of Add; nothing when a text is no number, which may be reported. A number may
  /// have an engineering suffix.
  std::optional<std::vector<double>> Values(bool reporting) const;

 private:
  struct Field {
    QLineEdit* Edit;
    double Value;
    QString Shown;
  };
  void Show(Field& field, double value);
  std::optional<double> ValueOf(const Field& field) const;
  void ConnectStep(std::size_t field, const char* direction, const Step& step);

  QDialog& dialog_;
  std::function<void()> changed_;
  std::vector<Field> fields_;
};

/// The whole number that was typed, one beyond the integers as the greatest of them; nothing after
/// a report when it has a fraction.
std::optional<int> WholeNumber(double value, const char* what, bool reporting);

/// Says what there is to say of a set-up; false when it is refused.
bool ReportFinding(const SetupFinding& finding);

/// Puts what was typed in force, after what there is to say of it; false when it is refused.
template <class Analyser, class Setup>
bool TakeSetup(Analyser& analyser, const std::optional<Setup>& setup) {
  return setup && ReportFinding(analyser.Check(*setup)) && analyser.Apply(*setup);
}

/// Steps of a time or a frequency: 1, 2, 5.
double Less(double value);
double More(double value);
/// The same with nothing at its lower end.
double LessOrNone(double value);
double MoreThanNone(double value);
/// Steps of a number of averages: 1, 2, 5, 10.
double FewerAverages(double count);
double MoreAverages(double count);

}  // namespace torvane
