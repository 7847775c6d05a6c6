#include "ui/session/experiments.h"

#include <QMenu>

#include "desktop.h"

namespace torvane::test {
namespace {

using ExperimentsTest = Desktop;

TEST_F(ExperimentsTest, EveryModelHasThreeThatItsFilesSetUp) {
  for (int i = 0; i < Find<QComboBox>("ModelCmB").count(); ++i) {
    const QString model = Find<QComboBox>("ModelCmB").itemText(i);
    ChooseModel(model);
    const QList<Experiment> experiments = ExperimentsOf(*Panel->Model(), Data);
    EXPECT_GE(experiments.size(), 3) << model.toStdString();
    EXPECT_EQ(Find<QMenu>("MExperiments").actions().size(), experiments.size());
    for (const Experiment& experiment : experiments) {
      EXPECT_TRUE(experiment.Text.contains("\nGenerator ") ||
                  experiment.Text.contains("\nAnalyser "));
      EXPECT_FALSE(experiment.File.isEmpty()) << experiment.Title.toStdString();
    }
  }
}

}  // namespace
}  // namespace torvane::test
