#include "ui/desk/workspace.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QTemporaryDir>

#include "core/files/model_file.h"
#include "desktop.h"
#include "models/catalogue.h"
#include "support/expected_lines.h"
#include "ui/panes/instrument_pane.h"
#include "ui/panes/instrument_windows.h"
#include "ui/panes/scope/scope_paint_box.h"
#include "ui/session/user_settings.h"

namespace torvane {
namespace {

class WorkspaceTest : public test::Desktop {
 protected:
  Workspace& Area() { return Find<Workspace>("InstrumentArea"); }
  InstrumentFrame& Frame(InstrumentKind kind) {
    for (InstrumentFrame* frame : Area().Frames()) {
      if (frame->Pane().Engine().Kind() == kind) return *frame;
    }
    throw std::runtime_error("no such frame");
  }
  /// Whether none covers another, and the part of the area that they cover.
  std::pair<bool, double> Cover() {
    std::vector<QRect> places;
    double covered = 0.0;
    for (InstrumentFrame* frame : Area().Frames()) {
      if (!frame->isVisible()) continue;
      places.push_back(frame->geometry());
      covered += 1.0 * frame->width() * frame->height();
    }
    return {AreApart(places, Area().size()), covered / Area().width() / Area().height()};
  }
  /// The part of a box that no window in front of its own covers, nor the area's edge.
  QRegion Seen(const QWidget& box) {
    QRegion seen(QRect(box.mapTo(&Area(), QPoint()), box.size()) & Area().rect());
    bool above = false;
    for (const QMdiSubWindow* window : Area().subWindowList(QMdiArea::StackingOrder)) {
      if (above && window->isVisible()) seen -= window->geometry();
      above = above || window->isAncestorOf(&box);
    }
    return seen;
  }
  InstrumentFrame& Generator() { return Frame(InstrumentKind::WaveGenerator); }
};

TEST_F(WorkspaceTest, SubWindowsFillASmallDisplayWithoutOverlap) {
  for (int index = 0; index < static_cast<int>(ModelNames().size()); ++index) {
    ChooseModel(QString::fromStdString(ModelNames()[index]));
    EXPECT_TRUE(Cover().first) << ModelNames()[index];
    EXPECT_GT(Cover().second, 0.8) << ModelNames()[index];
  }
}

// Two analysers in half a display each had plots of 30 pixels, and meters stood behind them.
TEST_F(WorkspaceTest, AnalysersAndMetersFindRoomOrTakeIt) {
  const std::pair<QSize, bool> cases[] = {
      {{800, 600}, false}, {Small, false}, {{1920, 1080}, true}};
  for (const auto& [size, both] : cases) {
    Panel->resize(size);
    ChooseModel(both            ? "16-2 PID Position Loop"
                : size == Small ? "3-1 PI Controller"
                                : "4-1 Digital PI Controller");
    InstrumentFrame& fft = Frame(InstrumentKind::FftAnalyser);
    InstrumentFrame& swept = Frame(InstrumentKind::SweptSine);
    Area().SetShown(fft.Pane().Engine(), true);
    EXPECT_TRUE(Cover().first);
    EXPECT_GT(Cover().second, 0.97) << size.width();
    Area().Toggle(InstrumentKind::SweptSine);
    EXPECT_TRUE(swept.isVisible());
    EXPECT_EQ(fft.isVisible(), both);
    EXPECT_TRUE(Cover().first);
    EXPECT_GE(swept.findChild<QWidget*>("PBPlot")->height(), 280);
    Trigger("MIAddMeter");
    Trigger("MIAddMeter");
    EXPECT_EQ(Cover().first, size != QSize(800, 600));
    EXPECT_EQ(Area().subWindowList(QMdiArea::StackingOrder).back(), Area().Frames().back());
    Area().SetShown(swept.Pane().Engine(), false);
    EXPECT_TRUE(fft.isVisible());
  }
  // Among windows that the user has placed.
  Area().Frames()[0]->resize(500, 400);
  Trigger("MIAddMeter");
  EXPECT_TRUE(Cover().first);
}

// Whatever else is open, nothing covers it, nor an analyser's plot.
TEST_F(WorkspaceTest, TheGraphHasTheFirstClaimToRoom) {
  const std::pair<const char*, std::function<void()>> states[] = {
      {"nothing", [] {}},
      {"analyser", [this] { Area().Toggle(InstrumentKind::FftAnalyser); }},
      {"opened page beside the analyser",
       [this] {
         Area().Toggle(InstrumentKind::FftAnalyser);
         Play("click PageScales");
       }},
      {"both analysers",
       [this] {
         Area().Toggle(InstrumentKind::FftAnalyser);
         Area().Toggle(InstrumentKind::SweptSine);
       }},
      {"four meters",
       [this] {
         for (int i = 0; i < 4; ++i) Trigger("MIAddMeter");
       }},
      {"poles beside the analyser",
       [this] {
         Area().Toggle(InstrumentKind::FftAnalyser);
         Trigger("MIPoles");
       }},
      {"guide", [this] { Trigger("MIGuide"); }},
      {"diagram beside the analyser",
       [this] {
         Area().Toggle(InstrumentKind::FftAnalyser);
         Trigger("MIDiagramPane");
       }},
      {"Math with kept traces beside the analyser",
       [this] {
         Area().Toggle(InstrumentKind::FftAnalyser);
         RunFor(0.05);
         Play("click SBMath; click BKeep; click TZelScopeF/SBTwoCursors");
       }},
      {"experiment", [this] { Begin(0); }},
      {"experiment with analyser", [this] { Begin(3); }}};
  std::vector<std::string> lines{
      "# The main window's size and what is open => the scope's graph, without its labels, and "
      "the box of an analyser's plot"};
  for (const QSize size : {QSize(800, 600), Small, QSize(1366, 768), QSize(1920, 1080)}) {
    for (const auto& [name, open] : states) {
      Panel = std::make_unique<ControlPanel>(Data, "3-1 PI Controller");
      Panel->resize(size);
      Panel->show();
      QCoreApplication::processEvents();
      open();
      for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
      const ScreenPixels graph = Find<ScopePaintBox>("PBScreen").Pixels();
      EXPECT_GE(graph.Width(), size.width() >= 1280 ? 400 : 300) << size.width() << name;
      EXPECT_GE(graph.Height(), size.width() >= 1280 ? 250 : 180) << size.width() << name;
      EXPECT_TRUE(size.width() < Small.width() || Cover().first) << size.width() << name;
      const auto text = [](int a, int b) { return std::to_string(a) + "x" + std::to_string(b); };
      lines.push_back(text(size.width(), size.height()) + " " + name + " => " +
                      text(graph.Width(), graph.Height()));
      for (const QWidget* box :
           Area().findChildren<QWidget*>(QRegularExpression("PBScreen|PBPlot"))) {
        if (!box->isVisible()) continue;
        EXPECT_EQ(Seen(*box), QRegion(QRect(box->mapTo(&Area(), QPoint()), box->size())))
            << size.width() << name << box->objectName().toStdString();
        if (box->objectName() == "PBPlot") lines.back() += ", " + text(box->width(), box->height());
      }
    }
  }
  test::ExpectLines("ui/graphs.txt", lines);
}

TEST_F(WorkspaceTest, TheEngineKnowsTheWindowsPlacement) {
  InstrumentFrame& scope = *Area().Frames()[0];
  const WindowPlacement& placement = scope.Pane().Engine().Placement;
  scope.setGeometry(30, 40, 600, 500);
  EXPECT_EQ(placement, (WindowPlacement{WindowState::Normal, 500, 30, 40, 600}));
  scope.showMaximized();
  EXPECT_EQ(placement, (WindowPlacement{WindowState::Maximised, 500, 30, 40, 600}));
  scope.showNormal();
  EXPECT_EQ(placement.State, WindowState::Normal);
}

TEST_F(WorkspaceTest, APaneOpenedHiddenShownAndClosedAHundredTimesLeavesNothing) {
  Instrument& generator = *Bench().Instruments(InstrumentKind::WaveGenerator).front();
  const QRect before = Area().Frames()[0]->geometry();
  Area().Remove(generator);
  const auto entries = [this] {
    return std::tuple(Panel->findChildren<QWidget*>().size(), Area().subWindowList().size(),
                      Area().Frames().size());
  };
  const auto without = entries();
  const QRect alone = Area().Frames()[0]->geometry();
  EXPECT_GT(alone.height(), before.height());
  Click("SBRun");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Panel->Model()->Time() > 0.0; }));
  for (int i = 0; i < 100; ++i) {
    generator.Placement = {};
    Area().Add(MakeInstrumentPane(generator, Bench()));
    Area().SetShown(generator, false);
    EXPECT_EQ(Area().Frames()[0]->geometry(), alone);
    if (i % 10 == 0) QCoreApplication::processEvents();
    Area().SetShown(generator, true);
    EXPECT_EQ(Area().Frames()[0]->geometry(), before);
    Area().Remove(generator);
    ASSERT_EQ(generator.View(), nullptr);
  }
  Click("SBStop");
  EXPECT_EQ(entries(), without);
}

TEST_F(WorkspaceTest, ACaptureHoldsAllShownInstrumentsAtItsProportions) {
  const std::pair<const char*, QSize> captures[] = {{"MICapture", {4, 3}},
                                                    {"MIWideCapture", {16, 9}}};
  for (const QSize panel : {QSize(800, 600), Small, QSize(1920, 1080)}) {
    Panel->resize(panel);
    for (const auto& [command, proportions] : captures) {
      Trigger(command);
      const QImage picture = QApplication::clipboard()->image();
      EXPECT_NEAR(picture.width() * proportions.height(), picture.height() * proportions.width(),
                  16);
      const QRect area(QPoint(), picture.size());
      const QRect scope = Area().Frames()[0]->geometry();
      const QRect generator = Generator().geometry();
      EXPECT_TRUE(area.contains(scope) && area.contains(generator)) << command << panel.width();
      EXPECT_FALSE(scope.intersects(generator)) << command << panel.width();
      EXPECT_EQ(picture.pixelColor(generator.center()),
                Generator().grab().toImage().pixelColor(generator.center() - generator.topLeft()));
    }
  }
  const QSize copied = QApplication::clipboard()->image().size();
  EXPECT_TRUE(Find<QLabel>("LNotice").text().contains(
      QStringLiteral("%1 x %2 ").arg(copied.width()).arg(copied.height())));
}

// One start of the program after another, the display a larger or smaller one each time.
TEST_F(WorkspaceTest, AnArrangementIsRemembered) {
  const QRect place(40, 30, 640, 420);
  const auto start = [this](QSize size) {
    Panel.reset();
    Panel = std::make_unique<ControlPanel>(Data, "", ControlPanel::Windows::AsLeft);
    Panel->ShowAtStart(false);
    Panel->resize(size);
    QCoreApplication::processEvents();
  };
  start(Small);
  EXPECT_TRUE(Area().IsFilled());
  Area().Frames()[0]->setGeometry(place);
  Area().SetShown(Generator().Pane().Engine(), false);
  ChooseModel("3-1 PI Controller");
  EXPECT_EQ(Area().Frames()[0]->geometry(), place);
  EXPECT_FALSE(Generator().isVisible());

  const QTemporaryDir folder;
  const std::string path = folder.filePath("placed.tvf").toStdString();
  auto placed = LoadModel(2);
  placed->Bench().Instruments(InstrumentKind::Scope).front()->Placement = {WindowState::Normal, 430,
                                                                           5, 6, 650};
  ASSERT_TRUE(SaveModelFile(*placed, path));
  for (const bool restores : {false, true}) {
    Panel->Work().SetRestoresWindows(restores);
    ChooseModel("3-1 PI Controller");
    Panel->Work().OpenAtStart(QString::fromStdString(path));
    EXPECT_EQ(Area().Frames()[0]->geometry(), restores ? QRect(5, 6, 650, 430) : place);
    Area().Frames()[0]->setGeometry(place);
  }

  Panel->move(20, 10);
  Panel->resize(900, 700);
  EXPECT_TRUE(Panel->close());
  start({700, 480});
  EXPECT_TRUE(Area().rect().contains(Area().Frames()[0]->geometry()));
  EXPECT_TRUE(Panel->close());
  start(Small);
  EXPECT_EQ(Area().Frames()[0]->geometry(), place);
  Trigger("MIFillScreen");
  EXPECT_TRUE(Panel->close());
  start(Small);
  EXPECT_TRUE(Area().IsFilled());
  EXPECT_FALSE(Generator().isVisible());
}

TEST_F(WorkspaceTest, TheMainWindowComesBackOnADisplayThatHasBecomeSmaller) {
  QWidget larger;
  larger.setGeometry(3000, 2000, 4000, 3000);
  UserSettings().setValue("windowGeometry", larger.saveGeometry());
  Panel = std::make_unique<ControlPanel>(Data, "", ControlPanel::Windows::AsLeft);
  Panel->ShowAtStart(false);
  const QRect room = Panel->screen()->geometry();
  EXPECT_TRUE(room.contains(Panel->pos()));
  EXPECT_LE(Panel->width(), room.width());
  EXPECT_LE(Panel->height(), room.height());
}

}  // namespace
}  // namespace torvane
