// Answers the modal windows a test's action brings up, in the order they are
// expected: each step waits for a window of its name to be the active modal
// one, looks at it, and closes it. The texts of every message box are kept.
// Beside it, short helpers that work a window's controls by name.
#pragma once

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMessageBox>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace hifx::test {

// Where the tests leave a picture of every window they open.
inline void Shot(QWidget* window, const QString& name) {
  QDir().mkpath(HIFX_SCREENSHOT_DIR);
  window->grab().save(QString(HIFX_SCREENSHOT_DIR) + "/" + name + ".png");
}

// The bundled examples, and a text as Qt holds it.
inline const std::filesystem::path kExamples =
    std::filesystem::weakly_canonical(std::filesystem::path(HIFX_TEST_SOURCE_DIR) / ".." / "examples");
inline QString Q(const std::string& text) { return QString::fromStdString(text); }

// A window's control by name; a name the window lacks stops the test.
template <typename T = QWidget>
T* Get(QWidget* window, const QString& name) {
  T* control = window->findChild<T*>(name);
  if (control == nullptr) qFatal("no control %s", qPrintable(name));
  return control;
}
template <typename T = QLabel>
QString Text(QWidget* window, const QString& name) {
  return Get<T>(window, name)->text();
}
inline void Click(QWidget* window, const QString& name) { Get<QAbstractButton>(window, name)->click(); }
inline void SetText(QWidget* window, const QString& name, const QString& text) {
  Get<QLineEdit>(window, name)->setText(text);
}
inline void Check(QWidget* window, const QString& name, bool on = true) {
  Get<QAbstractButton>(window, name)->setChecked(on);
}

inline QString Chosen(QWidget* window, const QString& name) { return Get<QComboBox>(window, name)->currentText(); }
inline QStringList Entries(QWidget* window, const QString& name) {
  auto* list = Get<QComboBox>(window, name);
  QStringList entries;
  for (int i = 0; i < list->count(); ++i) entries << list->itemText(i);
  return entries;
}
inline void Choose(QWidget* window, const QString& name, const QString& text) {
  auto* list = Get<QComboBox>(window, name);
  const int at = list->findText(text);
  if (at < 0) qFatal("no entry %s in %s", qPrintable(text), qPrintable(name));
  list->setCurrentIndex(at);
}
// Typed over what the box holds, key by key.
inline void Type(QWidget* window, const QString& name, const QString& text) {
  auto* box = Get<QLineEdit>(window, name);
  box->clear();
  QTest::keyClicks(box, text);
}

// The map editor's field of the name clicked.
inline void ClickField(QWidget* window, const QString& text) {
  auto* list = Get<QListWidget>(window, "lstMapFields");
  const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
  if (found.isEmpty()) qFatal("no field %s", qPrintable(text));
  list->setCurrentItem(found.front());
}
// Each "control=text" step in turn: a field of the list clicked, an entry
// of a list chosen, or a box typed over.
inline void Steps(QWidget* window, const QStringList& steps) {
  for (const QString& step : steps) {
    const QString name = step.section('=', 0, 0), text = step.section('=', 1);
    if (name == "lstMapFields") {
      ClickField(window, text);
    } else if (name.startsWith("cbo")) {
      Choose(window, name, text);
    } else {
      Type(window, name, text);
    }
  }
}

struct SeenBox {
  QString title;
  QString text;
  bool operator==(const SeenBox&) const = default;
};
inline char* toString(const SeenBox& box) { return QTest::toString(box.title + ": " + box.text); }

class ModalScript {
 public:
  using Step = std::function<void(QWidget*)>;

  ModalScript() {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
    timer_.start();
  }
  ~ModalScript() { timer_.stop(); }

  void Then(const QString& objectName, Step step) { steps_.push_back({objectName, std::move(step)}); }

  // A message box answered with the button; its title and text are kept.
  void Box(QMessageBox::StandardButton answer, const QString& shot = {}) {
    Then("messageBox", [this, answer, shot](QWidget* window) {
      auto* box = static_cast<QMessageBox*>(window);
      boxes.push_back({box->windowTitle(), box->text()});
      if (!shot.isEmpty()) Shot(box, shot);
      box->button(answer)->click();
    });
  }
  // A file dialog answered with the file, or cancelled with an empty path;
  // its title, filters and folder are kept.
  void File(const std::filesystem::path& file) {
    Then(QString(), [this, file](QWidget* window) {
      auto* dialog = qobject_cast<QFileDialog*>(window);
      if (dialog == nullptr) return;
      dialogs.push_back(dialog->windowTitle() + "|" + dialog->nameFilters().join("|") + "|" +
                        dialog->directory().absolutePath());
      if (file.empty()) {
        dialog->reject();
        return;
      }
      // Typed into the name box as a person would, and taken with Enter.
      auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
      name->setText(QString::fromStdString(file.string()));
      QTest::keyClick(name, Qt::Key_Return);
    });
  }

  bool Done() const { return steps_.empty() && unexpected.empty(); }

  std::vector<SeenBox> boxes;
  std::vector<QString> dialogs;
  std::vector<QString> unexpected;  // windows closed for want of a step

 private:
  struct Expected {
    QString name;  // empty: any file dialog
    Step step;
  };

  void Poll() {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    const bool fits = modal != last_ && !steps_.empty() &&
                      (steps_.front().name.isEmpty() ? qobject_cast<QFileDialog*>(modal) != nullptr
                                                     : modal->objectName() == steps_.front().name);
    if (!fits) {
      // A window nobody expected, or one that its step left open, fails the
      // test instead of hanging it.
      if (modal != waiting_) {
        waiting_ = modal;
        waited_.start();
      } else if (waited_.elapsed() > 3000) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        unexpected.push_back(modal->objectName() + ": " + modal->windowTitle() + ": " + (box ? box->text() : ""));
        qWarning("unexpected window %s", qPrintable(unexpected.back()));
        modal->close();
      }
      return;
    }
    const Expected& next = steps_.front();
    Step step = next.step;
    steps_.pop_front();
    last_ = modal;
    // The step runs from a timer of its own: a window it brings up in turn
    // is then answered by this one.
    // A window kept between showings (the page preview, a chooser asked
    // again) counts as a new one once its step has closed it.
    QTimer::singleShot(0, modal, [this, step, modal] {
      step(modal);
      if (!modal->isVisible()) last_ = nullptr;
    });
  }

  QTimer timer_;
  std::deque<Expected> steps_;
  QPointer<QWidget> last_;
  QPointer<QWidget> waiting_;
  QElapsedTimer waited_;
};

}  // namespace hifx::test
