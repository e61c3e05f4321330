// The map editor on the offscreen platform: every kind of map of every use,
// the questions of its buttons, and the maps it saves against what the
// engine itself writes for the same changes. Pictures of a route and a
// reading map are left with the others.
#include <QtTest/QtTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <functional>

#include "app/Session.h"
#include "config/clsDist.h"
#include "shell/DesktopShell.h"
#include "shell/frmMapEdit.h"
#include "shell/ModalScript.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {

using namespace hifx::shell;

namespace {

// A site folder with the example distribution's maps in it.
struct Site {
  Site() {
    TestShell quiet;
    app::Session session(quiet, folder);
    clsDist(session.Store(), quiet, folder).LoadDist(kExamples / "site.dst");
  }
  clsExchMap Load(const std::string& name, int32_t use) const {
    clsExchMap map(folder);
    if (!map.LoadMap(name, use)) qFatal("no map %s", name.c_str());
    return map;
  }
  std::string Bytes(const std::string& name) const { return ReadBytes(folder / name); }

  TempDir dir;
  std::filesystem::path folder = dir / "site";
};

bool Shown(QWidget* window, const char* name) { return Get(window, name)->isVisibleTo(window); }
bool On(QWidget* window, const char* name) { return Get(window, name)->isEnabled(); }
QString Flag(QWidget* window, const char* name) { return On(window, name) ? "on" : "off"; }
void Press(QWidget* window, const char* key) { Click(window, (std::string("btnAction") + key).c_str()); }

// Opens the editor on the map; the step looks at it and closes it, and the
// message boxes that follow are answered with the buttons. A window left
// unanswered fails the test.
std::string Edit(clsExchMap& map, bool isNew, const std::function<void(QWidget*)>& step,
                 const std::vector<QMessageBox::StandardButton>& answers = {}) {
  DesktopShell shell;
  ModalScript script;
  script.Then("frmMapEdit", step);
  for (QMessageBox::StandardButton answer : answers) script.Box(answer);
  frmMapEdit editor(shell);
  const std::string result = editor.Display(map, isNew);
  if (!script.Done()) QTest::qFail("the editor's windows were not all answered", __FILE__, __LINE__);
  return result;
}

// What the editor shows of a map's header and first field.
struct Look {
  QString title, type, firstField, position;
  QStringList types;
  QList<bool> shown;  // length, filter, delimiter, quote, MVRS frame, fields, option
  int fieldCount;
};

Look LookAt(QWidget* window) {
  auto* fields = Get<QListWidget>(window, "lstMapFields");
  return {window->windowTitle(), Chosen(window, "cboMapType"), fields->currentItem()->text(),
          Text(window, "lMapPosition"), Entries(window, "cboMapType"),
          {Shown(window, "txtMapLength") && Shown(window, "lMapLength") && Shown(window, "cboMapTerminator") &&
               Shown(window, "lMapTerminator"),
           Shown(window, "cboMapFilter") && Shown(window, "lMapFilter"),
           On(window, "cboMapDelimiter") && On(window, "lMapDelimiter"), On(window, "cboMapQuote") && On(window, "lMapQuote"),
           Shown(window, "fraMVRS"), On(window, "lstMapFields") && On(window, "lMapFields"), On(window, "cboMapOption")},
          fields->count()};
}

const char* const kTypes[] = {"", "Fixed", "Delimited", "MVRS", "E5000"};

// The changes of each map's row of changesSavedAreWhatTheEngineWrites, made
// through the engine.
void EngineChanges(clsExchMap& m) {
  if (m.MapUse() == kUseRoute) {
    m.SetMapOption("Lat", kOptionSource);
    m.SetDataPosition("Lat", 190);
    m.SetDataWidth("Lat", 12);
    m.SetMapOption("User2", kOptionConstant);
    m.SetMapConstant("User2", "W 1");
    m.SetMapOption("Sequence", kOptionAutonumber);
    m.SetMapFormat("LstReadingDate", 26);
  } else if (m.MapUse() == kUseReading) {
    m.SetMapFilter(2);
    m.SetMapLength(120);
    m.SetMapTerminator(3);
    m.SetMapFormat("ReadingDate", 35);
    m.SetMapAlign("ReadingDate", 2);
    m.SetMapPad("ReadingDate", 1);
    m.SetMapOption("Signal", kOptionDestination);
    m.SetDataPosition("Signal", 108);
    m.SetDataWidth("Signal", 3);
  } else {
    m.SetMapDelimiter(";");
    m.SetMapQuote("\"");
    m.SetMapTerminator(2);
    m.SetMapOption("TamperCount", kOptionDoNotMap);
  }
}

}  // namespace

class MapEditTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(config_.path().string()));
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
  }

  void everyKindOfMapOfEveryUse_data() {
    QTest::addColumn<int>("use");
    QTest::addColumn<int>("type");
    for (int use : {kUseRoute, kUseReRead, kUseReading, kUseOrphan}) {
      for (int type = kMapFixed; type <= (use == kUseOrphan ? kMapDelimited : kMapE5000); ++type) {
        QTest::addRow("%s %s", MapUseName(use).data(), kTypes[type]) << use << type;
      }
    }
  }
  void everyKindOfMapOfEveryUse() {
    QFETCH(int, use);
    QFETCH(int, type);
    TempDir dir;
    clsExchMap map(dir.path());
    map.NewMap("Kind" + MapExtension(use), use);
    map.SetMapType(type);
    map.SetDirty(false);
    Look look{};
    Edit(map, false, [&](QWidget* window) {
      look = LookAt(window);
      Press(window, "CLOSE");
    });

    const bool fixedLayout = type == kMapMVRS || type == kMapE5000;
    QCOMPARE(look.title, QString("Edit %1 Map: Kind%2").arg(MapUseName(use).data(), MapExtension(use).c_str()));
    QCOMPARE(look.types, use == kUseOrphan ? QStringList({"Fixed", "Delimited"})
                                           : QStringList({"Fixed", "Delimited", "MVRS", "E5000"}));
    QCOMPARE(look.type, kTypes[type]);
    QCOMPARE(look.shown, QList<bool>({use != kUseRoute && !fixedLayout, use == kUseReading, type == kMapDelimited,
                                      type == kMapDelimited, use == kUseRoute && type == kMapMVRS, !fixedLayout,
                                      !fixedLayout}));
    QCOMPARE(look.fieldCount, map.FieldCount());
    QCOMPARE(look.firstField, QString::fromStdString(map.Prompt(1, true)));
    QCOMPARE(look.position, type == kMapDelimited ? "Position" : "Column");
    QVERIFY(!map.Dirty());
  }

  void aRouteMapShowsHowTheFileMapsEachField() {
    Site site;
    clsExchMap map = site.Load("Billing.hcm", kUseRoute);
    QStringList seen, sequence, required;
    Edit(map, false, [&](QWidget* window) {
      Shot(window, "frmMapEdit-route");
      seen << window->windowTitle() << Text(window, "lMapType") << Text(window, "lMapDelimiter");
      for (const char* key : {"SAVE", "SAVEAS", "DELETE", "CLOSE"}) {
        seen << Text<QPushButton>(window, ("btnAction" + std::string(key)).c_str());
      }
      seen << Chosen(window, "cboMapOption") << Text<QLineEdit>(window, "txtMapPosition")
           << Text<QLineEdit>(window, "txtMapWidth") << Flag(window, "txtMapWidth") << Flag(window, "txtMapConstant")
           << Flag(window, "cboMapFormat");
      auto* list = Get<QListWidget>(window, "lstMapFields");
      for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->text().endsWith("(Required)")) required << list->item(i)->text();
      }
      ClickField(window, "Sequence(Required)");
      sequence = Entries(window, "cboMapOption");
      ClickField(window, "LstReadingDate");
      seen << Chosen(window, "cboMapFormat") << Text<QLineEdit>(window, "txtMapPosition")
           << Flag(window, "cboMapFormat") << Flag(window, "lMapFormat");
      ClickField(window, "Initial Tamper Count(434)");
      seen << Chosen(window, "cboMapOption") << QString::number(Get<QComboBox>(window, "cboMapFormat")->count());
      // Only looked at: Escape closes it without a question.
      QTest::keyClick(window, Qt::Key_Escape);
    });
    QCOMPARE(seen, QStringList({"Edit Route Map: Billing.hcm", "Type:", "Delimiter", "&Save", "Save &As...", "&Delete",
                                "&Close", "Map from Source", "1", "4", "on", "off", "off", "YYYYMMDD", "53", "on", "on",
                                "Do Not Map", "0"}));
    QCOMPARE(required, QStringList({"RouteNbr(Required)", "Sequence(Required)", "MeterTagNbr(Required)",
                                    "MeterType(Required)", "UtilityCode(Required)", "ServiceAddress(Required)"}));
    QCOMPARE(sequence, QStringList({"Do Not Map", "Map from Source", "Autonumber"}));
    QVERIFY(!map.Dirty());
  }

  void anMvrsRouteMapOffersSpecialRadioProcessing() {
    Site site;
    clsExchMap map = site.Load("Mvrs.hcm", kUseRoute);
    QStringList seen;
    Edit(map, false, [&](QWidget* window) {
      Shot(window, "frmMapEdit-route-mvrs");
      auto* frame = Get<QGroupBox>(window, "fraMVRS");
      auto* check = Get<QCheckBox>(window, "chkMVRS1");
      seen << frame->title() << check->text() << Text(window, "lMVRS") << (check->isChecked() ? "Y" : "N");
      check->click();
      Press(window, "SAVE");
    });
    QCOMPARE(seen, QStringList({"MVRS Options", "Enable Special Radio Processing",
                                "This option cause an 8-digit meter id to be mapped to the transponder id to allow "
                                "automatic meter reading for meters otherwise configured to be read manually.",
                                "Y"}));
    QVERIFY(site.Bytes("Mvrs.hcm").find("MAPOPTIONS=1:N\r\n") != std::string::npos);
  }

  void aReadingMapShowsItsOutputSettings() {
    Site site;
    clsExchMap map = site.Load("Billing.hrm", kUseReading);
    QStringList seen;
    Edit(map, false, [&](QWidget* window) {
      seen << Text(window, "lMapFilter") << Chosen(window, "cboMapFilter") << Text(window, "lMapLength")
           << Text(window, "lMapTerminator") << Chosen(window, "cboMapTerminator") << Chosen(window, "cboMapQuote")
           << Entries(window, "cboMapTerminator").join(" ") << Entries(window, "cboMapFilter").join("|");
      ClickField(window, "ReadingTime");
      seen << Text(window, "lMapAlign") << Text(window, "lMapFormat") << Chosen(window, "cboMapOption")
           << Chosen(window, "cboMapAlign") << Chosen(window, "cboMapPad") << Chosen(window, "cboMapFormat")
           << Entries(window, "cboMapFormat").join(" ");
      for (const char* name : {"txtMapPosition", "txtMapWidth", "txtMapConstant", "cboMapAlign", "lMapAlign",
                               "cboMapPad", "cboMapFormat"}) {
        seen << Flag(window, name);
      }
      Shot(window, "frmMapEdit-reading");
      Press(window, "CLOSE");
    });
    QCOMPARE(seen, QStringList({"Filter:", "All Entries", "Record Length", "Terminator:", "<crlf>", "<none>",
                                "<none> <cr> <lf> <crlf> <null>", "All Entries|Only Readings|Readings/Exceptions|Unread",
                                "Align", "Format", "Write to Destination", "Left", "Spaces", "HHMMSS",
                                "HHMM HH:MM HHMMSS HH:MM:SS", "on", "on", "off", "on", "on", "on", "on"}));
  }

  void closingAFreshMapAsksToSaveIt() {
    Site site;
    clsExchMap map(site.folder);
    map.NewMap("", kUseRoute);
    DesktopShell shell;
    ModalScript script;
    QString icon;
    QList<int> buttons;
    script.Then("frmMapEdit", [](QWidget* window) { Press(window, "CLOSE"); });
    script.Then("messageBox", [&](QWidget* window) {
      auto* box = static_cast<QMessageBox*>(window);
      script.boxes.push_back({box->windowTitle(), box->text()});
      icon = box->icon() == QMessageBox::Question ? "question" : "other";
      for (QAbstractButton* button : box->buttons()) buttons << box->standardButton(button);
      std::sort(buttons.begin(), buttons.end());
      box->button(QMessageBox::Cancel)->click();
    });
    // Cancel leaves the editor open: it is closed again.
    script.Then("frmMapEdit", [](QWidget* window) { Press(window, "CLOSE"); });
    script.Box(QMessageBox::No);
    frmMapEdit editor(shell);
    QCOMPARE(Q(editor.Display(map, true)), "");
    QVERIFY(script.Done());
    QCOMPARE(icon, "question");
    QCOMPARE(buttons, QList<int>({QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel}));
    QVERIFY((script.boxes ==
             std::vector<SeenBox>{{"Mapping Information", "Save Changes?"}, {"Mapping Information", "Save Changes?"}}));
    QVERIFY(!map.Dirty());
    QCOMPARE(editor.windowTitle(), "New Route Map");

    // Yes asks for a name, which must stay a file name.
    map.NewMap("", kUseRoute);
    QString prompt;
    script.Then("frmMapEdit", [](QWidget* window) {
      Choose(window, "cboMapType", "Delimited");
      QTest::keyClick(window, Qt::Key_Escape);
    });
    script.Box(QMessageBox::Yes);
    script.Then("inputBox", [&](QWidget* window) {
      auto* input = static_cast<QInputDialog*>(window);
      prompt = input->windowTitle() + ": " + input->labelText();
      input->setTextValue("a.b/c");
      input->accept();
    });
    QCOMPARE(Q(editor.Display(map, true)), "a_b_c.hcm");
    QVERIFY(script.Done());
    QCOMPARE(prompt, "Save Map: Map Name");
    QCOMPARE(Q(site.Bytes("a_b_c.hcm").substr(0, 39)), "HIF=1.1\r\nMAPNAME=a_b_c.hcm\r\nMAPTYPE=2\r\n");
  }

  void deleteTellsTheCallerToDropTheMap() {
    Site site;
    clsExchMap map = site.Load("BillingCsv.hcm", kUseRoute);
    QCOMPARE(Q(Edit(map, false, [](QWidget* window) { Press(window, "DELETE"); })), "{DELETED}");
    QVERIFY(!std::filesystem::exists(site.folder / "BillingCsv.hcm"));
  }

  // MVRS and E5000 files have layouts of their own: a map switched to one
  // gives up its fields at once (how each kind opens is checked above).
  void mvrsForAReadingMapLeavesNoFieldToChange() {
    Site site;
    clsExchMap map = site.Load("Billing.hrm", kUseReading);
    QList<bool> after;
    const std::string result = Edit(
        map, false,
        [&](QWidget* window) {
          Choose(window, "cboMapType", "MVRS");
          for (const char* name : {"lstMapFields", "cboMapOption", "txtMapPosition", "txtMapWidth", "cboMapAlign"}) {
            after << On(window, name);
          }
          after << Shown(window, "txtMapLength") << Shown(window, "fraMVRS");
          Press(window, "CLOSE");
        },
        {QMessageBox::No});
    QCOMPARE(Q(result), "");
    QCOMPARE(after, QList<bool>({false, false, false, false, false, false, false}));
    QCOMPARE(map.MapType(), kMapMVRS);
  }

  // What the editor saves is what the engine writes for the same changes to
  // the same map from the distribution (EngineChanges).
  void changesSavedAreWhatTheEngineWrites_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("use");
    QTest::addColumn<QStringList>("steps");
    QTest::addRow("route") << "Billing.hcm" << int(kUseRoute)
                           << QStringList{"lstMapFields=Lat", "cboMapOption=Map from Source", "txtMapPosition=190",
                                          "txtMapWidth=12", "lstMapFields=User2", "cboMapOption=Map Constant",
                                          "txtMapConstant=W 1", "lstMapFields=Sequence(Required)",
                                          "cboMapOption=Autonumber", "lstMapFields=LstReadingDate",
                                          "cboMapFormat=MM/DD/YYYY"};
    QTest::addRow("reading") << "Billing.hrm" << int(kUseReading)
                             << QStringList{"cboMapFilter=Readings/Exceptions", "txtMapLength=120",
                                            "cboMapTerminator=<null>", "lstMapFields=ReadingDate",
                                            "cboMapFormat=DD-MM-YYYY", "cboMapAlign=Right", "cboMapPad=Zeros",
                                            "lstMapFields=Signal", "cboMapOption=Write to Destination",
                                            "txtMapPosition=108", "txtMapWidth=3"};
    QTest::addRow("orphan") << "Orphans.hom" << int(kUseOrphan)
                            << QStringList{"cboMapDelimiter=;", "cboMapQuote=\"", "cboMapTerminator=<lf>",
                                           "lstMapFields=TamperCount", "cboMapOption=Do Not Map"};
  }
  void changesSavedAreWhatTheEngineWrites() {
    QFETCH(QString, name);
    QFETCH(int, use);
    QFETCH(QStringList, steps);
    const std::string file = name.toStdString();
    Site edited, engine;
    clsExchMap map = edited.Load(file, use);
    const std::string distributed = edited.Bytes(file);
    bool dirty = false;
    const std::string saved = Edit(map, false, [&](QWidget* window) {
      Steps(window, steps);
      dirty = map.Dirty();
      Press(window, "SAVE");
    });
    QCOMPARE(Q(saved), name);
    QVERIFY(dirty);
    QVERIFY(!map.Dirty());

    clsExchMap reference = engine.Load(file, use);
    EngineChanges(reference);
    QVERIFY(reference.SaveMap());
    QCOMPARE(Q(edited.Bytes(file)), Q(engine.Bytes(file)));
    QVERIFY(engine.Bytes(file) != distributed);
  }

 private:
  TempDir config_;
};

}  // namespace hifx::test

QTEST_MAIN(hifx::test::MapEditTest)
#include "MapEditTest.moc"
