// The second pass of an MVRS route file, read on its own: each meter with
// the customer, route and device lines around it, folded into working
// records and handed over as steps for the conversion to write.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "base/Value.h"
#include "formats/mvrs/clsMVRSDownload.h"

namespace hifx {

// A route of the file as pass 1 finds it.
struct MVRSRouteEntry {
  std::string RouteNumber;
  std::string Region;
  std::string Zone;
  std::string Office;
  Value CycleDate = Value::Date(0);
  int16_t NumberRemoteWandReads = 0;
  int16_t MeterCount = 0;
};

// The working customer, from its "CUS" and "CSX" lines.
struct MVRSCustomer {
  std::string Address1 = Fixed20("");
  std::string Address2 = Fixed20("");
  std::string Address3 = Fixed20("");
  std::string Name = Fixed20("");
  std::string Name2 = Fixed20("");
  std::string Account;
  std::string UtilityID;
  std::string GroupCode;
  std::string ExtraIndicator;
  std::string SegmentCode;
  std::string PassThru;
  std::string CustomerInfo;
  int16_t CustomerSlot = 0;  // nothing sets it

  static std::string Fixed20(std::string text) {
    text.resize(20, ' ');
    return text;
  }
  // As a new customer is, keeping the texts' room.
  void Reset() {
    for (std::string* fixed : {&Address1, &Address2, &Address3, &Name, &Name2}) fixed->assign(20, ' ');
    for (std::string* text :
         {&Account, &UtilityID, &GroupCode, &ExtraIndicator, &SegmentCode, &PassThru, &CustomerInfo}) {
      text->clear();
    }
    CustomerSlot = 0;
  }
};

// The working meter, from its "MTR" line and the lines after it.
struct MVRSMeter {
  bool Pending = false;
  bool Radio = false;  // the meter number is the transponder's
  int16_t ReadSequence = 0;
  std::string ReadSequenceText;
  int32_t TagNumber = 0;
  std::string MeterNumber, MeterCategory, GroupCode, MeterLocation;
  std::string SurveyCode1DisplayIndicator, SurveyCode2DisplayIndicator, BillCode, MeterStatus;
  std::string OpticalProbeID, LocationExtraMeter, AdditionalMeterInfo;
  int32_t MeterType = 0, NumberReadings = 0, ReadInstruction1 = 0, ReadInstruction2 = 0;
  int32_t SpecialMessageDisplayIndicator = 0;
  std::string SurveyText1, SurveyText2;
  int32_t GeographicArea = 0, Tamper = 0;
  std::string RFFrequency, RFTone, WandProgram, DeviceID, SpecialMessageText;
  std::string TextPrompt, ReadDirection, ReadMethod;
  int32_t NumberDials = 0, PreviousReading = 0, CompareCode = 0, ValidationCode = 0, MeterConstant = 0;
  int32_t ConstantFlag = 0, HHFPosition = 0, NumberDecimals = 0, High1 = 0, Low1 = 0;
};

// What pass 2's reading hands to its writing, in the order of the file: a
// meter to write, a transponder tag to check, or the end of the reading at
// a failure. With each, the progress of the lines read since the one
// before.
struct MVRSFoldStep {
  enum class Kind { Meter, Radio, ReadFailure, Failure };
  Kind kind = Kind::Meter;
  std::vector<int16_t> progress;
  // A meter: its route, customer and own values.
  int32_t route = 0;
  std::string routeNumber;
  MVRSCustomer customer;
  MVRSMeter meter;
  // A transponder: its tag, who it belongs to, and its line.
  std::string tag;
  std::string info;
  int32_t lineNo = 0;
  // The end at a failure: what the reader says, or what a line raised.
  std::string failureText;
  std::exception_ptr failure;
};

// Pass 2's reading: the lines of each meter, customer and route folded
// into the working records, and each meter handed over when the next meter,
// customer or route begins. It runs on the second thread, beside the
// writing: the route table and the map it reads don't change meanwhile.
class MVRSFold {
 public:
  // reader, open, has no shell: a failure of the reading comes back as a
  // step, to be shown by the writing, and the record kinds of the format
  // never ask the person anything.
  MVRSFold(std::unique_ptr<clsMVRSDownload> reader, const std::vector<MVRSRouteEntry>& routes, bool radioOption)
      : reader_(std::move(reader)), table_(routes), radioOption_(radioOption) {}

  // The next step; false after the last.
  bool Make(MVRSFoldStep& step);

 private:
  bool Fold(MVRSFoldStep& step);
  // The pending meter into step, and none pending.
  void HandOver(MVRSFoldStep& step);
  // One line into the working records; true when it makes a step.
  bool TakeLine(MVRSFoldStep& step, const clsRecType& line, int32_t lineNo);
  void TakeRouteLine(const clsRecType& line);
  void TakeCustomerLine(const clsRecType& line);
  void TakeMeterLine(const clsRecType& line);
  void TakeRadioLine(MVRSFoldStep& step, const clsRecType& line, int32_t lineNo);
  void TakeReadingLine(const clsRecType& line);

  std::unique_ptr<clsMVRSDownload> reader_;
  const std::vector<MVRSRouteEntry>& table_;
  const bool radioOption_;
  int32_t route_ = 0;  // the lower bound of the route list until the first route
  std::string routeNumber_;
  MVRSCustomer customer_;
  MVRSMeter meter_;
  // A line that begins a new meter, customer or route, held while the meter
  // before it is handed over; the reader keeps its record until the next
  // line is read.
  const clsRecType* held_ = nullptr;
  int32_t heldLineNo_ = 0;
  bool done_ = false;
};

}  // namespace hifx
