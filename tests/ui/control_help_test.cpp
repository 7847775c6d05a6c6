#include <QAbstractButton>
#include <QAbstractItemView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QTextBrowser>
#include <QWhatsThis>

#include "desktop.h"
#include "ui/panes/constants/adjust_dialog.h"
#include "ui/panes/scope/add_dialog.h"

namespace torvane {
namespace {

bool IsControl(const QWidget& widget) {
  for (const char* kind : {"QAbstractButton", "QLineEdit", "QComboBox", "QSlider",
                           "QAbstractItemView", "torvane::ScopePaintBox"}) {
    if (widget.inherits(kind)) {
      return !widget.objectName().isEmpty() && !widget.objectName().startsWith("qt_") &&
             !widget.parentWidget()->inherits("QTabBar");
    }
  }
  return false;
}

class ControlHelpTest : public test::Desktop {};

TEST_F(ControlHelpTest, EveryControlHasToolTipNameSentenceAndKey) {
  Trigger("MIAddMeter");
  AdjustDialog adjust(Const("KVP"), Panel.get());
  AddDialog add({}, Panel.get());
  int controls = 0;
  for (QWidget* widget : Panel->findChildren<QWidget*>()) {
    if (!IsControl(*widget)) continue;
    widget->ensurePolished();
    const auto* button = qobject_cast<QAbstractButton*>(widget);
    const bool named = !widget->accessibleName().isEmpty() || (button && !button->text().isEmpty());
    const std::string name = widget->objectName().toStdString();
    EXPECT_TRUE(named) << name;
    EXPECT_FALSE(widget->toolTip().isEmpty()) << name;
    EXPECT_FALSE(widget->whatsThis().isEmpty()) << name;
    EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus || name == "PBScreen") << name;
    ++controls;
  }
  EXPECT_GT(controls, 95);
}

TEST_F(ControlHelpTest, F1ShowsTheSentenceOfTheControlInTheFocus) {
  Panel->activateWindow();
  Find<QWidget>("EAmplitude").setFocus();
  QTest::keyClick(Panel->windowHandle(), Qt::Key_F1);
  const auto shown = [] {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      if (window->inherits("QWhatsThat") && window->isVisible()) return true;
    }
    return false;
  };
  EXPECT_TRUE(QTest::qWaitFor(shown));
  QWhatsThis::hideText();
}

TEST_F(ControlHelpTest, TheGuideOpensAtItsBeginningAndIsAsWideAsItsPane) {
  Trigger("MIGuide");
  auto& text = Find<QTextBrowser>("TBGuide");
  QSignalSpy fitted(&text, &QTextBrowser::sourceChanged);
  ASSERT_TRUE(WaitFor([&] { return fitted.count() > 0; }));
  EXPECT_EQ(text.verticalScrollBar()->value(), 0);
  EXPECT_EQ(text.horizontalScrollBar()->maximum(), 0);
}

}  // namespace
}  // namespace torvane
