#include "shell/frmMapEdit.h"

#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

#include "shell/Dialogs.h"

namespace hifx::shell {
namespace {

QLabel* Label(const char* name, const char* caption, QWidget* buddy) {
  auto* label = new QLabel(caption);
  label->setObjectName(name);
  label->setBuddy(buddy);
  return label;
}

QComboBox* List(const char* name, bool editable = false) {
  auto* list = new QComboBox;
  list->setObjectName(name);
  list->setEditable(editable);
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  return list;
}

// Position, width and length boxes take digits only.
QLineEdit* NumberBox(const char* name) {
  auto* box = new QLineEdit;
  box->setObjectName(name);
  box->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]{0,5}"), box));
  box->setMaximumWidth(box->fontMetrics().horizontalAdvance("000000") + 16);
  return box;
}

void NewItem(QComboBox* list, const std::string& text, int32_t itemData, bool clear) {
  if (clear) list->clear();
  list->addItem(ToQt(text), itemData);
}

void Fill(QComboBox* list, const MapList& items) {
  list->clear();
  for (const MapListItem& item : items) NewItem(list, item.text, item.data, false);
}

void Fill(QComboBox* list, const std::vector<std::string>& texts) {
  list->clear();
  for (const std::string& text : texts) list->addItem(ToQt(text));
}

// Selects the first entry of the code; none when the list has no such code.
void Select(QComboBox* list, int32_t code) { list->setCurrentIndex(list->findData(code)); }

// An editable list shows what the map holds, whether or not it is an entry.
void SelectText(QComboBox* list, const std::string& text) {
  const int at = list->findText(ToQt(text), Qt::MatchExactly);
  list->setCurrentIndex(at);
  if (at < 0) list->setEditText(ToQt(text));
}

void Enable(bool on, std::initializer_list<QWidget*> controls) {
  for (QWidget* control : controls) control->setEnabled(on);
}

void Show(bool on, std::initializer_list<QWidget*> controls) {
  for (QWidget* control : controls) control->setVisible(on);
}

}  // namespace

frmMapEdit::frmMapEdit(IShell& shell, QWidget* parent)
    : QDialog(parent),
      shell_(shell),
      cboMapType_(List("cboMapType")),
      cboMapFilter_(List("cboMapFilter")),
      cboMapDelimiter_(List("cboMapDelimiter", true)),
      cboMapQuote_(List("cboMapQuote", true)),
      txtMapLength_(NumberBox("txtMapLength")),
      cboMapTerminator_(List("cboMapTerminator")),
      fraMVRS_(new QGroupBox("MVRS Options")),
      chkMVRS1_(new QCheckBox("Enable Special Radio Processing")),
      lMVRS_(new QLabel(
          "This option cause an 8-digit meter id to be mapped to the transponder id to allow automatic meter "
          "reading for meters otherwise configured to be read manually.")),
      lstMapFields_(new QListWidget),
      cboMapOption_(List("cboMapOption")),
      txtMapPosition_(NumberBox("txtMapPosition")),
      txtMapWidth_(NumberBox("txtMapWidth")),
      txtMapConstant_(new QLineEdit),
      cboMapAlign_(List("cboMapAlign")),
      cboMapPad_(List("cboMapPad")),
      cboMapFormat_(List("cboMapFormat")),
      lMapType_(Label("lMapType", "Type:", cboMapType_)),
      lMapFilter_(Label("lMapFilter", "Filter:", cboMapFilter_)),
      lMapDelimiter_(Label("lMapDelimiter", "Delimiter", cboMapDelimiter_)),
      lMapQuote_(Label("lMapQuote", "Quote", cboMapQuote_)),
      lMapLength_(Label("lMapLength", "Record Length", txtMapLength_)),
      lMapTerminator_(Label("lMapTerminator", "Terminator:", cboMapTerminator_)),
      lMapFields_(Label("lMapFields", "Fields", lstMapFields_)),
      lMapOption_(Label("lMapOption", "Mapping", cboMapOption_)),
      lMapPosition_(Label("lMapPosition", "Column", txtMapPosition_)),
      lMapWidth_(Label("lMapWidth", "Width", txtMapWidth_)),
      lMapConstant_(Label("lMapConstant", "Constant", txtMapConstant_)),
      lMapAlign_(Label("lMapAlign", "Align", cboMapAlign_)),
      lMapPad_(Label("lMapPad", "Pad", cboMapPad_)),
      lMapFormat_(Label("lMapFormat", "Format", cboMapFormat_)) {
  setObjectName("frmMapEdit");
  fraMVRS_->setObjectName("fraMVRS");
  chkMVRS1_->setObjectName("chkMVRS1");
  lMVRS_->setObjectName("lMVRS");
  lMVRS_->setWordWrap(true);
  lstMapFields_->setObjectName("lstMapFields");
  txtMapConstant_->setObjectName("txtMapConstant");
  for (QComboBox* list : {cboMapType_, cboMapFilter_, cboMapTerminator_, cboMapOption_, cboMapFormat_}) {
    list->setMinimumContentsLength(20);
  }
  for (QComboBox* list : {cboMapDelimiter_, cboMapQuote_, cboMapAlign_, cboMapPad_}) list->setMinimumContentsLength(8);

  auto* header = new QGridLayout;
  header->addWidget(lMapType_, 0, 0);
  header->addWidget(cboMapType_, 0, 1);
  header->addWidget(lMapFilter_, 0, 2);
  header->addWidget(cboMapFilter_, 0, 3);
  header->addWidget(lMapDelimiter_, 1, 0);
  header->addWidget(cboMapDelimiter_, 1, 1, Qt::AlignLeft);
  header->addWidget(lMapQuote_, 1, 2);
  header->addWidget(cboMapQuote_, 1, 3, Qt::AlignLeft);
  header->addWidget(lMapLength_, 2, 0);
  header->addWidget(txtMapLength_, 2, 1, Qt::AlignLeft);
  header->addWidget(lMapTerminator_, 2, 2);
  header->addWidget(cboMapTerminator_, 2, 3);
  header->setColumnStretch(1, 1);
  header->setColumnStretch(3, 1);

  auto* mvrs = new QVBoxLayout(fraMVRS_);
  mvrs->addWidget(chkMVRS1_);
  mvrs->addWidget(lMVRS_);

  auto* field = new QGridLayout;
  field->addWidget(lMapOption_, 0, 0);
  field->addWidget(cboMapOption_, 0, 1, 1, 3);
  field->addWidget(lMapPosition_, 1, 0);
  field->addWidget(txtMapPosition_, 1, 1);
  field->addWidget(lMapWidth_, 1, 2);
  field->addWidget(txtMapWidth_, 1, 3);
  field->addWidget(lMapConstant_, 2, 0);
  field->addWidget(txtMapConstant_, 2, 1, 1, 3);
  field->addWidget(lMapAlign_, 3, 0);
  field->addWidget(cboMapAlign_, 3, 1);
  field->addWidget(lMapPad_, 3, 2);
  field->addWidget(cboMapPad_, 3, 3);
  field->addWidget(lMapFormat_, 4, 0);
  field->addWidget(cboMapFormat_, 4, 1, 1, 3);
  field->setRowStretch(5, 1);
  field->setColumnStretch(3, 1);

  auto* fields = new QVBoxLayout;
  fields->addWidget(lMapFields_);
  fields->addWidget(lstMapFields_, 1);
  auto* body = new QHBoxLayout;
  body->addLayout(fields);
  body->addLayout(field, 1);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  struct Button {
    const char* key;
    const char* caption;
  };
  for (const Button& b : {Button{"SAVE", "&Save"}, Button{"SAVEAS", "Save &As..."}, Button{"DELETE", "&Delete"},
                          Button{"CLOSE", "&Close"}}) {
    auto* button = new QPushButton(b.caption);
    button->setObjectName(QString("btnAction") + b.key);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, key = std::string(b.key)] { Finish(actions_->Action(key)); });
    buttons->addWidget(button);
  }

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(header);
  layout->addWidget(fraMVRS_);
  layout->addLayout(body, 1);
  layout->addLayout(buttons);

  connect(cboMapType_, &QComboBox::currentIndexChanged, this, [this] { cboMapType_Click(); });
  connect(cboMapFilter_, &QComboBox::currentIndexChanged, this,
          [this] { Store([this] { map_->SetMapFilter(cboMapFilter_->currentData().toInt()); }); });
  connect(cboMapTerminator_, &QComboBox::currentIndexChanged, this,
          [this] { Store([this] { map_->SetMapTerminator(cboMapTerminator_->currentData().toInt()); }); });
  connect(txtMapLength_, &QLineEdit::textChanged, this,
          [this](const QString& text) { Store([&] { map_->SetMapLength(MapNumber(FromQt(text))); }); });
  // Typed or chosen, the delimiter and the quote are stored as their text.
  connect(cboMapDelimiter_, &QComboBox::currentTextChanged, this,
          [this](const QString& text) { Store([&] { map_->SetMapDelimiter(FromQt(text)); }); });
  connect(cboMapQuote_, &QComboBox::currentTextChanged, this,
          [this](const QString& text) { Store([&] { map_->SetMapQuote(FromQt(text)); }); });
  connect(chkMVRS1_, &QCheckBox::toggled, this,
          [this](bool on) { Store([&] { map_->SetMapOptions(1, on ? "Y" : "N"); }); });
  connect(lstMapFields_, &QListWidget::currentRowChanged, this, [this] { lstMapFields_Click(); });
  connect(cboMapOption_, &QComboBox::currentIndexChanged, this, [this] { cboMapOption_Click(); });
  connect(txtMapPosition_, &QLineEdit::textChanged, this,
          [this](const QString& text) { Store([&] { map_->SetDataPosition(field_, MapNumber(FromQt(text))); }); });
  connect(txtMapWidth_, &QLineEdit::textChanged, this,
          [this](const QString& text) { Store([&] { map_->SetDataWidth(field_, MapNumber(FromQt(text))); }); });
  connect(txtMapConstant_, &QLineEdit::textChanged, this,
          [this](const QString& text) { Store([&] { map_->SetMapConstant(field_, FromQt(text)); }); });
  connect(cboMapAlign_, &QComboBox::currentIndexChanged, this,
          [this] { Store([this] { map_->SetMapAlign(field_, cboMapAlign_->currentData().toInt()); }); });
  connect(cboMapPad_, &QComboBox::currentIndexChanged, this,
          [this] { Store([this] { map_->SetMapPad(field_, cboMapPad_->currentData().toInt()); }); });
  connect(cboMapFormat_, &QComboBox::currentIndexChanged, this,
          [this] { Store([this] { map_->SetMapFormat(field_, cboMapFormat_->currentData().toInt()); }); });
}

template <typename Write>
void frmMapEdit::Store(Write write) {
  if (filling_ || map_ == nullptr) return;
  write();
}

std::string frmMapEdit::Display(clsExchMap& map, bool isNew) {
  map_ = &map;
  actions_.emplace(map, shell_);
  result_.clear();
  setWindowTitle(ToQt(MapEditCaption(map.MapUse(), map.MapName(), isNew)));
  SetupForm(map.MapUse());
  SetupData();
  exec();
  actions_.reset();
  map_ = nullptr;
  return result_;
}

void frmMapEdit::reject() {
  if (!actions_) {
    QDialog::reject();
    return;
  }
  Finish(actions_->OfferToSave());
}

void frmMapEdit::Finish(const MapEditOutcome& outcome) {
  if (!outcome.close) return;
  result_ = outcome.result;
  done(outcome.result.empty() ? Rejected : Accepted);
}

void frmMapEdit::SetupForm(int32_t use) {
  filling_ = true;
  Fill(cboMapType_, MapTypeItems(use));
  Fill(cboMapDelimiter_, MapDelimiterItems());
  Fill(cboMapQuote_, MapQuoteItems());
  Fill(cboMapFilter_, MapFilterItems());
  Fill(cboMapAlign_, MapAlignItems());
  Fill(cboMapPad_, MapPadItems());
  const MapHeaderRules rules = HeaderRules(use, 0);
  if (rules.terminatorFilled) Fill(cboMapTerminator_, MapTerminatorItems());
  else cboMapTerminator_->clear();
  Show(rules.terminatorFilled, {txtMapLength_, lMapLength_, cboMapTerminator_, lMapTerminator_});
  Show(rules.filterShown, {cboMapFilter_, lMapFilter_});
  filling_ = false;
  EnableControls(false);
}

void frmMapEdit::SetupData() {
  filling_ = true;
  Select(cboMapType_, map_->MapType());
  Select(cboMapFilter_, map_->MapFilter());
  SelectText(cboMapDelimiter_, map_->MapDelimiter());
  SelectText(cboMapQuote_, MapQuoteShown(map_->MapQuote()));
  txtMapLength_->setText(QString::number(map_->MapLength()));
  Select(cboMapTerminator_, map_->MapTerminator());
  lstMapFields_->clear();
  for (int32_t i = 1; i <= map_->FieldCount(); ++i) lstMapFields_->addItem(ToQt(map_->Prompt(i, true)));
  // The list is as wide as its longest entry and shows twenty fields at once.
  const int frame = 2 * lstMapFields_->frameWidth();
  lstMapFields_->setMinimumWidth(lstMapFields_->sizeHintForColumn(0) + frame + 24);
  lstMapFields_->setMinimumHeight(20 * std::max(lstMapFields_->sizeHintForRow(0), 1) + frame);
  chkMVRS1_->setChecked(map_->MapOptions(1) == "Y");
  filling_ = false;

  EnableControls(true);
  ApplyTypeRules();
  field_ = 0;
  if (map_->FieldCount() > 0) {
    filling_ = true;
    lstMapFields_->setCurrentRow(0);
    filling_ = false;
    field_ = 1;
    SetupOptions(map_->FieldName(field_));
    ShowField();
  }
}

void frmMapEdit::SetupOptions(const std::string& fieldName) {
  filling_ = true;
  Fill(cboMapOption_, MapOptionItems(map_->MapUse(), fieldName));
  filling_ = false;
}

void frmMapEdit::ShowField() {
  if (field_ < 1) return;
  const MapField& field = map_->Field(field_);
  filling_ = true;
  Select(cboMapOption_, field.MapOption);
  txtMapPosition_->setText(QString::number(field.DataPosition));
  txtMapWidth_->setText(QString::number(field.DataWidth));
  txtMapConstant_->setText(ToQt(field.MapConstant));
  Select(cboMapAlign_, field.MapAlign);
  Select(cboMapPad_, field.MapPad);
  Fill(cboMapFormat_, MapFormatItems(field.DataType));
  Select(cboMapFormat_, field.MapFormat);
  filling_ = false;
  ApplyOptionRules();
}

void frmMapEdit::EnableControls(bool flag) {
  Enable(flag, {cboMapType_, cboMapFilter_, cboMapDelimiter_, cboMapQuote_, txtMapLength_, cboMapTerminator_,
                chkMVRS1_, lstMapFields_, cboMapOption_, txtMapPosition_, txtMapWidth_, txtMapConstant_,
                cboMapAlign_, cboMapPad_, cboMapFormat_});
  if (!flag) {
    Enable(false, {lMapOption_, lMapPosition_, lMapWidth_, lMapConstant_, lMapAlign_, lMapPad_, lMapFormat_});
  }
}

void frmMapEdit::ApplyTypeRules() {
  const MapHeaderRules rules = HeaderRules(map_->MapUse(), map_->MapType());
  Enable(rules.delimiterEnabled, {cboMapDelimiter_, lMapDelimiter_, cboMapQuote_, lMapQuote_});
  fraMVRS_->setVisible(rules.mvrsShown);
  lMapPosition_->setText(ToQt(rules.positionCaption));
  Enable(rules.fieldsEnabled, {lstMapFields_, lMapFields_});
  Show(rules.lengthShown, {txtMapLength_, lMapLength_, cboMapTerminator_, lMapTerminator_});
}

void frmMapEdit::ApplyOptionRules() {
  const int32_t option = field_ > 0 ? map_->MapOption(field_) : 0;
  const int32_t dataType = field_ > 0 ? map_->DataType(field_) : kTypeText;
  const MapFieldRules rules = FieldRules(map_->MapType(), option, dataType);
  Enable(rules.option, {cboMapOption_, lMapOption_});
  Enable(rules.position, {txtMapPosition_, lMapPosition_});
  Enable(rules.width, {txtMapWidth_, lMapWidth_});
  Enable(rules.constant, {txtMapConstant_, lMapConstant_});
  Enable(rules.align, {cboMapAlign_, lMapAlign_});
  Enable(rules.pad, {cboMapPad_, lMapPad_});
  Enable(rules.format, {cboMapFormat_, lMapFormat_});
}

void frmMapEdit::cboMapType_Click() {
  if (filling_ || map_ == nullptr) return;
  if (cboMapType_->currentIndex() >= 0) map_->SetMapType(cboMapType_->currentData().toInt());
  ApplyTypeRules();
  cboMapOption_Click();
}

void frmMapEdit::cboMapOption_Click() {
  if (filling_ || map_ == nullptr || field_ < 1) return;
  if (cboMapOption_->currentIndex() >= 0) map_->SetMapOption(field_, cboMapOption_->currentData().toInt());
  ApplyOptionRules();
}

void frmMapEdit::lstMapFields_Click() {
  if (filling_ || map_ == nullptr || lstMapFields_->currentRow() < 0) return;
  field_ = lstMapFields_->currentRow() + 1;
  SetupOptions(map_->FieldName(field_));
  ShowField();
}

}  // namespace hifx::shell
