#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <map>
#include <memory>

#include "core/text.h"
#include "support/recorder.h"
#include "ui/desk/control_panel.h"

namespace torvane::test {

/// A control, or the cell of a table, and the place in it that gestures are made at.
struct Target {
  QWidget& Widget;
  QPoint Place;
};

/// The main window on the offscreen display, with the first model, stopped. Reports are recorded.
///
/// It plays scripts, as they stand in tests/data/ui: lines of "gestures -> what is to be seen
/// then", on either side parted by "; ". What is to be seen is waited for. Lines that begin with
/// "#" are remarks, "~" is a folder of the test's own. NAME is a control's object name, WINDOW/NAME
/// where several windows have one of that name, NAME[KVP] the value of a table's line or a
/// diagram's, NAME@0.5,0.2 a place in it, in shares of its size, or "focus" for the control that
/// has it.
///
///   click NAME            a button, a cell, or a command of a menu; double NAME: twice; menu NAME:
///                         with the right button
///   type NAME TEXT        in place of what the edit holds, with Enter; write NAME TEXT: without
///   keys NAME TEXT        as keys, one after the other
///   key NAME Ctrl+Z       one key
///   wheel NAME 120 Shift  so many eighths of a degree, with a key held or without
///   point NAME            with the mouse
///   drag NAME 0,-40 Shift from the middle, so far; "lost" instead of a key: without its release
///   choose NAME TEXT      of a list; pick MENU TEXT: of a menu whose items have no names
///   focus NAME; close NAME; model NAME; run SECONDS of the model's time; answer ok|cancel
///   resize NAME 800x600
///   set CONSTANT VALUE    as another window does
///   box TEXT              answers the next box: with a file, or the button of that caption
///   put FILE TEXT         writes a file; remove FILE; drop FILE: on the main window
///   size 800,600          of the main window; place NAME 40,30,640,420: of a window
///   start                 the program ends and starts anew, its windows as they were left
///   end                   the program ends as on a signal, without a question
///   look NAME             remembers how it looks, and where its window stands; "clipboard" too
///
///   NAME=TEXT             of an edit, list, label, button, command or cell; NAME[2,1]: by numbers
///   NAME.PROPERTY=TEXT; NAME.items, .cells, .header, .rows of what is listed; NAME.place
///   and NAME.corner of its window; NAME.cursor; NAME.ambiguous: letters in its menus
///   NAME has TEXT         of a rich text, whose links are NAME[KVP=3]
///   NAME on|off|enabled|disabled|shown|hidden|focused|repainted|unchanged
///   NAME inside|apart     its window within the workspace; all of them, and none over another
///   NAME whole            of its controls none is cut off
///   NAME stays|wider|narrower|higher|lower than it was when looked at
///   NAME like FILE        all that the window's controls show, as in tests/data/ui/FILE.look
///   NAME fits             neither cut off nor covered
///   NAME beside NAME      their windows cover no part of each other
///   saved RECORD          a line of the file that a save would write; * for any name
///   undo=TEXT             what can be undone; redo=TEXT; notice=TEXT
///   report TEXT           a report or question; there may be none but those of the line
///   file FILE TEXT        that it holds; box=TITLE|TEXT|...: the last one that was answered
///   clipboard=TEXT
class Desktop : public testing::Test {
 protected:
  static constexpr QSize Small{1280, 800};

  Desktop();
  /// Nothing is left to the next one's settings.
  ~Desktop() override;

  /// Plays the lines until one fails.
  void Play(const std::string& script);

  template <typename Control>
  Control& Find(const std::string& name) {
    auto* control = qobject_cast<Control*>(Named(name));
    if (!control) throw std::runtime_error("no control " + name);
    return *control;
  }
  void Click(const std::string& name) { Do("click " + name); }
  void Trigger(const std::string& name) { Find<QAction>(name).trigger(); }
  /// Chooses a model as the user does, in the list.
  void ChooseModel(const QString& name) { Do("model " + name.toStdString()); }
  /// Chooses an experiment of the model as the user does, in the menu.
  void Begin(int experiment) {
    auto& menu = Find<QMenu>("MExperiments");
    emit menu.aboutToShow();
    menu.actions().at(experiment)->trigger();
  }
  QString Text(const char* edit) { return Find<QLineEdit>(edit).text(); }
  void Type(const std::string& name, const std::string& text) { Do("type " + name + " " + text); }
  /// Runs the model so long, by its own time.
  void RunFor(double seconds) { Do("run " + FormatShortest(seconds)); }
  /// A message loop's worth of what is due.
  static bool WaitFor(const std::function<bool()>& so) { return QTest::qWaitFor(so, 120000); }

  ZelBenchTop& Bench() { return Panel->Model()->Bench(); }
  Constant& Const(const std::string& name) { return *Bench().FindConst(name); }
  /// The model's first instrument of a kind.
  template <typename Engine>
  Engine& First(InstrumentKind kind) {
    return dynamic_cast<Engine&>(*Bench().Instruments(kind).front());
  }

  Recorder Reports;
  DataFolder Data{QCoreApplication::applicationDirPath()};
  std::unique_ptr<ControlPanel> Panel = std::make_unique<ControlPanel>(Data);

 private:
  static void LetEnd();
  QObject* Named(const std::string& name);
  Target At(const std::string& name);
  void Do(const std::string& step);
  bool DoToAll(const std::string& verb, const QString& rest);
  bool DoToWindow(const std::string& verb, const QString& rest);
  void AnswerBox();
  void DoAt(const std::string& verb, const Target& target, const QString& text);
  std::string Shown(const std::string& name);
  std::string Missing(const std::string& seen);
  std::string KeptPictures(const std::string& seen);
  bool Looks(const std::string& name, const QString& how);
  std::vector<std::string> Sheet(const std::string& name);

  QTemporaryDir folder_;
  QStringList answers_;  // to the next boxes
  QObject answering_;
  QString box_;
  std::map<std::string, std::pair<QImage, QRect>> looks_;
};

}  // namespace torvane::test
