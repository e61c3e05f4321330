#include "shell/Dialogs.h"

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QFileDialog>

namespace hifx::shell {

QString ToQt(std::string_view text) { return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())); }

std::string FromQt(const QString& text) { return text.toLatin1().toStdString(); }

QString PathToQt(const std::filesystem::path& path) {
#ifdef _WIN32
  return QString::fromStdWString(path.wstring());
#else
  return QString::fromLocal8Bit(path.string());
#endif
}

std::filesystem::path PathFromQt(const QString& text) {
#ifdef _WIN32
  return std::filesystem::path(text.toStdWString());
#else
  return std::filesystem::path(text.toLocal8Bit().toStdString());
#endif
}

namespace {

// "Description|pattern|..." as Qt's name filters; "*.*" matches every file,
// as it does on Windows.
QStringList NameFilters(const QString& filter) {
  const QStringList parts = filter.split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString pattern = parts[i + 1];
    pattern.replace(';', ' ');
    if (pattern == "*.*") pattern = "*";
    filters << parts[i] + " (" + pattern + ")";
  }
  return filters;
}

std::optional<std::filesystem::path> RunFileDialog(QWidget* parent, const FileDialogRequest& request,
                                                   QFileDialog::AcceptMode mode) {
  QFileDialog dialog(parent, request.title);
  dialog.setObjectName(mode == QFileDialog::AcceptSave ? "saveFileDialog" : "openFileDialog");
  dialog.setAcceptMode(mode);
  dialog.setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  const QStringList filters = NameFilters(request.filter);
  dialog.setNameFilters(filters);
  if (request.filterIndex > 0 && request.filterIndex < filters.size()) dialog.selectNameFilter(filters[request.filterIndex]);
  QString extension = request.defaultExtension;
  if (extension.startsWith('.')) extension.remove(0, 1);
  dialog.setDefaultSuffix(extension);
  const QFileInfo start(request.start);
  if (!request.start.isEmpty() && start.isDir()) {
    dialog.setDirectory(request.start);
  } else if (!request.start.isEmpty()) {
    dialog.setDirectory(start.absolutePath());
    dialog.selectFile(start.fileName());
  }
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return PathFromQt(dialog.selectedFiles().first());
}

}  // namespace

std::optional<std::filesystem::path> OpenFileDialog(QWidget* parent, const FileDialogRequest& request) {
  return RunFileDialog(parent, request, QFileDialog::AcceptOpen);
}

std::optional<std::filesystem::path> SaveFileDialog(QWidget* parent, const FileDialogRequest& request) {
  return RunFileDialog(parent, request, QFileDialog::AcceptSave);
}

void OpenWithDesktop(const std::filesystem::path& file) {
#ifdef _WIN32
  if (file.extension() != ".pdf") {
    QProcess::startDetached("notepad", {PathToQt(file)});
    return;
  }
#endif
  QDesktopServices::openUrl(QUrl::fromLocalFile(PathToQt(file)));
}

}  // namespace hifx::shell
