#include "shell/frmOptions.h"

#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include "maps/clsExchMap.h"
#include "shell/Dialogs.h"
#include "shell/Placement.h"
#include "shell/SetupLogic.h"
#include "shell/frmMapEdit.h"

namespace hifx::shell {
namespace {

// The settings each panel edits.
struct PanelSettings {
  std::string clsExchange::*source;
  std::string clsExchange::*destination;
  std::string clsExchange::*map;
  std::string clsExchange::*hifType;
};
const std::array<PanelSettings, 4> kPanelSettings = {{
    {&clsExchange::RouteSource, &clsExchange::RouteDestination, &clsExchange::RouteMap, &clsExchange::RouteHIFType},
    {&clsExchange::ReReadSource, &clsExchange::ReReadDestination, &clsExchange::ReReadMap, &clsExchange::ReReadHIFType},
    {&clsExchange::ReadingSource, &clsExchange::ReadingDestination, &clsExchange::ReadingMap, nullptr},
    {nullptr, &clsExchange::OrphanDestination, &clsExchange::OrphanMap, nullptr},
}};

QRadioButton* Option(QButtonGroup* group, int id, const char* name, const char* caption, const char* tip = nullptr) {
  auto* option = new QRadioButton(caption);
  option->setObjectName(name);
  if (tip != nullptr) option->setToolTip(tip);
  group->addButton(option, id);
  return option;
}

}  // namespace

frmOptions::frmOptions(clsExchange& exchange, IShell& shell, IUserSettings& settings, std::vector<std::string> units,
                       QWidget* parent)
    : QDialog(parent), exchange_(exchange), shell_(shell), settings_(settings), units_(std::move(units)),
      tbsOptions_(new QTabWidget),
      panels_{Panel{kUseRoute}, Panel{kUseReRead}, Panel{kUseReading}, Panel{kUseOrphan}} {
  setObjectName("frmOptions");
  setWindowTitle("Setup");
  tbsOptions_->setObjectName("tbsOptions");
  const std::vector<std::tuple<QWidget*, const char*, const char*>> tabs = {
      {RoutePanel(panels_[0], "Route Source:"), "Route Conversion", "Specify Source for Creating HIF file"},
      {RoutePanel(panels_[1], "Re-Read Source:"), "Re-Read Conversion", "Input Transponder IDs for Re-Reads"},
      {ReadingTab(), "Reading Conversion", "Specify Conversions for Meter Readings"},
      {InstallTab(), "PRC/PDB Installation", "Handling of PRC/PDB files"},
  };
  for (const auto& [page, caption, tip] : tabs) {
    const int at = tbsOptions_->addTab(page, caption);
    tbsOptions_->setTabToolTip(at, tip);
  }
  auto* ok = new QPushButton("OK");
  ok->setObjectName("cmdOK");
  ok->setDefault(true);
  cmdApply_ = new QPushButton("Apply");
  cmdApply_->setObjectName("cmdApply");
  auto* cancel = new QPushButton("Cancel");
  cancel->setObjectName("cmdCancel");
  connect(ok, &QPushButton::clicked, this, [this] {
    cmdApply_Click();
    accept();
  });
  connect(cmdApply_, &QPushButton::clicked, this, &frmOptions::cmdApply_Click);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  buttons->addWidget(cmdApply_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tbsOptions_);
  layout->addLayout(buttons);
  resize(600, 430);
  Form_Load();
}

QLineEdit* frmOptions::FileRow(Panel& panel, bool destination, const char* label, QFormLayout* form) {
  const int index = static_cast<int>(&panel - panels_.data());
  auto* box = new QLineEdit;
  box->setObjectName(QString(destination ? "txtDestination%1" : "txtSource%1").arg(index));
  auto* browse = new QToolButton;
  browse->setObjectName(QString(destination ? "btnDestination%1" : "btnSource%1").arg(index));
  browse->setText("...");
  connect(browse, &QToolButton::clicked, this, [this, &panel, destination] { PickFile(panel, destination); });
  auto* row = new QHBoxLayout;
  row->addWidget(box);
  row->addWidget(browse);
  form->addRow(label, row);
  return box;
}

void frmOptions::MappingRow(Panel& panel, QFormLayout* form) {
  const int index = static_cast<int>(&panel - panels_.data());
  panel.mapping = new QComboBox;
  panel.mapping->setObjectName(QString("cboMapping%1").arg(index));
  panel.mapping->setMinimumWidth(180);
  auto* edit = new QPushButton("Edit...");
  edit->setObjectName(QString("btnEditMap%1").arg(index));
  auto* fresh = new QPushButton("New...");
  fresh->setObjectName(QString("btnNewMap%1").arg(index));
  connect(edit, &QPushButton::clicked, this, [this, &panel] { EditMap(panel, false); });
  connect(fresh, &QPushButton::clicked, this, [this, &panel] { EditMap(panel, true); });
  auto* row = new QHBoxLayout;
  row->addWidget(panel.mapping, 1);
  row->addWidget(edit);
  row->addWidget(fresh);
  form->addRow("Mapping:", row);
}

QWidget* frmOptions::RoutePanel(Panel& panel, const char* sourceLabel) {
  const int index = static_cast<int>(&panel - panels_.data());
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  panel.source = FileRow(panel, false, sourceLabel, form);
  panel.destination = FileRow(panel, true, "Destination HIF:", form);
  MappingRow(panel, form);
  panel.hifType = new QComboBox;
  panel.hifType->setObjectName(QString("cboHIFType%1").arg(index));
  for (const char* text : kHIFTypeTexts) panel.hifType->addItem(text);
  form->addRow("HIF Format:", panel.hifType);
  return page;
}

QWidget* frmOptions::ReadingTab() {
  Panel& reading = panels_[2];
  Panel& orphans = panels_[3];
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* form = new QFormLayout;
  reading.source = FileRow(reading, false, "Source HIF:", form);
  reading.destination = FileRow(reading, true, "Destination File:", form);
  MappingRow(reading, form);
  layout->addLayout(form);
  chkAutoReread_ = new QCheckBox("Generate Re-Read file for Exceptions");
  chkAutoReread_->setObjectName("chkAutoReread");
  connect(chkAutoReread_, &QCheckBox::toggled, this, [this](bool on) {
    if (loading_ || !on || !panels_[1].destination->text().trimmed().isEmpty()) return;
    shell_.MsgBox("Specify the Re-Read destination file in the Re-Read Panel", "Notice", MsgButtons::OK,
                  MsgIcon::None);
  });
  layout->addWidget(chkAutoReread_);
  chkOrphanConvert_ = new QCheckBox("Write Orphans to File");
  chkOrphanConvert_->setObjectName("chkOrphanConvert");
  connect(chkOrphanConvert_, &QCheckBox::toggled, this, &frmOptions::chkOrphanConvert_Click);
  layout->addWidget(chkOrphanConvert_);
  fraOrphans_ = new QGroupBox("Orphans");
  fraOrphans_->setObjectName("fraOrphans");
  auto* inFrame = new QVBoxLayout(fraOrphans_);
  auto* orphanForm = new QFormLayout;
  orphans.destination = FileRow(orphans, true, "Destination File:", orphanForm);
  MappingRow(orphans, orphanForm);
  inFrame->addLayout(orphanForm);
  optOrphanReplace_ = new QButtonGroup(this);
  inFrame->addWidget(Option(optOrphanReplace_, 0, "optOrphanReplace0",
                            "Create or append to file (continues to grow until deleted)"));
  inFrame->addWidget(Option(optOrphanReplace_, 1, "optOrphanReplace1",
                            "Replace file each time readings are processed (may lose data)"));
  layout->addWidget(fraOrphans_);
  layout->addStretch();
  return page;
}

QWidget* frmOptions::InstallTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  optInstallPRC_ = new QButtonGroup(this);
  layout->addWidget(Option(optInstallPRC_, 0, "optInstallPRC0", "Install the PRC/PDB ready for hotsync.",
                           "Copy the created route file to the install directory for a handheld unit."));
  layout->addWidget(Option(optInstallPRC_, 1, "optInstallPRC1", "Just write the PRC/PDB file.",
                           "The file is left in the destination directory.  You must manually install it onto a "
                           "handheld."));
  lstUnits_ = new QListWidget;
  lstUnits_->setObjectName("lstUnits");
  auto* unitsLabel = new QLabel("Handheld unit to install to:");
  unitsLabel->setBuddy(lstUnits_);
  layout->addWidget(unitsLabel);
  for (const std::string& unit : units_) lstUnits_->addItem(ToQt(unit));
  layout->addWidget(lstUnits_);
  chkPrompt_ = new QCheckBox("Prompt during Route HIF Creation");
  chkPrompt_->setObjectName("chkPrompt");
  chkPrompt_->setToolTip("If checked, the choice of the Destination Handheld is made during Route HIF creation.");
  chkLeave_ = new QCheckBox("Keep copy in destination folder.");
  chkLeave_->setObjectName("chkLeave");
  chkLeave_->setToolTip("Check to leave copy of Route HIF file in destination.");
  layout->addWidget(chkPrompt_);
  layout->addWidget(chkLeave_);
  // These four take effect at once, without Apply, and Cancel keeps them for
  // the rest of the run: the settings store gets them at the next save.
  connect(optInstallPRC_, &QButtonGroup::idClicked, this, [this] {
    if (!loading_) exchange_.AutoInstall = optInstallPRC_->checkedId() == 0;
    optInstallPRC_Click();
  });
  connect(lstUnits_, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { exchange_.AutoInstallUnit = FromQt(item->text()); });
  connect(chkPrompt_, &QCheckBox::toggled, this, [this](bool on) {
    if (!loading_) exchange_.AutoInstallPrompt = on;
  });
  connect(chkLeave_, &QCheckBox::toggled, this, [this](bool on) {
    if (!loading_) exchange_.AutoInstallLeave = on;
  });
  return page;
}

void frmOptions::Form_Load() {
  loading_ = true;
  for (size_t i = 0; i < panels_.size(); ++i) {
    Panel& panel = panels_[i];
    const PanelSettings& from = kPanelSettings[i];
    if (panel.source != nullptr) panel.source->setText(ToQt(exchange_.*from.source));
    panel.destination->setText(ToQt(exchange_.*from.destination));
    if (panel.hifType != nullptr) panel.hifType->setCurrentIndex(HIFTypePosition(exchange_.*from.hifType));
    ReloadChoices(panel, exchange_.*from.map);
  }
  chkAutoReread_->setChecked(exchange_.AutoReRead);
  chkOrphanConvert_->setChecked(exchange_.OrphanConvert != 0);
  optOrphanReplace_->button(exchange_.OrphanReplace != 0 ? 1 : 0)->setChecked(true);
  optInstallPRC_->button(exchange_.AutoInstall ? 0 : 1)->setChecked(true);
  // A stored unit no longer known selects nothing, and stays stored.
  const auto found = lstUnits_->findItems(ToQt(exchange_.AutoInstallUnit), Qt::MatchFixedString);
  if (!found.isEmpty()) lstUnits_->setCurrentItem(found.first());
  chkPrompt_->setChecked(exchange_.AutoInstallPrompt);
  chkLeave_->setChecked(exchange_.AutoInstallLeave);
  tbsOptions_->setCurrentIndex(0);
  chkOrphanConvert_Click();
  optInstallPRC_Click();
  cmdApply_->setEnabled(true);
  const PlacementPlan plan = LoadPlacement(settings_, "frmOptions", false);
  if (plan.left || plan.top) move(plan.left.value_or(x()), plan.top.value_or(y()));
  loading_ = false;
}

void frmOptions::done(int result) {
  SavePlacement(settings_, "frmOptions", isMaximized() ? WindowState::Maximized : WindowState::Normal,
                {y(), x(), height(), width()});
  QDialog::done(result);
}

void frmOptions::ReloadChoices(Panel& panel, const std::string& wanted) {
  panel.mapping->clear();
  for (const std::string& name : MapChoices(exchange_.Environment().siteFolder, panel.use)) {
    panel.mapping->addItem(ToQt(name));
  }
  panel.mapping->setCurrentIndex(panel.mapping->findText(ToQt(wanted), Qt::MatchFixedString));
}

void frmOptions::PickFile(Panel& panel, bool destination) {
  QLineEdit* box = destination ? panel.destination : panel.source;
  // Route and re-read files are made as handheld files; the reading
  // conversion reads one.
  const bool interchange = (destination && panel.hifType != nullptr) || (!destination && panel.use == kUseReading);
  FileDialogRequest request{ToQt(TypeDescr(panel.use)), interchange ? kInterchangeFilter : kAnyFileFilter,
                      ToQt(DefaultFileExtension(panel.use)), box->text(),
                      interchange ? InterchangeFilterIndex(PathFromQt(box->text())) : 0};
  const auto file = destination ? SaveFileDialog(this, request) : OpenFileDialog(this, request);
  if (file) box->setText(PathToQt(*file));
}

void frmOptions::EditMap(Panel& panel, bool isNew) {
  clsExchMap map(exchange_.Environment().siteFolder);
  const std::string chosen = FromQt(panel.mapping->currentText());
  if (isNew || chosen.empty()) {
    map.NewMap("", panel.use);
  } else {
    map.LoadMap(chosen + MapExtension(panel.use), panel.use);
  }
  frmMapEdit editor(shell_, this);
  const std::string result = editor.Display(map, isNew || chosen.empty());
  if (result.empty()) return;
  ReloadChoices(panel, MapChoiceOf(result));
}

void frmOptions::chkOrphanConvert_Click() { fraOrphans_->setEnabled(chkOrphanConvert_->isChecked()); }

void frmOptions::optInstallPRC_Click() {
  const bool install = optInstallPRC_->checkedId() == 0;
  chkLeave_->setEnabled(install);
  chkPrompt_->setEnabled(install);
  lstUnits_->setEnabled(install);
}

void frmOptions::cmdApply_Click() {
  for (size_t i = 0; i < panels_.size(); ++i) {
    const Panel& panel = panels_[i];
    const PanelSettings& to = kPanelSettings[i];
    if (panel.source != nullptr) exchange_.*to.source = FromQt(panel.source->text());
    exchange_.*to.destination = FromQt(panel.destination->text());
    exchange_.*to.map = FromQt(panel.mapping->currentText());
    if (panel.hifType != nullptr) exchange_.*to.hifType = HIFTypeWord(panel.hifType->currentIndex());
    if (i == 2) exchange_.AutoReRead = chkAutoReread_->isChecked();
  }
  exchange_.OrphanConvert = chkOrphanConvert_->isChecked() ? -1 : 0;
  exchange_.OrphanReplace = optOrphanReplace_->checkedId() == 1 ? -1 : 0;
  exchange_.AutoInstall = optInstallPRC_->checkedId() == 0;
  if (QListWidgetItem* unit = lstUnits_->currentItem()) exchange_.AutoInstallUnit = FromQt(unit->text());
  exchange_.AutoInstallPrompt = chkPrompt_->isChecked();
  exchange_.AutoInstallLeave = chkLeave_->isChecked();
  exchange_.SaveSettings();
  // Nothing enables Apply again while the window is open; OK still saves.
  cmdApply_->setEnabled(false);
}

}  // namespace hifx::shell
