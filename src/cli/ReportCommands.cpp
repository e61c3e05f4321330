// report: the meter reports of a reading HIF, as PDF files, on a printer, or
// as one picture a page, drawn as the desktop program's preview draws them.
// Several types make one report each, in the order the main window prints
// them: Exception, Reading, Orphan, Missed.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/FileIdentity.h"
#include "cli/Commands.h"
#include "cli/ReportModule.h"
#include "cli/RunSummary.h"
#include "reports/clsReport.h"

namespace hifx::cli {
namespace {

struct ReportKind {
  const char* word;
  int32_t type;
};
// In the order they are printed.
constexpr ReportKind kKinds[] = {{"exception", kReportException},
                                 {"reading", kReportReading},
                                 {"orphan", kReportOrphan},
                                 {"missed", kReportMissed}};

// The types named in a --type list; a word that names none is said.
int32_t ParseTypes(const std::string& list) {
  int32_t mask = 0;
  size_t start = 0;
  for (;;) {
    const size_t comma = list.find(',', start);
    const std::string word = list.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
    bool known = false;
    for (const ReportKind& kind : kKinds) {
      if (word == kind.word) {
        mask |= kind.type;
        known = true;
      }
    }
    if (!known) throw UsageError("unknown report type: " + word);
    if (comma == std::string::npos) return mask;
    start = comma + 1;
  }
}

// OUT itself for one report; for several, the type's word behind the name:
// out.pdf gives out-exception.pdf, out-reading.pdf, ...
std::filesystem::path ReportFileName(const std::filesystem::path& out, const char* word, bool several) {
  if (!several) return out;
  std::filesystem::path file = out;
  file.replace_filename(out.stem().string() + "-" + word + out.extension().string());
  return file;
}

struct ReportOptions {
  std::string types, pdf, printer, png, file;
  std::optional<std::string> title;
  double dpi = 96;
  bool json = false;
};

// A report never takes the place of the file it reports on, nor of anything
// but a plain file.
void CheckReportFiles(const ReportOptions& options, int32_t mask, bool several) {
  for (const ReportKind& kind : kKinds) {
    if (options.pdf.empty() || (mask & kind.type) == 0) continue;
    const std::filesystem::path out = ReportFileName(options.pdf, kind.word, several);
    if (SameFile(out, options.file)) {
      throw UsageError(out.string() + " is the same file as the reading file " + options.file);
    }
    if (!IsReplaceable(out)) throw UsageError(out.string() + " is not a plain file");
  }
}

// The folder of the pictures, made when it is missing.
void MakePictureFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error || !std::filesystem::is_directory(folder)) {
    throw CreateFailure(fail::kPathAccess, "Could not make the folder {}", folder,
                       error ? error.message() : "a file has its name");
  }
}

int Report(Context& context, const ReportOptions& options) {
  const int32_t mask = ParseTypes(options.types);
  if (options.pdf.empty() + options.printer.empty() + options.png.empty() != 2) {
    throw UsageError("takes --pdf OUT, --printer NAME or --png DIR");
  }
  const bool several = (mask & (mask - 1)) != 0;
  CheckReportFiles(options, mask, several);
  if (!options.png.empty()) MakePictureFolder(options.png);
  const std::unique_ptr<IReportSurfaces> surfaces = LoadReportSurfaces("PDF and printed reports");
  try {
    for (const ReportKind& kind : kKinds) {
      if ((mask & kind.type) == 0) continue;
      std::unique_ptr<IReportPrinters> printers =
          !options.pdf.empty()   ? surfaces->ToPdf(ReportFileName(options.pdf, kind.word, several))
          : !options.png.empty() ? surfaces->ToPictures(options.png, kind.word, options.dpi)
                                 : surfaces->ToDefaultPrinter();
      clsReport report(context.Shell(), context.Clock(), *printers, surfaces->UserSettings());
      if (!options.printer.empty() && !report.Engine().SetPrinter(options.printer)) {
        throw UsageError("no printer's name holds \"" + options.printer + "\"");
      }
      // Each report is titled with its own name, as the main window prints it.
      if (!report.Begin(false, options.file, kind.type, options.title.value_or(ReportTitle(kind.type)))) {
        return SayUnreadable("report", options.file);
      }
      printers->SetPdfInfo({report.Engine().Title, ReportTitle(kind.type), context.SiteName(), context.Clock().Now()});
      printers->Finish();
    }
  } catch (const Failure& failure) {
    context.Shell().MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
    return NameTheInput("report", options.file, true, ExitCodeOf(failure));
  }
  return kExitOk;
}

// The files a report run writes: one PDF a type, or pictures in a folder.
int ReportWithSummary(Context& context, const ReportOptions& options) {
  RunSummary summary("report", options.json);
  if (!options.png.empty()) summary.WatchFolder(options.png);
  if (!options.pdf.empty()) {
    const int32_t mask = ParseTypes(options.types);
    for (const ReportKind& kind : kKinds) {
      if ((mask & kind.type) != 0) summary.Watch(ReportFileName(options.pdf, kind.word, (mask & (mask - 1)) != 0));
    }
  }
  return summary.Finish(Report(context, options));
}

}  // namespace

void AddReportCommand(CommandTable& table) {
  auto options = std::make_shared<ReportOptions>();
  CLI::App& report = table.Add("report", "the meter reports of a reading HIF; several types: one file each",
                               [options](Context& context) { return ReportWithSummary(context, *options); });
  report.add_option("--type", options->types, "the reports, comma-separated")
      ->type_name("reading|exception|missed|orphan[,...]")
      ->required();
  CLI::Option* pdf = report.add_option("--pdf", options->pdf, "the PDF file; for several types, OUT-TYPE.pdf each")
                         ->type_name("OUT");
  CLI::Option* printer = report.add_option("--printer", options->printer, "the printer whose name holds NAME")
                             ->type_name("NAME");
  CLI::Option* png =
      report.add_option("--png", options->png, "one PNG picture a page in DIR: TYPE-00001.png, TYPE-00002.png, ...")
          ->type_name("DIR");
  report.add_option("--dpi", options->dpi, "the pictures' resolution, 24 to 600 pixels an inch (default 96)")
      ->type_name("N")
      ->check(CLI::Range(24.0, 600.0).description(""))
      ->needs(png);
  for (CLI::Option* one : {pdf, printer, png}) {
    for (CLI::Option* other : {pdf, printer, png}) {
      if (one != other) one->excludes(other);
    }
  }
  report.add_option("--title", options->title, "the title of every page")->type_name("T");
  AddJsonFlag(report, options->json);
  report.add_option("file", options->file, "the reading HIF")->type_name("FILE")->required();
}

}  // namespace hifx::cli
