// Reports on screen, offscreen: the report chooser's masks, the page preview
// moving through a report and printing it, the keys and zooms of the page,
// and the status window cancelling a long report in the preview and in
// print. A picture of each window is saved.
#include <QtTest/QtTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QToolBar>

#include <memory>

#include "reports/RecordingDevice.h"
#include "reports/clsReport.h"
#include "shell/DesktopShell.h"
#include "shell/ModalScript.h"
#include "shell/frmPreview.h"
#include "shell/frmReports.h"
#include "support/ReadingHif.h"
#include "support/TempDir.h"

namespace hifx::test {

using namespace hifx::shell;

namespace {

QAction* Button(QWidget* preview, const char* key) {
  return preview->findChild<QAction*>(QString("btn") + key);
}

// Steps that note the page preview's caption at each showing and press the
// keys in turn; "" closes the window by the frame's close box.
void PressInTurn(ModalScript& script, QStringList& captions, const std::vector<const char*>& keys) {
  for (const char* key : keys) {
    script.Then("frmPreview", [&captions, key](QWidget* window) {
      captions << window->windowTitle();
      if (*key) {
        Button(window, key)->trigger();
      } else {
        window->close();
      }
    });
  }
}

// The pages printed on a recording printer: its "Page N" footers.
int PagesPrinted(RecordingDevice& device) {
  int pages = 0;
  for (const std::string& text : device.Texts()) pages += text.starts_with("Page ");
  return pages / 2;  // in the header and in the footer
}

// A report run as the main window runs it, on a recording printer.
struct ReportDesk {
  DesktopShell shell;
  FixedClock clock{CivilTime{2024, 3, 9, 10, 0, 0}};
  RecordingPrinters printers;
  MemoryUserSettings settings;
  clsReport report{shell, clock, printers, settings};
  ReportDesk() {
    report.SetPreviewWindow([] { return std::make_unique<frmPreview>(); });
  }
};

// Clicks the status window's Cancel once its text holds `when`.
class CancelWhen {
 public:
  explicit CancelWhen(const QString& when) {
    QObject::connect(&timer_, &QTimer::timeout, [this, when] {
      for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* label = window->findChild<QLabel*>("lReport");
        if (window->objectName() != "Dialog" || !window->isVisible() || label == nullptr) continue;
        if (clicked || !label->text().contains(when)) continue;
        Click(window, "btnAbort");
        seen = label->text();
        Shot(window, "Dialog-cancelling");
        clicked = true;
      }
    });
    timer_.start(0);
  }
  bool clicked = false;
  QString seen;

 private:
  QTimer timer_;
};

}  // namespace

class PreviewTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(config_.path().string())); }

  void chooserGivesTheMaskOfEachBoxAndButton() {
    MemoryUserSettings settings;
    settings.SaveSetting("hifExchange", "Reports", "Options", "6");
    frmReports reports(settings);
    ModalScript script;
    script.Then("frmReports", [](QWidget* window) {
      QCOMPARE(window->windowTitle(), "Reports");
      QVERIFY(window->findChild<QLabel*>()->text() == "Select reports to print.  (Click name to preview)");
      QStringList checked, captions;
      for (const int index : {2, 4, 8, 16}) {
        if (window->findChild<QCheckBox*>(QString("chkReports%1").arg(index))->isChecked()) checked << QString::number(index);
        captions << window->findChild<QPushButton*>(QString("btnPreview%1").arg(index))->text();
      }
      QCOMPARE(checked, QStringList({"2", "4"}));
      QCOMPARE(captions, QStringList({"Exceptions", "Readings", "Orphans", "Missed"}));
      QCOMPARE(Text<QPushButton>(window, "btnActionCONTINUE"), "Conti&nue");
      QCOMPARE(Text<QPushButton>(window, "btnActionCANCEL"), "&Close");
      QCOMPARE(Text<QPushButton>(window, "btnActionPRINTER"), "&Printer ...");
      Shot(window, "frmReports-chooser");
      Check(window, "chkReports4", false);
      Check(window, "chkReports16");
      Click(window, "btnActionCONTINUE");
    });
    QCOMPARE(reports.Display(), 18);
    QCOMPARE(Q(settings.GetSetting("hifExchange", "Reports", "Options", "")), "18");

    // A name previews its report alone; Close and the printer button give
    // 0; none of them touches the saved choice.
    const std::vector<std::pair<QString, int32_t>> buttons = {
        {"btnPreview2", 3}, {"btnPreview4", 5}, {"btnPreview8", 9}, {"btnPreview16", 17},
        {"btnActionCANCEL", 0}, {"btnActionPRINTER", 0}};
    for (const auto& [name, mask] : buttons) {
      script.Then("frmReports", [name = name](QWidget* window) { Click(window, name); });
      QCOMPARE(reports.Display(), mask);
    }
    QVERIFY(script.Done());
    QCOMPARE(Q(settings.GetSetting("hifExchange", "Reports", "Options", "")), "18");
  }

  // Each report on a page of its own; the Reading Report's page redrawn by
  // every move, closed by the frame's close box and never printed.
  void eachReportPreviewedAndOnePageRedrawnByEveryMove() {
    for (const int32_t type : {kReportException, kReportReading, kReportOrphan, kReportMissed}) {
      ReportDesk desk;
      ModalScript script;
      QStringList captions;
      const QString title = Q(ReportTitle(type));
      script.Then("frmPreview", [&captions, title](QWidget* window) {
        captions << window->windowTitle();
        QCOMPARE(Button(window, "PRINT")->toolTip(), "Print to Printer");
        Shot(window, "frmPreview-" + QString(title).replace(' ', '-'));
        Button(window, title == "Reading Report" ? "NEXT" : "CLOSE")->trigger();
      });
      if (type == kReportReading) PressInTurn(script, captions, {"PREV", "LAST", ""});
      QVERIFY(desk.report.Begin(true, kExamples / "reading.pdb", type, ""));
      QVERIFY(script.Done());
      QCOMPARE(captions, QStringList(type == kReportReading ? 4 : 1, title + " Page 1 of 1"));
      QVERIFY(desk.printers.Current().calls.empty());
    }
  }

  void manyPagesMovedThroughByEveryActionThenPrinted() {
    TempDir dir;
    WriteReadingHif(dir / "reading.pdb", 200);
    ReportDesk desk;
    ModalScript script;
    QStringList captions;
    PressInTurn(script, captions, {"NEXT", "NEXT", "LAST", "PREV", "FIRST", "PREV", "PRINT"});
    QVERIFY(desk.report.Begin(true, dir / "reading.pdb", kReportReading, ""));
    QVERIFY(script.Done());
    const QString total = captions.at(2).section(' ', -1);
    QVERIFY(total.toInt() > 5);
    QCOMPARE(captions, QStringList({"Reading Report Page 1 of " + total, "Reading Report Page 2 of " + total,
                                    "Reading Report Page 3 of " + total, "Reading Report Page " + total + " of " + total,
                                    "Reading Report Page " + QString::number(total.toInt() - 1) + " of " + total,
                                    "Reading Report Page 1 of " + total, "Reading Report Page 1 of " + total}));
    // Print prints every page, not the one shown: as many as a print of
    // the report on the same printer.
    ReportDesk direct;
    QVERIFY(direct.report.Begin(false, dir / "reading.pdb", kReportReading, ""));
    QVERIFY(PagesPrinted(direct.printers.Current()) > 5);
    QCOMPARE(PagesPrinted(desk.printers.Current()), PagesPrinted(direct.printers.Current()));
  }

  void thePageMovesByKeysAndDragsAndFitsByZoom() {
    ReportDesk desk;
    ModalScript script;
    script.Then("frmPreview", [](QWidget* window) {
      auto* frame = window->findChild<QScrollArea*>("Picture1");
      auto* page = window->findChild<QLabel*>("Preview");
      auto* h = window->findChild<QScrollBar*>("HScroll1");
      auto* v = window->findChild<QScrollBar*>("VScroll1");
      // Fitted to the width: no bar across, the page as wide as the frame
      // less the upright bar.
      QCOMPARE(h->maximum(), 0);
      QVERIFY(std::abs(page->width() + 24 - frame->viewport()->width()) <= 1);
      window->findChild<QAction*>("btnZoomPage")->trigger();
      QApplication::processEvents();
      QVERIFY(page->height() <= frame->viewport()->height());
      QVERIFY(!v->isVisible() && !h->isVisible());
      Shot(window, "frmPreview-whole-page");
      // At its printed size the page is larger than the frame: the keys and
      // a drag move it, never past the ends.
      window->resize(600, 400);
      window->findChild<QAction*>("btnZoomActual")->trigger();
      QApplication::processEvents();
      QVERIFY(v->maximum() > 0 && h->maximum() > 0);
      const std::tuple<Qt::Key, QScrollBar*, int> moves[] = {{Qt::Key_End, v, v->maximum()},
                                                             {Qt::Key_Down, v, v->maximum()},
                                                             {Qt::Key_PageUp, v, v->maximum() - v->pageStep()},
                                                             {Qt::Key_Home, v, 0},
                                                             {Qt::Key_Right, h, h->singleStep()},
                                                             {Qt::Key_Left, h, 0},
                                                             {Qt::Key_Left, h, 0}};
      for (const auto& [key, bar, at] : moves) {
        QTest::keyClick(window, key);
        QCOMPARE(bar->value(), at);
      }
      QTest::mousePress(page, Qt::LeftButton, {}, QPoint(200, 200));
      QMouseEvent move(QEvent::MouseMove, QPointF(150, 170), page->mapToGlobal(QPointF(150, 170)), Qt::NoButton,
                       Qt::LeftButton, {});
      QApplication::sendEvent(page, &move);
      QTest::mouseRelease(page, Qt::LeftButton, {}, QPoint(150, 170));
      QCOMPARE(h->value(), 50);
      QCOMPARE(v->value(), 30);
      Shot(window, "frmPreview-actual-size");
      Button(window, "CLOSE")->trigger();
    });
    QVERIFY(desk.report.Begin(true, kExamples / "reading.pdb", kReportReading, ""));
    QVERIFY(script.Done());
  }

  // 32,000 meters: the report runs to more than 1,600 pages.
  void cancelStopsALongReportInThePreviewAndInPrint() {
    TempDir dir;
    WriteReadingHif(dir / "reading.pdb", 32000, 100);
    {
      ReportDesk desk;
      ModalScript script;  // no preview window may show
      CancelWhen cancel("Formatting page 800\n");
      QVERIFY(!desk.report.Begin(true, dir / "reading.pdb", kReportReading, ""));
      QVERIFY(cancel.clicked);
      QVERIFY(script.Done());
    }
    ReportDesk desk;
    CancelWhen cancel("Formatting page 5\n");
    QVERIFY(!desk.report.Begin(false, dir / "reading.pdb", kReportReading, ""));
    QVERIFY(cancel.clicked);
    // Printing stops at the next page: the four pages before the cancel, the
    // sheet of the fifth begun, and no sheet after it.
    RecordingDevice& printer = desk.printers.Current();
    QCOMPARE(PagesPrinted(printer), 4);
    int sheets = 0;
    for (const RptCall& call : printer.calls) sheets += call.kind == RptCall::NewPage;
    QCOMPARE(sheets, 4);
    // The status window is gone with the run.
    for (QWidget* window : QApplication::topLevelWidgets()) {
      QVERIFY(!(window->objectName() == "Dialog" && window->isVisible()));
    }
  }

 private:
  TempDir config_;
};

}  // namespace hifx::test

QTEST_MAIN(hifx::test::PreviewTest)
#include "PreviewTest.moc"
