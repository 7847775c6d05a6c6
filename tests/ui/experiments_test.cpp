#include "ui/session/experiments.h"

#include <QMenu>
#include <QPlainTextEdit>

#include "core/constant.h"
#include "desktop.h"

namespace torvane::test {
namespace {

class ExperimentsTest : public Desktop {
 protected:
  QList<QAction*> Items() { return Find<QMenu>("MExperiments").actions(); }
};

TEST_F(ExperimentsTest, EveryModelHasThreeThatItsFilesSetUp) {
  for (int i = 0; i < Find<QComboBox>("ModelCmB").count(); ++i) {
    const QString model = Find<QComboBox>("ModelCmB").itemText(i);
    ChooseModel(model);
    const QList<Experiment> experiments = ExperimentsOf(*Panel->Model(), Data);
    EXPECT_GE(experiments.size(), 3) << model.toStdString();
    EXPECT_EQ(Items().size(), experiments.size());
    for (const Experiment& experiment : experiments) {
      EXPECT_TRUE(experiment.Text.contains("\nGenerator ") ||
                  experiment.Text.contains("\nAnalyser "));
      EXPECT_FALSE(experiment.File.isEmpty()) << experiment.Title.toStdString();
    }
  }
}

TEST_F(ExperimentsTest, SetTheModelUpFromItsDefaults) {
  ChooseModel("3-1 PI Controller");
  Const("G").Set(123);
  Reports.Answer = false;
  Items().at(3)->trigger();
  QApplication::processEvents();
  EXPECT_EQ(Const("G").Value(), 123);  // the question about unsaved values is answered by Cancel
  Reports.Answer = true;
  Items().at(3)->trigger();
  QApplication::processEvents();
  EXPECT_EQ(Const("G").Value(), 500);
  EXPECT_TRUE(Find<QWidget>("TZelXferF").isVisible());
  EXPECT_TRUE(Find<QPlainTextEdit>("MText").toPlainText().startsWith("The margins\n\nSet  "));
  EXPECT_EQ(Panel->windowTitle(), "Torvane--Melkorin, 2nd Edition");
}

TEST_F(ExperimentsTest, TheGuideOpensFromTheMenu) {
  Trigger("MIGuide");
  EXPECT_TRUE(Find<QWidget>("GuideF").isVisible());
  EXPECT_TRUE(Find<QTextEdit>("TBGuide").toPlainText().startsWith("Guide\nHalf an hour"));
}

}  // namespace
}  // namespace torvane::test
