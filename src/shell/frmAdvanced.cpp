#include "shell/frmAdvanced.h"

#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include "shell/Dialogs.h"
#include "shell/frmAdvRecord.h"

namespace hifx::shell {
namespace {

constexpr int kListTabs = 6;

QLabel* Heading(const char* text) {
  auto* label = new QLabel(text);
  label->setWordWrap(true);
  return label;
}

QComboBox* Choices(const char* name, const std::vector<const char*>& items, int chosen) {
  auto* box = new QComboBox;
  box->setObjectName(name);
  for (const char* item : items) box->addItem(item);
  box->setCurrentIndex(chosen >= 0 && chosen < box->count() ? chosen : 0);
  return box;
}

const std::vector<const char*> kAlerts = {"No Alert", "Beep", "Popup Message!"};

}  // namespace

frmAdvanced::frmAdvanced(clsAdvanced& advanced, std::vector<std::string> units, QWidget* parent)
    : QDialog(parent), advanced_(advanced), units_(std::move(units)), tbsOptions_(new QTabWidget) {
  setObjectName("frmAdvanced");
  setWindowTitle("Advanced");
  tabs_.reserve(kListTabs);
  tbsOptions_->setObjectName("tbsOptions");
  const std::vector<std::tuple<QWidget*, const char*, const char*>> pages = {
      {LoginsTab(), "Logins", "Setup handheld and desktop security"},
      {MessagesTab(), "Messages", "Configure informational messages by meter"},
      {ChangeoutsTab(), "Changeouts", "Setup code tables for meter changeouts"},
      {SkipsTab(), "Skip Codes", "Setup feedback messages for handhelds"},
      {IndexTab(), "Index", "Specify which words to skip during index preparation."},
      {FavoritesTab(), "Favorites", "Specify HIF file locations by handheld unit."},
      {PrefsTab(), "Prefs", "Operational Preferences"},
  };
  for (const auto& [page, caption, tip] : pages) {
    const int at = tbsOptions_->addTab(page, caption);
    tbsOptions_->setTabToolTip(at, tip);
  }
  connect(tbsOptions_, &QTabWidget::currentChanged, this, &frmAdvanced::tbsOptions_Click);
  auto* close = new QPushButton("Close");
  close->setObjectName("btnClose");
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tbsOptions_);
  layout->addWidget(close, 0, Qt::AlignRight);
  resize(560, 420);
  loading_ = false;
  tbsOptions_Click(0);
}

void frmAdvanced::done(int result) {
  // What the window changed reaches the store when it closes.
  advanced_.SaveValues();
  QDialog::done(result);
}

frmAdvanced::ListTab& frmAdvanced::AddListTab(SiteList list, const char* name, const char* prefix,
                                              QVBoxLayout* layout) {
  auto* rows = new QTreeWidget;
  rows->setObjectName(name);
  rows->setColumnCount(2);
  rows->setHeaderHidden(true);
  rows->setRootIsDecorated(false);
  rows->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  auto* add = new QPushButton("Add");
  add->setObjectName(QString("btn%1Add").arg(prefix));
  auto* edit = new QPushButton("Edit");
  edit->setObjectName(QString("btn%1Edit").arg(prefix));
  tabs_.push_back({list, rows, edit, nullptr, {}});
  const size_t at = tabs_.size() - 1;
  connect(rows, &QTreeWidget::itemSelectionChanged, this,
          [this, at] { tabs_[at].edit->setEnabled(!tabs_[at].rows->selectedItems().isEmpty()); });
  connect(rows, &QTreeWidget::itemDoubleClicked, this, [this, at] { OpenRecord(tabs_[at], false); });
  connect(add, &QPushButton::clicked, this, [this, at] { OpenRecord(tabs_[at], true); });
  connect(edit, &QPushButton::clicked, this, [this, at] { OpenRecord(tabs_[at], false); });
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(add);
  buttons->addWidget(edit);
  layout->addWidget(rows);
  layout->addLayout(buttons);
  return tabs_.back();
}

void frmAdvanced::AddTypeButtons(ListTab& tab, const char* name,
                                 const std::vector<std::pair<const char*, const char*>>& types, QVBoxLayout* layout) {
  tab.types = new QButtonGroup(this);
  auto* row = new QHBoxLayout;
  int id = 0;
  for (const auto& [caption, word] : types) {
    auto* option = new QRadioButton(caption);
    option->setObjectName(QString("%1%2").arg(name).arg(id));
    tab.types->addButton(option, id++);
    tab.typeWords.emplace_back(word);
    row->addWidget(option);
  }
  row->addStretch();
  layout->addLayout(row);
  ListTab* list = &tab;
  connect(tab.types, &QButtonGroup::idClicked, this, [this, list] { Fill(*list); });
}

QWidget* frmAdvanced::LoginsTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* chkLogin = new QCheckBox("Use Login Security");
  chkLogin->setObjectName("chkLogin");
  chkLogin->setChecked(advanced_.UseLoginSecurity());
  connect(chkLogin, &QCheckBox::toggled, this, [this](bool on) { advanced_.UseLoginSecurity(on); });
  layout->addWidget(chkLogin);
  AddListTab(SiteList::Logins, "lstLogins", "Logins", layout);
  return page;
}

QWidget* frmAdvanced::MessagesTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Heading("Define message to appear on the handheld when certain meters or accounts are being read."));
  // The list goes in first, so that the option buttons find it.
  auto* options = new QVBoxLayout;
  layout->addLayout(options);
  ListTab& tab = AddListTab(SiteList::Messages, "lstMessages", "Messages", layout);
  AddTypeButtons(tab, "optMessageType",
                 {{"Account Number", "Account"}, {"Meter Serial Nbr", "SerialNbr"}, {"Meter Tag Nbr", "TagNbr"}},
                 options);
  return page;
}

QWidget* frmAdvanced::ChangeoutsTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Heading("Define codes to be used for meter changeouts."));
  auto* options = new QVBoxLayout;
  layout->addLayout(options);
  ListTab& tab = AddListTab(SiteList::Changeouts, "lstChangeouts", "Changeouts", layout);
  AddTypeButtons(tab, "optChangeouts",
                 {{"Change Reasons", "RC"}, {"Meter Types", "MT"}, {"Manufacturers", "MFG"}, {"Meter Sizes", "MS"}},
                 options);
  return page;
}

QWidget* frmAdvanced::SkipsTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Heading("Define reasons for not reading a meter."));
  AddListTab(SiteList::Skips, "lstSkips", "Skips", layout);
  return page;
}

QWidget* frmAdvanced::IndexTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* control = new QFormLayout;
  QComboBox* cboIndex = Choices(
      "cboIndex", {"Don't create indexes", "Always create indexes", "Prompt during route creation!"},
      advanced_.IndexControl());
  connect(cboIndex, &QComboBox::currentIndexChanged, this,
          [this](int chosen) { advanced_.IndexControl(static_cast<int16_t>(chosen)); });
  control->addRow("Index Control", cboIndex);
  layout->addLayout(control);
  auto* frame = new QGroupBox("Excluded Words/Tokens");
  auto* inFrame = new QVBoxLayout(frame);
  auto* options = new QVBoxLayout;
  inFrame->addLayout(options);
  ListTab& tab = AddListTab(SiteList::Tokens, "lstTokens", "Tokens", inFrame);
  AddTypeButtons(tab, "optToken", {{"Address Index", "Address"}, {"Owner Index", "Owner"}}, options);
  layout->addWidget(frame);
  return page;
}

QWidget* frmAdvanced::FavoritesTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  chkFavorite_ = new QCheckBox("Use Favorites to select readings file by handheld unit.");
  chkFavorite_->setObjectName("chkFavorite");
  chkFavorite_->setChecked(advanced_.UseFavorite());
  connect(chkFavorite_, &QCheckBox::toggled, this, [this](bool on) {
    if (!loading_) advanced_.UseFavorite(on);
  });
  layout->addWidget(chkFavorite_);
  AddListTab(SiteList::Favorites, "lstFavorites", "Favorites", layout);
  return page;
}

QWidget* frmAdvanced::PrefsTab() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* frame = new QGroupBox("Alerts");
  auto* form = new QFormLayout(frame);
  const std::vector<std::tuple<const char*, const char*, int16_t, void (clsAdvanced::*)(int16_t)>> alerts = {
      {"cboAlertBounds", "Outside expected range", advanced_.AlertOutOfBounds(), &clsAdvanced::AlertOutOfBounds},
      {"cboAlertRollover", "Rollover", advanced_.AlertRollover(), &clsAdvanced::AlertRollover},
      {"cboAlertTamper", "Tamper", advanced_.AlertTamper(), &clsAdvanced::AlertTamper},
  };
  for (const auto& [name, caption, value, set] : alerts) {
    QComboBox* box = Choices(name, kAlerts, value);
    connect(box, &QComboBox::currentIndexChanged, this,
            [this, set = set](int chosen) { (advanced_.*set)(static_cast<int16_t>(chosen)); });
    form->addRow(caption, box);
  }
  layout->addWidget(frame);
  layout->addStretch();
  return page;
}

void frmAdvanced::tbsOptions_Click(int index) {
  if (loading_) return;
  QWidget* page = tbsOptions_->widget(index);
  for (ListTab& tab : tabs_) {
    if (!page->isAncestorOf(tab.rows)) continue;
    // The first showing of a tab with option buttons chooses the first.
    if (tab.types != nullptr && tab.types->checkedId() < 0) tab.types->button(0)->setChecked(true);
    Fill(tab);
  }
}

std::string frmAdvanced::TypeOf(const ListTab& tab) const {
  if (tab.types == nullptr || tab.types->checkedId() < 0) return {};
  return tab.typeWords[static_cast<size_t>(tab.types->checkedId())];
}

void frmAdvanced::Fill(ListTab& tab) {
  if (tab.list == SiteList::Favorites) {
    FillFavorites();
    return;
  }
  tab.rows->clear();
  for (const ListRow& row : ListRows(advanced_, tab.list, TypeOf(tab))) {
    auto* item = new QTreeWidgetItem(tab.rows, ToQt(row.shown).split('\t'));
    item->setData(0, Qt::UserRole, ToQt(row.key));
  }
  tab.edit->setEnabled(false);
}

void frmAdvanced::FillFavorites() {
  ListTab& tab = tabs_.back();
  tab.rows->clear();
  for (const ListRow& row : FavoriteTabRows(advanced_, units_)) {
    auto* item = new QTreeWidgetItem(tab.rows, ToQt(row.shown).split('\t'));
    item->setData(0, Qt::UserRole, ToQt(row.key));
  }
  tab.edit->setEnabled(false);
  // Favourites need a path to offer; without one they are turned off.
  const bool usable = AnyFavoritePath(advanced_);
  loading_ = true;
  if (!usable) {
    chkFavorite_->setChecked(false);
    advanced_.UseFavorite(false);
  }
  chkFavorite_->setEnabled(usable);
  chkFavorite_->setText(QString("Use Favorites to select readings file by handheld unit.") +
                        (usable ? "" : "(Define some paths first)"));
  loading_ = false;
}

void frmAdvanced::OpenRecord(ListTab& tab, bool adding) {
  std::string key;
  if (!adding) {
    const QList<QTreeWidgetItem*> chosen = tab.rows->selectedItems();
    if (chosen.isEmpty()) return;
    key = FromQt(chosen.first()->data(0, Qt::UserRole).toString());
  }
  frmAdvRecord dialog(advanced_, tab.list, TypeOf(tab), this);
  // A unit offered without a favourite of its own is added, not edited.
  const bool stored = adding || !RecordValues(advanced_, tab.list, TypeOf(tab), key).at(0).empty();
  dialog.Display(key, stored && !adding ? "Edit" : "Add");
  Fill(tab);
}

}  // namespace hifx::shell
