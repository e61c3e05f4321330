// What the commands that read a HIF file share: its failures said as faults
// of the file, and its text shown safely on a terminal.
#pragma once

#include <string>
#include <vector>

#include "base/Failure.h"
#include "hif/MeterDiff.h"

namespace hifx::cli {

// A failure of reading the file is a fault of the file.
template <typename Body>
auto ReadingFile(const std::string& file, Body body) -> decltype(body()) {
  try {
    return body();
  } catch (const Failure& failure) {
    if (failure.Kind() != FailureKind::Run) throw;  // already said as a fault of its kind
    throw Failure(FailureKind::BadInput, failure.Number(), {}, file, failure.Description());
  }
}

// A control character of a file's text shown as \xHH: a terminal never
// receives an escape sequence it would act on, nor a tab or line break that
// would shift a table.
void AppendShown(std::string& line, const std::string& text);
// A cell of a tab-separated table, shown so that every row stays one line
// and a cell reads back as it was: a backslash as \\, a tab, line feed and
// carriage return as \t, \n and \r, any other control character as \xHH.
void AppendCell(std::string& line, const std::string& text);

// Rows on standard output in columns as wide as their widest cell, two
// spaces apart; a column marked right is aligned to the right (counts).
void PrintTable(const std::vector<std::vector<std::string>>& rows, const std::vector<bool>& right);

// A field "name":json added to the JSON object being written in out.
void AppendField(std::string& out, const char* name, const std::string& json);
// Text as a quoted JSON string.
std::string JsonText(const std::string& text);
// A meter's change as a JSON object: its change word, account, and the
// meter before and after (null where there is none).
std::string DifferenceJson(const MeterDifference& difference);

}  // namespace hifx::cli
