// The desktop program's windows on the offscreen platform: every caption,
// tip, menu and question, the conversions started from the main window
// against the command line's, and a picture of each window.
#include <memory>

#include "app/Session.h"
#include "config/clsDist.h"
#include "hif/MeterPlot.h"
#include "reports/qt/QtRptDevice.h"
#include "shell/DesktopShell.h"
#include "shell/ProgressOverlay.h"
#include "shell/frmAdvRecord.h"
#include "shell/frmHIFView.h"
#include "shell/frmLogin.h"
#include "shell/frmMain.h"
#include "shell/frmUnitInstall.h"
#include "shell/ModalScript.h"
#include "support/HifImage.h"
#include "support/ReadingHif.h"
#include "support/RunHifx.h"
#include "support/TestShell.h"

#include <QtCore/QSettings>
#include <QtTest/QtTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

namespace hifx::test {

using namespace hifx::shell;

namespace {

// A desk: a temporary folder as the working folder, with the examples beside
// a site folder, the per-user settings in it too, and the main window over
// the site as the program makes it.
struct Desk {
  explicit Desk(bool loadExample = true) {
    std::filesystem::current_path(dir.path());
    std::filesystem::create_directory_symlink(kExamples, dir / "examples");
    std::filesystem::create_directories(dir / "out" / "example");
    if (loadExample) {
      TestShell quiet;
      app::Session loader(quiet, site);
      clsDist(loader.Store(), quiet, site).LoadDist(kExamples / "site.dst");
    }
  }
  ~Desk() { std::filesystem::current_path(std::filesystem::temp_directory_path()); }

  frmMain& Main() {
    if (!main) main = std::make_unique<frmMain>(session, shell, settings, [this](const auto& f) { opened.push_back(f); });
    return *main;
  }
  template <typename T = QPushButton>
  T* Control(const char* name) {
    return Main().findChild<T*>(name);
  }
  QString Log() { return Control<QPlainTextEdit>("txtLog")->toPlainText(); }
  QAction* Menu(const char* name) { return Main().findChild<QAction*>(name); }

  TempDir dir;
  std::filesystem::path site = dir / "site";
  DesktopShell shell;
  app::Session session{shell, site};
  QtUserSettings settings;
  std::vector<std::filesystem::path> opened;
  std::unique_ptr<frmMain> main;
};

// The captions and tips of a window's tabs, with a picture of each tab.
std::pair<QStringList, QStringList> Tabs(QWidget* window, const QString& shot) {
  auto* tabs = window->findChild<QTabWidget*>("tbsOptions");
  QStringList captions, tips;
  for (int i = 0; i < tabs->count(); ++i) {
    captions << tabs->tabText(i);
    tips << tabs->tabToolTip(i);
    tabs->setCurrentIndex(i);
    Shot(window, shot + "-" + tabs->tabText(i).replace(' ', '-'));
  }
  return {captions, tips};
}

// Makes the row of the list the current one.
void Pick(QWidget* window, const char* list, int row) {
  auto* tree = window->findChild<QTreeWidget*>(list);
  tree->setCurrentItem(tree->topLevelItem(row));
}

// A reading file of two routes a block apart, their meters listed in turn:
// route 7 read by radio and by hand (below range) and one not read, route 3
// read by probe (above range) and one skipped for a locked gate; an orphan.
void WriteMappedReadings(const std::filesystem::path& path) {
  TestShell quiet;
  HifWriter w(quiet, path, 3, kFilePDB, 20);
  w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"MeterType", 3}});
  w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", 7}, {"Initials", "NORTH"}});
  w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", 3}, {"Initials", "SOUTH"}});
  struct Meter {
    int32_t route, sequence, lng, status, readType, current, time, responseCode;
  };
  const Meter meters[] = {{7, 10, 7000000, 1, 1, 150, 80000, 0}, {3, 10, 7000000, 1, 3, 900, 90000, 0},
                          {7, 20, 7001000, 1, 2, 50, 81500, 0},  {3, 20, 7001000, 0, 1, 0, 0, 2},
                          {7, 30, 7002000, 0, 1, 0, 0, 0}};
  for (const Meter& m : meters) {
    w.Add({{"RecType", kRecMeter}, {"RouteNbr", m.route}, {"Sequence", m.sequence},
           {"MeterTagNbr", m.route * 1000 + m.sequence}, {"MeterType", 1}, {"Digits", 6}, {"Status", m.status},
           {"ReadType", m.readType}, {"CurReading", m.current}, {"PrvReading", 100}, {"MinReading", 101},
           {"MaxReading", 600}, {"ReadingDate", m.time ? 20240309 : 0}, {"ReadingTime", m.time},
           {"ResponseCode", m.responseCode}, {"Lat", m.route == 7 ? 45000000 : 45001000}, {"Lng", m.lng}});
  }
  w.Add({{"RecType", kRecOrphan}, {"MeterTagNbr", 5}});
  w.hif.AddCodeRecord(kRecCodes, 0, 0, 2, {"DOG", "LCK"}, {"Dog in yard", "Locked gate"}, {});
}

// The statistics panel's figures, "Meters" to "Orphans", for the whole file
// or for the route chosen.
QStringList Figures(QWidget* viewer, bool route) {
  QStringList figures;
  for (const char* name : {"Meters", "Read", "NotRead", "Skipped", "ByRadio", "ByHand", "ByProbe", "BelowRange",
                           "AboveRange", "Rollover", "Tamper", "FirstReading", "LastReading", "TimeTaken",
                           "Orphans"}) {
    figures << Text(viewer, QString("lblStat") + name + (route ? "Route" : ""));
  }
  return figures;
}

// The example route file with more lines after it, and a zero sequence on
// line 2 and on the last line, 12.
std::filesystem::path RouteWithZeroSequences(const std::filesystem::path& dir) {
  std::string text = ReadBytes(kExamples / "route-fixed.txt");
  const std::string first = text.substr(0, text.find("\r\n") + 2);
  text.replace(first.size() + 4, 6, "000000");
  for (int line = 6; line <= 12; ++line) {
    char fields[19];
    std::snprintf(fields, sizeof fields, "0003%06d%08d", line == 12 ? 0 : line * 10, 3000000 + line);
    text += fields + first.substr(18);
  }
  WriteBytes(dir / "zeros.txt", text);
  return dir / "zeros.txt";
}

// The cells of a list's column, as shown, top to bottom.
QStringList Column(QTableView* list, int column) {
  QStringList cells;
  for (int row = 0; row < list->model()->rowCount(); ++row) cells << list->model()->index(row, column).data().toString();
  return cells;
}

}  // namespace

class WidgetTest : public QObject {
  Q_OBJECT

 private slots:
  // The per-user settings of the whole run, away from the tester's own.
  void initTestCase() {
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(config_.path().string()));
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    qputenv("TZ", "UTC");
  }

  void mainWindowShowsEveryControlAsDescribed() {
    Desk desk;
    desk.Main().Form_Load();
    desk.Main().show();
    QCOMPARE(desk.Main().windowTitle(), "Handheld Interchange File Exchange v3.0.0");
    const char* const controls[][3] = {  // name, caption, tip
        {"cmdRoute", "Route File", "Create RouteHIF to send to handheld"},
        {"cmdReRead", "Re-Read File", ""},
        {"cmdReading", "Reading File", "Receive Reading HIF from handheld"},
        {"cmdSetup", "Setup", "Change conversion properties"},
        {"btnAdvanced", "Advanced", "Receive Reading HIF from handheld"},
        {"btnInstall", "Install to Unit(s)", "Receive Reading HIF from handheld"},
        {"btnClear", "Clear Log", "Clears previous results from log window"},
        {"btnLog", "Open Log", "Opens log using notepad for printing"},
        {"cmdRouteEdit", "", "Edit File used to Create RouteHIF to send to handheld"},
    };
    for (const auto& [name, caption, tip] : controls) {
      auto* button = Get<QAbstractButton>(&desk.Main(), name);
      QCOMPARE(button->text(), caption);
      QCOMPARE(button->toolTip(), tip);
    }
    QVERIFY(!desk.Control("btnLog")->isEnabled());
    QVERIFY(!desk.Control("btnClear")->isEnabled());

    // Each menu as "title: item|item", separators left out.
    QStringList menus;
    for (QAction* menu : desk.Main().menuBar()->actions()) {
      QStringList items;
      for (QAction* action : menu->menu()->actions()) {
        if (!action->isSeparator()) items << action->text();
      }
      menus << menu->menu()->title() + ": " + items.join('|');
    }
    QCOMPARE(menus, QStringList({"File: Viewer...|E&xit",
                                 "&Convert: Make Route Download File|Make ReRead Download File|Process Readings File|"
                                 "Check Route File...",
                                 "&Setup: Configure Interchange|Load Distribution|Create Distribution",
                                 "&Help: Usage|Maps|About"}));
    Shot(&desk.Main(), "frmMain-idle");
  }

  void aSiteNeverSetUpIsOfferedADistributionOnEveryStart() {
    Desk desk(false);
    std::filesystem::copy_file(kExamples / "site.dst", desk.session.SiteFolder() / "site.dst");
    const QString question =
        "Setup information has not yet been entered.\nWould you like to load a setup distribution?";
    ModalScript script;
    script.Box(QMessageBox::No, "setup-question");
    desk.Main().Form_Load();
    QVERIFY(desk.session.Exchange().RouteMap.empty());
    // Yes loads the folder's only distribution without a dialog.
    script.Box(QMessageBox::Yes);
    script.Box(QMessageBox::Ok);
    desk.Main().Form_Load();
    // The settings are read again after the load.
    QCOMPARE(Q(desk.session.Exchange().RouteMap), "Billing");
    desk.Main().Form_Load();  // set up now: no question
    QVERIFY(script.Done());
    QVERIFY((script.boxes == std::vector<SeenBox>{{"hifExchange", question}, {"hifExchange", question},
                                                 {"Distribution", Q((desk.site / "site.dst").string()) + " loaded."}}));
  }

  void conversionsWriteWhatTheCommandLineWrites() {
    Desk desk;
    ModalScript script;
    desk.Main().show();
    desk.Main().Form_Load();
    // A picture of the bar inside the button, taken at the last step of the
    // run that has it less than two thirds full.
    bool shot = false;
    int shotFill = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
      auto* bar = desk.Main().findChild<ProgressOverlay*>("picPlace");
      if (!bar->isVisible() || bar->FillWidth() <= shotFill || bar->FillWidth() > bar->width() * 2 / 3) return;
      QVERIFY(!desk.Control("cmdRoute")->isEnabled());
      Shot(&desk.Main(), "frmMain-converting");
      shot = true;
      shotFill = bar->FillWidth();
    });
    watch.start(0);
    desk.Control("cmdRoute")->click();
    watch.stop();
    QVERIFY(shot);
    desk.Control("cmdReRead")->click();
    // The reading run makes a re-read file of its own in the same place.
    const std::filesystem::path out = desk.dir / "out/example";
    std::filesystem::rename(out / "reread.pdb", out / "reread-tags.pdb");
    std::filesystem::copy_file(kExamples / "reading.pdb", out / "reading.pdb");
    // Asked whether or not the file is there.
    script.Box(QMessageBox::Yes);
    script.Then("frmReports", [](QWidget* window) {
      Shot(window, "frmReports");
      Click(window, "btnActionCANCEL");
    });
    desk.Control("cmdReading")->click();
    QVERIFY(script.Done());
    QVERIFY(desk.Control("btnLog")->isEnabled());
    const std::string windowLog = desk.Log().toStdString();

    const std::vector<std::string> outputs = {"route.pdb", "reread-tags.pdb", "reread.pdb", "billing.txt",
                                              "orphans.txt"};
    std::filesystem::rename(out, desk.dir / "window");
    std::filesystem::create_directories(out);
    std::filesystem::copy_file(kExamples / "reading.pdb", out / "reading.pdb");
    std::string hifxLog;
    for (const char* command : {"route", "reread", "reading"}) {
      if (std::string(command) == "reading") std::filesystem::rename(out / "reread.pdb", out / "reread-tags.pdb");
      const RunResult run = RunHifx({"--site", desk.site.string(), "--yes", command}, desk.dir);
      QCOMPARE(run.status, 0);
      hifxLog += run.out;
    }
    QCOMPARE(Q(windowLog), Q(hifxLog));
    for (const std::string& file : outputs) {
      QVERIFY2(ReadBytes(out / file) == ReadBytes(desk.dir / "window" / file), file.c_str());
      QVERIFY2(!ReadBytes(out / file).empty(), file.c_str());
    }
  }

  void readingOffersReportsUntilTheyArePrinted() {
    Desk desk;
    std::filesystem::copy_file(kExamples / "reading.pdb", desk.dir / "out/example/reading.pdb");
    ModalScript script;
    script.Box(QMessageBox::Yes);
    // A preview comes back to the choice; Continue prints what is checked.
    script.Then("frmReports", [](QWidget* window) { Click(window, "btnPreview4"); });
    script.Box(QMessageBox::Ok);
    script.Then("frmPreview", [](QWidget* window) {
      QCOMPARE(window->windowTitle(), "Reading Report Page 1 of 1");
      window->close();
    });
    script.Then("frmReports", [](QWidget* window) {
      Check(window, "chkReports2");
      Check(window, "chkReports8");
      Click(window, "btnActionCONTINUE");
    });
    // This desk has no printer: each report is kept as a PDF, asked for once
    // it is done.
    script.File(desk.dir / "exceptions.pdf");
    script.File(desk.dir / "orphans.pdf");
    desk.Control("cmdReading")->click();
    QVERIFY(script.Done());
    QCOMPARE(script.boxes.at(1), (SeenBox{"hifExchange", "in r and roPreview"}));
    QVERIFY(desk.opened.empty());
    QVERIFY(script.dialogs.at(0).startsWith("Save Exception Report|PDF Files (*.pdf) (*.pdf)|"));
    QVERIFY(script.dialogs.at(1).startsWith("Save Orphan Report|"));
    QVERIFY(ReadBytes(desk.dir / "exceptions.pdf").starts_with("%PDF"));
    QVERIFY(ReadBytes(desk.dir / "orphans.pdf").starts_with("%PDF"));
    QCOMPARE(desk.settings.GetSetting("hifExchange", "Reports", "Options", ""), std::string("10"));
  }

  void withFavoritesTheReadingFileIsChosenFirst() {
    Desk desk;
    clsExchange& exchange = desk.session.Exchange();
    exchange.Advanced().UseFavorite(true);
    WriteBytes(desk.dir / "unit1.pdb", ReadBytes(kExamples / "reading.pdb"));
    exchange.Advanced().AddFavorite("UNIT1", (desk.dir / "unit1.pdb").string());
    exchange.Advanced().AddFavorite("UNIT2", "");
    const std::string before = exchange.ReadingSource;
    ModalScript script;
    script.Then("frmFavorites", [](QWidget* window) {
      QCOMPARE(window->windowTitle(), "Favorites");
      QCOMPARE(Get<QTreeWidget>(window, "List1")->topLevelItem(1)->text(1), "[No Path set]");
      Pick(window, "List1", 1);
      QVERIFY(!Get(window, "btnUse")->isEnabled());
      Pick(window, "List1", 0);
      QVERIFY(Get(window, "btnUse")->isEnabled());
      Shot(window, "frmFavorites");
      Click(window, "btnClose");
    });
    desk.Control("cmdReading")->click();
    QVERIFY(script.Done());
    QCOMPARE(Q(exchange.ReadingSource), Q(before));
    QVERIFY2(!desk.Control("btnLog")->isEnabled(), "a closed choice runs nothing");

    script.Then("frmFavorites", [](QWidget* window) {
      Pick(window, "List1", 0);
      Click(window, "btnUse");
    });
    script.Box(QMessageBox::No);  // the re-read question: the run stops there
    script.Box(QMessageBox::Ok);
    desk.Control("cmdReading")->click();
    QVERIFY(script.Done());
    QCOMPARE(Q(exchange.ReadingSource), Q((desk.dir / "unit1.pdb").string()));
  }

  void setupWindowShowsTheSettingsAndSavesThemAsTheyWereOrAsChanged() {
    Desk desk;
    const RunResult before = RunHifx({"--site", desk.site.string(), "dist", "write", "before.dst"}, desk.dir);
    QCOMPARE(before.status, 0);
    ModalScript script;
    script.Then("frmOptions", [](QWidget* window) {
      QCOMPARE(window->windowTitle(), "Setup");
      const auto [captions, tips] = Tabs(window, "frmOptions");
      QCOMPARE(captions, QStringList({"Route Conversion", "Re-Read Conversion", "Reading Conversion",
                                      "PRC/PDB Installation"}));
      QCOMPARE(tips, QStringList({"Specify Source for Creating HIF file", "Input Transponder IDs for Re-Reads",
                                  "Specify Conversions for Meter Readings", "Handling of PRC/PDB files"}));
      QCOMPARE(Entries(window, "cboMapping0"), QStringList({"Billing", "BillingCsv", "E5000", "Mvrs", "ReRead"}));
      QCOMPARE(Chosen(window, "cboMapping0"), "Billing");
      QCOMPARE(Chosen(window, "cboMapping3"), "Orphans");
      QCOMPARE(Entries(window, "cboHIFType1").value(2), "Virtual File System (VFS)!");
      QCOMPARE(Text<QLineEdit>(window, "txtSource0"), "examples/route-fixed.txt");
      QVERIFY(window->findChild<QGroupBox*>("fraOrphans")->isEnabled());
      QCOMPARE(window->findChild<QRadioButton*>("optInstallPRC1")->toolTip(),
               "The file is left in the destination directory.  You must manually install it onto a handheld.");
      QVERIFY(!window->findChild<QCheckBox*>("chkPrompt")->isEnabled());
      Click(window, "cmdApply");
      QVERIFY(!window->findChild<QPushButton*>("cmdApply")->isEnabled());
      Click(window, "btnEditMap2");
    });
    // The reading map saved as it stands, and the advanced window closed.
    script.Then("frmMapEdit", [](QWidget* editor) { Click(editor, "btnActionSAVE"); });
    script.Then("frmOptions", [](QWidget* window) { Click(window, "cmdOK"); });
    script.Then("frmAdvanced", [](QWidget* window) { Click(window, "btnClose"); });
    desk.Control("cmdSetup")->click();
    desk.Control("btnAdvanced")->click();
    QVERIFY(script.Done());
    const RunResult after = RunHifx({"--site", desk.site.string(), "dist", "write", "after.dst"}, desk.dir);
    QCOMPARE(after.status, 0);
    QVERIFY(ReadBytes(desk.dir / "after.dst") == ReadBytes(desk.dir / "before.dst"));

    // A map changed in the editor is saved where the next route reads it.
    script.Then("frmOptions", [](QWidget* window) { Click(window, "btnEditMap0"); });
    script.Then("frmMapEdit", [](QWidget* editor) {
      Steps(editor, {"lstMapFields=User5", "cboMapOption=Map Constant", "txtMapConstant=Z9"});
      Click(editor, "btnActionSAVE");
    });
    script.Then("frmOptions", [](QWidget* window) {
      QCOMPARE(Chosen(window, "cboMapping0"), "Billing");
      Click(window, "cmdOK");
    });
    desk.Control("cmdSetup")->click();
    QVERIFY(script.Done());
    desk.Control("cmdRoute")->click();
    const RunResult dump = RunHifx({"dump", "out/example/route.pdb"}, desk.dir);
    QVERIFY2(dump.out.find("\"User5\":\"Z9\"") != std::string::npos, dump.out.c_str());
  }

  void setupChangesTakeEffectAsTheyAlwaysHave() {
    Desk desk;
    clsExchange& exchange = desk.session.Exchange();
    exchange.ReReadHIFType = "XYZ";
    exchange.ReReadDestination = "";
    ModalScript script;
    script.Then("frmOptions", [](QWidget* window) {
      QCOMPARE(window->findChild<QComboBox*>("cboHIFType1")->currentIndex(), 0);
      Click(window, "optInstallPRC0");
      Check(window, "chkPrompt");
      // Re-read files of the exceptions want a re-read destination.
      Check(window, "chkAutoReread", false);
      Check(window, "chkAutoReread");
    });
    script.Box(QMessageBox::Ok);
    script.Then("frmOptions", [](QWidget* window) { Click(window, "cmdCancel"); });
    desk.Control("cmdSetup")->click();
    QVERIFY(script.Done());
    QCOMPARE(script.boxes.at(0), (SeenBox{"Notice", "Specify the Re-Read destination file in the Re-Read Panel"}));
    // Cancel leaves the install choices in force for this run, not in the store.
    QVERIFY(exchange.AutoInstallPrompt && exchange.AutoInstall);
    QCOMPARE(Q(exchange.ReReadHIFType), "XYZ");
    const RunResult stored = RunHifx({"--site", desk.site.string(), "settings", "get", "AutoInstallPrompt"}, desk.dir);
    QCOMPARE(Q(stored.out), "N\n");

    script.Then("frmOptions", [](QWidget* window) { Click(window, "cmdOK"); });
    desk.Control("cmdSetup")->click();
    QCOMPARE(Q(exchange.ReReadHIFType), "PDB");
  }

  void everyRecordDialogAddsEditsAndDeletes() {
    Desk desk;
    clsAdvanced& advanced = desk.session.Exchange().Advanced();
    // The dialog is "frmAdv" + name and asks "Delete " + name; added holds
    // "field=text" pairs typed into a new record.
    struct Case {
      SiteList list;
      const char *type, *name, *added, *changedField, *shownAfterEdit;
    };
    const std::vector<Case> cases = {
        {SiteList::Logins, "", "Login", "cLoginID=ann cPassword=pw", "cPassword", "ann"},
        {SiteList::Messages, "Account", "Message", "cRouteNbr=0002 cMeterID=77 cMessage=a", "cMessage",
         "0002||77\tchanged"},
        {SiteList::Changeouts, "MFG", "Changeout", "cCode=BD cDescription=Badger", "cDescription", "BD\tchanged"},
        {SiteList::Skips, "", "Skip", "cCode=11 cPathName=Flooded", "cPathName", "11\tchanged"},
        {SiteList::Tokens, "Address", "Token", "cToken=HWY", nullptr, "HWY"},
        {SiteList::Favorites, "", "Favorite", "cUnitID=U9 cPathName=/r.pdb", "cPathName", "U9\tchanged"},
    };
    for (const Case& c : cases) {
      const QString window = QString("frmAdv") + c.name;
      const QStringList added = QString(c.added).split(' ');
      const std::string key = c.list == SiteList::Messages ? "0002||77" : added.front().section('=', 1).toStdString();
      auto rows = [&] {
        std::vector<std::string> shown;
        for (const ListRow& row : ListRows(advanced, c.list, c.type)) {
          if (row.key == key) shown.push_back(row.shown);
        }
        return shown;
      };
      ModalScript script;
      script.Then(window, [&](QWidget* w) {
        for (const QString& pair : added) SetText(w, pair.section('=', 0, 0), pair.section('=', 1));
        Shot(w, window);
        Click(w, "OKButton");
      });
      QCOMPARE(Q(frmAdvRecord(advanced, c.list, c.type).Display("", "Add")), "Save");
      QCOMPARE(rows().size(), size_t(1));
      script.Then(window, [&](QWidget* w) {
        if (c.changedField != nullptr) SetText(w, c.changedField, "changed");
        Click(w, "OKButton");
      });
      frmAdvRecord(advanced, c.list, c.type).Display(key, "Edit");
      QVERIFY2(rows() == std::vector<std::string>{c.shownAfterEdit}, c.name);
      script.Then(window, [](QWidget* w) { Click(w, "DeleteButton"); });
      script.Box(QMessageBox::Yes);
      QCOMPARE(Q(frmAdvRecord(advanced, c.list, c.type).Display(key, "Edit")), "Delete");
      QVERIFY2(rows().empty(), c.name);
      QVERIFY(script.Done());
      QCOMPARE(script.boxes.at(0), (SeenBox{QString("Delete ") + c.name, "Are you sure?"}));
    }
  }

  // The advanced window's tabs and lists as they open, then its dialogs.
  void advancedWindowAddsAndEditsWhatTheStoreKeeps() {
    Desk desk;
    ModalScript script;
    script.Then("frmAdvanced", [&](QWidget* window) {
      QCOMPARE(window->windowTitle(), "Advanced");
      const auto [captions, tips] = Tabs(window, "frmAdvanced");
      QCOMPARE(captions, QStringList({"Logins", "Messages", "Changeouts", "Skip Codes", "Index", "Favorites", "Prefs"}));
      QCOMPARE(tips, QStringList({"Setup handheld and desktop security", "Configure informational messages by meter",
                                  "Setup code tables for meter changeouts", "Setup feedback messages for handhelds",
                                  "Specify which words to skip during index preparation.",
                                  "Specify HIF file locations by handheld unit.", "Operational Preferences"}));
      QVERIFY(window->findChild<QCheckBox*>("chkLogin")->isChecked());
      QCOMPARE(window->findChild<QTreeWidget*>("lstLogins")->topLevelItemCount(), 2);
      // The first showing chose the first option and filled its list.
      QVERIFY(window->findChild<QRadioButton*>("optMessageType0")->isChecked());
      QCOMPARE(window->findChild<QTreeWidget*>("lstMessages")->topLevelItem(0)->text(1), "Gate code 4411");
      QCOMPARE(window->findChild<QRadioButton*>("optChangeouts3")->text(), "Meter Sizes");
      QCOMPARE(window->findChild<QComboBox*>("cboIndex")->itemText(2), "Prompt during route creation!");
      QCOMPARE(window->findChild<QComboBox*>("cboAlertTamper")->itemText(2), "Popup Message!");
      auto* favorite = window->findChild<QCheckBox*>("chkFavorite");
      QVERIFY(!favorite->isEnabled());
      QCOMPARE(favorite->text(),
               "Use Favorites to select readings file by handheld unit.(Define some paths first)");
      window->findChild<QTabWidget*>("tbsOptions")->setCurrentIndex(3);
      Click(window, "btnSkipsAdd");
    });
    // Blank, then a code the list has, then a new one.
    script.Then("frmAdvSkip", [&](QWidget* w) {
      QVERIFY(!w->findChild<QPushButton*>("DeleteButton")->isVisible());
      SetText(w, "cCode", "09");
      Click(w, "OKButton");
    });
    script.Box(QMessageBox::Ok);
    script.Then("frmAdvSkip", [](QWidget* w) { Steps(w, {"cPathName=Snow", "cCode=09"}); Click(w, "OKButton"); });
    script.Then("frmAdvanced", [&](QWidget* window) {
      auto* list = window->findChild<QTreeWidget*>("lstSkips");
      QCOMPARE(list->topLevelItem(list->topLevelItemCount() - 1)->text(0), "09");
      window->findChild<QTabWidget*>("tbsOptions")->setCurrentIndex(0);
      QVERIFY(!window->findChild<QPushButton*>("btnLoginsEdit")->isEnabled());
      Pick(window, "lstLogins", 0);
      Click(window, "btnLoginsEdit");
    });
    script.Then("frmAdvLogin", [&](QWidget* w) {
      QVERIFY(!w->findChild<QLineEdit*>("cLoginID")->isEnabled());
      QVERIFY(!w->findChild<QCheckBox*>("chkSupervisor")->isChecked());
      Check(w, "chkSupervisor");
      Click(w, "OKButton");
    });
    script.Then("frmAdvanced", [&](QWidget* window) {
      window->findChild<QTabWidget*>("tbsOptions")->setCurrentIndex(1);
      Click(window, "optMessageType2");
      Click(window, "btnMessagesAdd");
    });
    script.Then("frmAdvMessage", [&](QWidget* w) {
      Check(w, "chkMessageAnyRoute");
      SetText(w, "cMessage", "Check seal");
      Click(w, "OKButton");
    });
    script.Box(QMessageBox::Ok);
    script.Then("frmAdvMessage", [](QWidget* w) { SetText(w, "cMeterID", "1012345"); Click(w, "OKButton"); });
    script.Then("frmAdvanced", [&](QWidget* window) { Click(window, "btnClose"); });
    desk.Control("btnAdvanced")->click();
    QVERIFY(script.Done());
    QVERIFY((script.boxes == std::vector<SeenBox>{{"hifExchange", "PathName is required"},
                                                  {"hifExchange", "Meter Tag Nbr is required"}}));
    // What the window saved is what the command line sees.
    const RunResult dump = RunHifx({"--site", desk.site.string(), "site", "show"}, desk.dir);
    QVERIFY2(dump.out.find("\nREADER1\tread1\tS\n") != std::string::npos, dump.out.c_str());
    QVERIFY2(dump.out.find("09\tSnow") != std::string::npos, dump.out.c_str());
    QVERIFY2(dump.out.find("ANY||1012345\tCheck seal") != std::string::npos, dump.out.c_str());
    // The main window's lists, which the next route file carries to the
    // handheld, are read afresh after the window.
    std::string code, reason;
    QVERIFY(desk.session.Exchange().Advanced().GetSkip(Value("09"), code, reason) > 0);
    QCOMPARE(Q(reason), "Snow");
  }

  void aRouteFileIsCheckedFromTheMenuAwayFromTheLogAndAgainstTheLastReadings() {
    Desk desk;
    const std::filesystem::path route = RouteWithZeroSequences(desk.dir.path());
    std::string text = ReadBytes(kExamples / "route-fixed.txt");
    text.replace(text.find("1012346"), 7, "1019999");
    text.replace(text.find("SN4411"), 6, "SN9911");
    const std::filesystem::path changed = desk.dir / "changed.txt";
    WriteBytes(changed, text);
    const std::string storedSource = desk.session.Exchange().RouteSource;
    ModalScript script;
    script.Then("frmCheckRoute", [&](QWidget* window) {
      QCOMPARE(Text<QLineEdit>(window, "txtRoute"), Q(storedSource));
      QCOMPARE(Chosen(window, "cboMap"), "Billing");
      SetText(window, "txtRoute", Q(route.string()));
      Click(window, "cmdCheck");
      auto* list = window->findChild<QTableView*>("lstFaults");
      QCOMPARE(Column(list, 0), QStringList({"2", "12"}));
      QCOMPARE(Column(list, 1), QStringList({"Sequence", "Sequence"}));
      QCOMPARE(Column(list, 3), QStringList({"zero", "zero"}));
      QCOMPARE(Text(window, "lblSummary"), "12 lines, 3 routes, 12 meters; 2 faults: 2 zero");
      QCOMPARE(Text(window, "lblVerdict"), "The route would convert, with warnings.");
      // Twice on the header: by line, then by line from the last.
      QTest::mouseClick(list->horizontalHeader()->viewport(), Qt::LeftButton, {},
                        QPoint(list->horizontalHeader()->sectionViewportPosition(0) + 5, 5));
      QCOMPARE(Column(list, 0), QStringList({"2", "12"}));
      QTest::mouseClick(list->horizontalHeader()->viewport(), Qt::LeftButton, {},
                        QPoint(list->horizontalHeader()->sectionViewportPosition(0) + 5, 5));
      QCOMPARE(Column(list, 0), QStringList({"12", "2"}));
      QCoreApplication::processEvents();
      Shot(window, "frmCheckRoute");
      Click(window, "cmdSave");
      // A file in a folder that isn't there: the failure names it.
      Click(window, "cmdSave");
      // The change-out trap: a route file made before a meter was changed
      // out, held against the last readings.
      SetText(window, "txtRoute", Q(changed.string()));
      SetText(window, "txtSince", Q((kExamples / "reading.pdb").string()));
      Click(window, "cmdCheck");
      auto* changes = window->findChild<QPlainTextEdit*>("txtChanges");
      QVERIFY(changes->isVisible());
      QCOMPARE(changes->toPlainText(),
               "changed out: account 100-002, route 1, sequence 20: meter SN4411 -> SN9911, tag 1012346 -> 1019999\n"
               "Since " + Q((kExamples / "reading.pdb").string()) + ": 1 changed out, 0 new, 0 gone");
      QCoreApplication::processEvents();
      Shot(window, "frmCheckRoute-changes");
      Click(window, "cmdClose");
    });
    script.File(desk.dir / "faults.csv");
    script.File(desk.dir / "missing" / "faults.csv");
    script.Box(QMessageBox::Ok);
    desk.Menu("mnuCCheck")->trigger();
    QVERIFY(script.Done());
    QCOMPARE(Q(ReadBytes(desk.dir / "faults.csv")), "Line,Field,Value,Kind,Message\r\n"
                                                      "2,Sequence,0,zero,Sequence zero in Line 2\r\n"
                                                      "12,Sequence,0,zero,Sequence zero in Line 12\r\n");
    QVERIFY(script.boxes.at(0).text.startsWith("Could not save " + Q((desk.dir / "missing" / "faults.csv").string())));
    QCOMPARE(desk.Log(), "");
    QCOMPARE(Q(desk.session.Exchange().RouteSource), Q(storedSource));
  }

  void aFailedConversionSaysSoAndTheLogButtonsFollowTheLog() {
    Desk desk;
    desk.session.Exchange().RouteSource = (desk.dir / "missing.txt").string();
    ModalScript script;
    script.Box(QMessageBox::Ok, "conversion-not-complete");
    desk.Control("cmdRoute")->click();
    QVERIFY(script.Done());
    QCOMPARE(script.boxes.back(), (SeenBox{"Error", "Conversion Not Complete\nCheck Log"}));
    QVERIFY(desk.Control("btnLog")->isEnabled());
    QVERIFY(desk.Control("btnClear")->isEnabled());
    QVERIFY(desk.Control("cmdRoute")->isEnabled());

    desk.Control("btnLog")->click();
    QCOMPARE(desk.opened.size(), size_t(1));
    QCOMPARE(QString::fromStdString(ReadBytes(desk.opened[0])), desk.Log());
    QVERIFY(!desk.Log().isEmpty());
    std::filesystem::remove(desk.opened[0]);

    desk.Control("btnClear")->click();
    QCOMPARE(desk.Log(), "");
    QVERIFY(!desk.Control("btnLog")->isEnabled());
    QVERIFY(!desk.Control("btnClear")->isEnabled());

    desk.Control<QToolButton>("cmdRouteEdit")->click();
    desk.Control<QToolButton>("cmdReReadEdit")->click();
    QVERIFY(desk.opened.at(1) == desk.dir / "missing.txt");
    QVERIFY(desk.opened.at(2) == "examples/reread-tags.txt");
  }

  void aSecondRunWaitsForTheFirstAndTheWindowStaysOpen() {
    Desk desk;
    desk.Main().show();
    int turnedAway = 0;
    QTimer poke;
    QObject::connect(&poke, &QTimer::timeout, [&] {
      if (!desk.Main().Busy()) return;
      desk.Control("cmdReRead")->click();
      desk.Main().close();
      ++turnedAway;
    });
    poke.start(0);
    desk.Control("cmdRoute")->click();
    poke.stop();
    QVERIFY(turnedAway > 0);
    QVERIFY(desk.Main().isVisible());
    QVERIFY(!desk.Log().contains("ReRead"));
  }

  void thePlaceOfTheMainWindowIsKeptBetweenRuns() {
    Desk desk;
    QSettings(QSettings::IniFormat, QSettings::UserScope, "hifexchange", "hifExchange").remove("frmMain");
    desk.Main().show();
    desk.Main().Form_Load();
    desk.Main().setGeometry(40, 60, 640, 420);
    desk.Main().close();
    QSettings ini(QSettings::IniFormat, QSettings::UserScope, "hifexchange", "hifExchange");
    QCOMPARE(ini.value("frmMain/Width").toString(), QString::number(desk.Main().width()));
    QCOMPARE(ini.value("frmMain/WindowState").toString(), "0");
    ini.setValue("frmMain/Width", "150");
    ini.sync();
    desk.main.reset();
    frmMain& second = desk.Main();
    const int designed = second.width();
    second.Form_Load();
    QCOMPARE(second.width(), designed);
    QCOMPARE(second.height(), ini.value("frmMain/Height").toInt());
  }

  void promptWindowAsksForEveryFieldAndInsistsOnTheRequiredOnes() {
    DesktopShell shell;
    const std::vector<PromptField> fields = {{"Reader", 0, true}, {"Cycle", 1, false}, {"Book", 0, false}};
    ModalScript script;
    script.Then("frmPromptVariables", [](QWidget* window) {
      Shot(window, "frmPromptVariables");
      QCOMPARE(window->windowTitle(), "Runtime Variables");
      QTest::keyClicks(window->findChild<QLineEdit*>("nPrompt"), "12a.5-x ");
      Click(window, "btnActionOK");
    });
    script.Box(QMessageBox::Ok);
    script.Then("frmPromptVariables", [](QWidget* window) {
      window->findChildren<QLineEdit*>("cPrompt").at(0)->setText("JD");
      Click(window, "btnActionOK");
    });
    std::vector<std::string> values;
    QVERIFY(shell.PromptVariables(fields, values));
    QCOMPARE(script.boxes.at(0), (SeenBox{"hifExchange", "Reader Required"}));
    QVERIFY((values == std::vector<std::string>{"JD", "12.5-", ""}));

    script.Then("frmPromptVariables", [](QWidget* window) {
      QCOMPARE(Text<QPushButton>(window, "btnActionCancel"), "&Cancel");
      Click(window, "btnActionCancel");
    });
    QVERIFY(!shell.PromptVariables(fields, values));
  }

  void reportStatusWindowShowsTheRunAndAsksItToStop() {
    DesktopShell shell;
    QVERIFY(!shell.ReportStatus("Reading Report\r\nRetrieving data"));
    QWidget* window = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->objectName() == "Dialog" && w->isVisible()) window = w;
    }
    QVERIFY(window != nullptr);
    auto* label = window->findChild<QLabel*>("lReport");
    QCOMPARE(label->text(), "Reading Report\nRetrieving data");
    auto* abort = window->findChild<QPushButton*>("btnAbort");
    QCOMPARE(abort->text(), "&Cancel...");
    Shot(window, "Dialog");
    abort->click();
    QCOMPARE(label->text(), "Cancelling...");
    QVERIFY(!abort->isEnabled());
    QVERIFY(shell.ReportStatus("Page 2"));
    QVERIFY(!shell.ReportStatus(""));
    QVERIFY(!shell.ReportStatus("Exception Report"));
  }

  void unitChooserReturnsTheUnitClickedOrNothing() {
    DesktopShell shell;
    ModalScript script;
    script.Then("frmPromptUnit", [](QWidget* window) {
      QCOMPARE(window->windowTitle(), "Install To Unit");
      auto* install = window->findChild<QPushButton*>("btnInstall");
      QCOMPARE(install->text(), "&Install to Selected Unit");
      QVERIFY(!install->isEnabled());
      auto* units = window->findChild<QListWidget*>("lstUnits");
      units->setCurrentRow(1);
      QVERIFY(install->isEnabled());
      Shot(window, "frmPromptUnit");
      install->click();
    });
    QCOMPARE(Q(shell.ChooseUnit({"Alice", "Bob"})), "Bob");
    script.Then("frmPromptUnit", [](QWidget* window) { Click(window, "btnCancel"); });
    QVERIFY(shell.ChooseUnit({"Alice", "Bob"}).empty());
  }

  void unitInstallQueuesTheApplicationForTheUnitsChecked() {
    Desk desk;
    const std::filesystem::path sync = desk.dir / "sync";
    ModalScript script;
    script.Box(QMessageBox::Ok);
    frmUnitInstall(desk.site, sync, desk.shell).Display();
    QCOMPARE(script.boxes.at(0).text,
             "Unable to locate any units!\nPerhaps the Palm Desktop software is not installed \nor is not set up "
             "for your login id?");

    std::filesystem::create_directories(sync / "Alice");
    std::filesystem::create_directories(sync / "Bob");
    WriteBytes(desk.site / "HALVERNLINK.PRC", "application");
    script.Then("frmUnitInstall", [](QWidget* window) {
      auto* list = window->findChild<QListWidget*>("List1");
      auto* install = window->findChild<QPushButton*>("btnInstallUnit");
      QCOMPARE(list->count(), 2);
      QVERIFY(!install->isEnabled());
      list->item(1)->setCheckState(Qt::Checked);
      QVERIFY(install->isEnabled());
      Shot(window, "frmUnitInstall");
      install->click();
    });
    frmUnitInstall(desk.site, sync, desk.shell).Display();
    QVERIFY(script.Done());
    QCOMPARE(Q(ReadBytes(sync / "Bob" / "Install" / "HALVERNLINK.PRC")), "application");
    QVERIFY(!std::filesystem::exists(sync / "Alice" / "Install" / "HALVERNLINK.PRC"));
  }

  void loginLetsOnlyASupervisorIn() {
    Desk desk;
    clsAdvanced& advanced = desk.session.Exchange().Advanced();
    ModalScript script;
    // Each refused with its message; then the supervisor.
    for (const auto& [name, password] :
         {std::pair{"", "x"}, {"READER1", " "}, {"READER1", "READ1"}, {"SUPER", "wrong"}, {"SUPER", "SUPER123"}}) {
      script.Then("frmLogin", [name = name, password = password](QWidget* window) {
        SetText(window, "txtUserName", name);
        SetText(window, "txtPassword", password);
        if (std::string(password) == "SUPER123") Shot(window, "frmLogin");
        Click(window, "cmdOK");
      });
      if (std::string(password) != "SUPER123") script.Box(QMessageBox::Ok);
    }
    QVERIFY(frmLogin(advanced).Display());
    QVERIFY((script.boxes == std::vector<SeenBox>{{"Login", "Login Required!"},
                                                 {"Login", "Password Required!"},
                                                 {"hifExchange", "Not a supervisor!"},
                                                 {"hifExchange", "Invalid User ID or Password, try again!"}}));
    script.Then("frmLogin", [](QWidget* window) { Click(window, "cmdCancel"); });
    QVERIFY(!frmLogin(advanced).Display());
  }

  void viewerShowsRoutesAndTheMetersOfTheRouteClicked() {
    Desk desk;
    ModalScript script;
    script.File(kExamples / "reading.pdb");
    desk.Menu("mnuFViewer")->trigger();
    QVERIFY(script.Done());
    QCOMPARE(script.dialogs.at(0).section('|', 0, 2), "Exchange File|Palm Database Files (*.pdb) (*.pdb)|All Files(*.*) (*)");
    QCOMPARE(QString::fromStdString(desk.settings.GetSetting("hifExchange", "RememberedUse", "ViewerFile", "")),
             QString::fromStdString((kExamples / "reading.pdb").string()));
    auto* viewer = desk.Main().findChild<frmHIFView*>("frmHIFView");
    QVERIFY(viewer != nullptr && viewer->isVisible());
    const TextTable& routes = viewer->Routes().Table();
    // A click on the second route fills the meters of that route.
    auto* list = viewer->findChild<QTableView*>("lstRoutes");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(1, 0)).center());
    // The route record's "Meters" counts the meters of its route.
    QCOMPARE(QString::number(viewer->Meters().Table().rows.size()), Q(routes.rows.at(1).at(2)));
    Shot(viewer, "frmHIFView");

    // The next dialog starts at the file viewed last; a file that is no HIF
    // is refused.
    WriteBytes(desk.dir / "damaged.pdb", std::string(90, '\x7f'));
    script.File(desk.dir / "damaged.pdb");
    script.Box(QMessageBox::Ok);
    desk.Menu("mnuFViewer")->trigger();
    QVERIFY(script.Done());
    QVERIFY(script.dialogs.at(1).endsWith("|" + Q(kExamples.string())));
    QCOMPARE(script.boxes.at(0), (SeenBox{"hifExchange", "Unable to display file"}));
    QCOMPARE(desk.Log(), "Error: Could not read HIF file\n");
  }

  void viewerCountsTheFileAndTheRouteClickedAndAMapClickFindsTheMeter() {
    Desk desk(false);
    WriteMappedReadings(desk.dir / "mapped.pdb");
    frmHIFView viewer(desk.shell);
    QVERIFY(viewer.Display(desk.dir / "mapped.pdb"));
    QCOMPARE(Figures(&viewer, false), QStringList({"5", "3", "1", "1", "1", "1", "1", "1", "1", "0", "0",
                                                   "2024-03-09 08:00:00", "2024-03-09 09:00:00", "1:00:00", "1"}));
    QCOMPARE(Figures(&viewer, true), QStringList(15, ""));
    QCOMPARE(viewer.findChild<QLabel*>("lblStatSkipped")->toolTip(), "Locked gate (LCK): 1");
    QCOMPARE(Text(&viewer, "lblStatNote"), "");
    // A click on route 7 counts it beside the file.
    auto* list = viewer.findChild<QTableView*>("lstRoutes");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
    QCOMPARE(Text(&viewer, "lblStatRoute"), "Route 7 NORTH");
    QCOMPARE(Figures(&viewer, true), QStringList({"3", "2", "1", "0", "1", "1", "0", "1", "0", "0", "0",
                                                  "2024-03-09 08:00:00", "2024-03-09 08:15:00", "0:15:00", ""}));
    Shot(&viewer, "frmHIFView-counts");

    auto* tabs = viewer.findChild<QTabWidget*>("tabMeters");
    QCOMPARE(tabs->tabText(0), "Meters");
    QCOMPARE(tabs->tabText(1), "Map");
    tabs->setCurrentIndex(1);
    auto* map = viewer.findChild<QLabel*>("picMap");
    QVERIFY(!map->pixmap().isNull());
    QCoreApplication::processEvents();
    Shot(&viewer, "frmHIFView-map");
    // Route 3's second meter, the fourth meter record of the file: the map
    // moves the choice from route 7.
    TestShell quiet;
    const auto place = MeterPositions(ReadPlotMeters(quiet, desk.dir / "mapped.pdb")).at(3).value();
    QTest::mouseClick(map, Qt::LeftButton, {}, QPoint(qRound(place.first) + 2, qRound(place.second) - 2));
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(list->selectionModel()->selectedRows().value(0).row(), 1);
    QCOMPARE(Text(&viewer, "lblStatRoute"), "Route 3 SOUTH");
    auto* meters = viewer.findChild<QTableView*>("lstMeters");
    const QModelIndex picked = meters->selectionModel()->selectedRows().value(0);
    QCOMPARE(picked.row(), 1);
    QCOMPARE(picked.siblingAtColumn(0).data().toString(), "20");
    QCOMPARE(picked.siblingAtColumn(1).data().toString(), "3020");
    // A click on no dot leaves the choice as it is.
    tabs->setCurrentIndex(1);
    QTest::mouseClick(map, Qt::LeftButton, {}, QPoint(2, 2));
    QCOMPARE(tabs->currentIndex(), 1);
    QCOMPARE(meters->selectionModel()->selectedRows().value(0).row(), 1);
  }

  void viewerOnADamagedFileShowsWhatItCan() {
    Desk desk(false);
    WriteMappedReadings(desk.dir / "damaged.pdb");
    // A database name without its NUL: the records still read.
    std::string bytes = ReadBytes(desk.dir / "damaged.pdb");
    bytes.replace(0, 32, std::string(32, 'X'));
    WriteBytes(desk.dir / "damaged.pdb", bytes);
    frmHIFView viewer(desk.shell);
    QVERIFY(viewer.Display(desk.dir / "damaged.pdb"));
    QCOMPARE(viewer.Routes().Table().rows.size(), size_t(2));
    QCOMPARE(Text(&viewer, "lblStatNote"), "No counts: the file is damaged.");
    QCOMPARE(Figures(&viewer, false), QStringList(15, ""));
    viewer.lstRoutes_Click(1);
    QCOMPARE(viewer.Meters().Table().rows.size(), size_t(2));
    QCOMPARE(Figures(&viewer, true), QStringList(15, ""));
    Shot(&viewer, "frmHIFView-damaged");
  }

  void distributionMenuWritesAndLoadsThroughItsDialogs() {
    Desk desk;
    ModalScript script;
    script.File(desk.dir / "copy.dst");
    script.Box(QMessageBox::Ok);
    desk.Menu("mnuSUCreateDest")->trigger();
    QVERIFY(script.Done());
    const QString site = QString::fromStdString(desk.site.string());
    QCOMPARE(script.dialogs.at(0), "Save Distribution|Distribution Files (*.dst) (*.dst)|All Files(*.*) (*)|" + site);
    QCOMPARE(script.boxes.at(0), (SeenBox{"Distribution", Q((desk.dir / "copy.dst").string()) + " written."}));
    QVERIFY(ReadBytes(desk.dir / "copy.dst").starts_with("DIST 1.0\r\n[REGISTRY]\r\n"));

    // Two distributions in the site folder: the person picks one.
    std::filesystem::copy_file(desk.dir / "copy.dst", desk.site / "a.dst");
    std::filesystem::copy_file(desk.dir / "copy.dst", desk.site / "b.dst");
    script.File(desk.site / "b.dst");
    script.Box(QMessageBox::Ok);
    desk.Menu("mnuSULoadDist")->trigger();
    QVERIFY(script.Done());
    QCOMPARE(script.dialogs.at(1), "Load Distribution|Distribution Files (*.dst) (*.dst)|All Files(*.*) (*)|" + site);
    QCOMPARE(script.boxes.at(1).text, QString::fromStdString((desk.site / "b.dst").string()) + " loaded.");
  }

  void aRouteOfThirtyThousandMetersShowsAtOnce() {
    Desk desk(false);
    WriteReadingHif(desk.dir / "big.pdb", 30000, 1);
    frmHIFView viewer(desk.shell);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(viewer.Display(desk.dir / "big.pdb"));
    viewer.lstRoutes_Click(0);
    QCoreApplication::processEvents();
    qInfo("30,000 meters read and shown in %lld ms", static_cast<long long>(clock.elapsed()));
    auto* meters = viewer.findChild<QTableView*>("lstMeters");
    QCOMPARE(meters->model()->rowCount(), 30000);
    QCOMPARE(meters->model()->index(29999, 1).data().toString(), "1029999");
  }

 private:
  TempDir config_;
};

}  // namespace hifx::test

QTEST_MAIN(hifx::test::WidgetTest)
#include "WidgetTest.moc"
