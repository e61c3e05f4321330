// Small pieces every window of the desktop program shares: the engine's
// 8-bit texts as Qt strings and back, and the file dialogs, which take their
// filters in the "Description|pattern|..." form the program's windows are
// described in.
#pragma once

#include <QtCore/QString>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

class QWidget;

namespace hifx::shell {

// The engine's texts are the Windows code page; Latin-1 stands for it here.
QString ToQt(std::string_view text);
std::string FromQt(const QString& text);
QString PathToQt(const std::filesystem::path& path);
std::filesystem::path PathFromQt(const QString& text);

struct FileDialogRequest {
  QString title;
  QString filter;            // "Palm Database Files (*.pdb)|*.pdb|All Files(*.*)|*.*"
  QString defaultExtension;  // "pdb", with or without its dot
  QString start;             // a folder, or a file to start at
  int filterIndex = 0;       // the filter chosen at the start
};

// The chosen file, or nothing when the dialog was cancelled.
std::optional<std::filesystem::path> OpenFileDialog(QWidget* parent, const FileDialogRequest& request);
std::optional<std::filesystem::path> SaveFileDialog(QWidget* parent, const FileDialogRequest& request);

// Opens a file as the desktop opens it: a text file in the text editor (on
// Windows, Notepad), a PDF in the PDF reader.
using FileOpener = std::function<void(const std::filesystem::path&)>;
void OpenWithDesktop(const std::filesystem::path& file);

}  // namespace hifx::shell
