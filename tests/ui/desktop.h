#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <memory>

#include "support/recorder.h"
#include "ui/desk/control_panel.h"

namespace torvane::test {

/// The main window on the offscreen display, with the first model, stopped. Reports are recorded.
class Desktop : public testing::Test {
 protected:
  static constexpr QSize Small{1280, 800};

  Desktop() {
    Panel->resize(Small);
    Panel->show();
    QTest::qWait(20);
  }

  template <typename Control>
  Control& Find(const char* name) {
    Control* control = Panel->findChild<Control*>(QString::fromLatin1(name));
    if (!control) throw std::runtime_error(std::string("no control ") + name);
    return *control;
  }
  void Click(const char* name) { QTest::mouseClick(&Find<QWidget>(name), Qt::LeftButton); }
  void Trigger(const char* name) { Find<QAction>(name).trigger(); }

  /// Chooses a model as the user does, in the list.
  void ChooseModel(const QString& name) {
    auto& list = Find<QComboBox>("ModelCmB");
    list.setCurrentText(name);
    emit list.activated(list.currentIndex());
  }

  QString Text(const char* edit) { return Find<QLineEdit>(edit).text(); }
  /// Types into an edit in place of what it holds; commits on Enter.
  void Type(const char* name, const char* text, bool enter = true) {
    QLineEdit& edit = Find<QLineEdit>(name);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, QString::fromLatin1(text));
    if (enter) QTest::keyClick(&edit, Qt::Key_Return);
  }

  ZelBenchTop& Bench() { return Panel->Model()->Bench(); }
  Constant& Const(const char* name) { return *Bench().FindConst(name); }

  Recorder Reports;
  DataFolder Data{QCoreApplication::applicationDirPath()};
  std::unique_ptr<TZelControlPanelF> Panel = std::make_unique<TZelControlPanelF>(Data);
};

}  // namespace torvane::test
