// report: the meter reports of a reading HIF, as PDF files or on a printer.
// Several types make one report each, in the order the main window prints
// them: Exception, Reading, Orphan, Missed.
#include <cstdio>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/FileIdentity.h"
#include "cli/Commands.h"
#include "reports/clsReport.h"
#ifdef HIFX_HAVE_QT
#include "reports/qt/QtRptDevice.h"
#endif

namespace hifx::cli {
namespace {

constexpr const char* kReportUsage =
    "report --type reading|exception|missed|orphan[,...] (--pdf OUT | --printer NAME) [--title T] FILE";

struct ReportKind {
  const char* word;
  int32_t type;
};
// In the order they are printed.
constexpr ReportKind kKinds[] = {{"exception", kReportException},
                                 {"reading", kReportReading},
                                 {"orphan", kReportOrphan},
                                 {"missed", kReportMissed}};

// The types named in a --type list, added to `mask`; false for a word that
// names none.
bool ParseTypes(const std::string& list, int32_t& mask, std::string& problem) {
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
    if (!known) {
      problem = "unknown report type: " + word;
      return false;
    }
    if (comma == std::string::npos) return true;
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

}  // namespace

int RunReport(Context& context, const Args& args) {
  int32_t mask = 0;
  std::string pdf, printer, title, file;
  bool titled = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool hasValue = i + 1 < args.size();
    std::string problem;
    if (a == "--type" && hasValue) {
      if (!ParseTypes(args[++i], mask, problem)) return Usage(problem + "\n" + kReportUsage);
    } else if (a == "--pdf" && hasValue) {
      pdf = args[++i];
    } else if (a == "--printer" && hasValue) {
      printer = args[++i];
    } else if (a == "--title" && hasValue) {
      title = args[++i];
      titled = true;
    } else if (a.starts_with("--") || !file.empty()) {
      return Usage(std::string(kReportUsage));
    } else {
      file = a;
    }
  }
  if (mask == 0 || file.empty() || pdf.empty() == printer.empty()) return Usage(std::string(kReportUsage));
  const bool several = (mask & (mask - 1)) != 0;
  // A report never takes the place of the file it reports on, nor of
  // anything but a plain file.
  for (const ReportKind& kind : kKinds) {
    if (pdf.empty() || (mask & kind.type) == 0) continue;
    const std::filesystem::path out = ReportFileName(pdf, kind.word, several);
    if (SameFile(out, file)) {
      std::fprintf(stderr, "hifx: report: %s is the same file as the reading file %s\n", out.string().c_str(),
                   file.c_str());
      return kExitUsage;
    }
    if (!IsReplaceable(out)) {
      std::fprintf(stderr, "hifx: report: %s is not a plain file\n", out.string().c_str());
      return kExitUsage;
    }
  }

#ifndef HIFX_HAVE_QT
  (void)context;
  (void)titled;
  std::fputs("hifx: report: PDF and printed reports need the Qt build of hifx\n", stderr);
  return kExitUsage;
#else
  const QtReportSession session;
  QtUserSettings settings;
  try {
    for (const ReportKind& kind : kKinds) {
      if ((mask & kind.type) == 0) continue;
      std::unique_ptr<QtPrinters> printers =
          pdf.empty() ? QtPrinters::ToDefaultPrinter() : QtPrinters::ToPdf(ReportFileName(pdf, kind.word, several));
      clsReport report(context.shell, context.clock, *printers, settings);
      if (!printer.empty() && !report.Engine().SetPrinter(printer)) {
        std::fprintf(stderr, "hifx: report: no printer's name holds \"%s\"\n", printer.c_str());
        return kExitUsage;
      }
      // Each report is titled with its own name, as the main window prints it.
      if (!report.Begin(false, file, kind.type, titled ? title : ReportTitle(kind.type))) return kExitUsage;
      printers->Finish();
    }
  } catch (const Failure& failure) {
    context.shell.MsgBox(failure.Description(), "Error", MsgButtons::OK, MsgIcon::Critical);
    return kExitNotComplete;
  }
  return kExitOk;
#endif
}

}  // namespace hifx::cli
