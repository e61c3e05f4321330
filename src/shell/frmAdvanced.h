// "Advanced": the site's lists in seven tabs (logins, messages, changeouts,
// skip codes, index words, favourites, alert preferences), each list edited
// through its record dialog. What is changed reaches the settings store when
// the window closes.
#pragma once

#include <QtWidgets/QDialog>

#include <string>
#include <vector>

#include "shell/AdvancedLogic.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QPushButton;
class QTabWidget;
class QTreeWidget;
class QVBoxLayout;

namespace hifx::shell {

class frmAdvanced : public QDialog {
  Q_OBJECT

 public:
  // units: the desktop's handheld units, offered on the Favorites tab.
  frmAdvanced(clsAdvanced& advanced, std::vector<std::string> units, QWidget* parent = nullptr);

 protected:
  void done(int result) override;

 private:
  // A list with its Add and Edit buttons, refilled from the store.
  struct ListTab {
    SiteList list;
    QTreeWidget* rows;
    QPushButton* edit;
    QButtonGroup* types = nullptr;  // the option buttons of the list's type
    std::vector<std::string> typeWords;
  };

  QWidget* LoginsTab();
  QWidget* MessagesTab();
  QWidget* ChangeoutsTab();
  QWidget* SkipsTab();
  QWidget* IndexTab();
  QWidget* FavoritesTab();
  QWidget* PrefsTab();
  ListTab& AddListTab(SiteList list, const char* name, const char* prefix, QVBoxLayout* layout);
  void AddTypeButtons(ListTab& tab, const char* name, const std::vector<std::pair<const char*, const char*>>& types,
                      QVBoxLayout* layout);
  void tbsOptions_Click(int index);
  void Fill(ListTab& tab);
  void OpenRecord(ListTab& tab, bool adding);
  std::string TypeOf(const ListTab& tab) const;
  void FillFavorites();

  clsAdvanced& advanced_;
  std::vector<std::string> units_;
  QTabWidget* tbsOptions_;
  std::vector<ListTab> tabs_;
  QCheckBox* chkFavorite_ = nullptr;
  bool loading_ = true;
};

}  // namespace hifx::shell
