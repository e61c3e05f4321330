#include "exchange/MVRSFold.h"

#include <utility>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"

namespace hifx {
namespace {

std::string Text(const clsRecType& record, const FieldKey& key) { return record.GetText(key); }
int32_t Number(const clsRecType& record, const FieldKey& key) { return record.GetNumber(key); }
std::string Str(int32_t number) { return std::to_string(number); }
// The text of a field cut or padded to 20 letters, written over `into`.
void TakeFixed20(const clsRecType& record, const FieldKey& key, std::string& into) {
  record.GetText(key, into);
  into.resize(20, ' ');
}

bool StartsNew(const std::string& kind) {
  return SameShortText(kind, "RHD") || SameShortText(kind, "CUS") || SameShortText(kind, "MTR");
}

}  // namespace

bool MVRSFold::Make(MVRSFoldStep& step) {
  step.progress.clear();
  try {
    return Fold(step);
  } catch (...) {
    step.kind = MVRSFoldStep::Kind::Failure;
    step.failure = std::current_exception();
    done_ = true;
    return true;
  }
}

bool MVRSFold::Fold(MVRSFoldStep& step) {
  if (held_ != nullptr) {
    // The line that handed the meter before it over goes on.
    const clsRecType& line = *std::exchange(held_, nullptr);
    if (TakeLine(step, line, heldLineNo_)) return true;
  }
  while (!done_) {
    const clsRecType* line = reader_->ReadNext();
    if (line == nullptr) {
      done_ = true;
      if (!reader_->LastFailure().empty()) {
        step.kind = MVRSFoldStep::Kind::ReadFailure;
        step.failureText = reader_->LastFailure();
        return true;
      }
      break;
    }
    step.progress.push_back(static_cast<int16_t>(reader_->Position255() + 255));
    if (meter_.Pending && StartsNew(line->IDText)) {
      held_ = line;
      heldLineNo_ = reader_->LineNo();
      HandOver(step);
      return true;
    }
    if (TakeLine(step, *line, reader_->LineNo())) return true;
  }
  if (!meter_.Pending) return false;
  HandOver(step);
  return true;
}

void MVRSFold::HandOver(MVRSFoldStep& step) {
  step.kind = MVRSFoldStep::Kind::Meter;
  step.route = route_;
  step.routeNumber = routeNumber_;
  step.customer = customer_;
  // Moved, not copied: the next meter starts afresh at its own "MTR" line,
  // and nothing of one not pending is used.
  step.meter = std::move(meter_);
  meter_.Pending = false;
}

bool MVRSFold::TakeLine(MVRSFoldStep& step, const clsRecType& line, int32_t lineNo) {
  const std::string& kind = line.IDText;
  if (SameShortText(kind, "RHD")) {
    TakeRouteLine(line);
  } else if (SameShortText(kind, "CUS")) {
    TakeCustomerLine(line);
  } else if (SameShortText(kind, "CSX")) {
    TakeFixed20(line, Key<"Name">(), customer_.Name2);
    TakeFixed20(line, Key<"Address3">(), customer_.Address3);
  } else if (SameShortText(kind, "MTR")) {
    TakeMeterLine(line);
  } else if (SameShortText(kind, "RTS")) {
    line.GetText(Key<"SurveyText1">(), meter_.SurveyText1);
    line.GetText(Key<"SurveyText2">(), meter_.SurveyText2);
  } else if (SameShortText(kind, "RFF")) {
    TakeRadioLine(step, line, lineNo);
    return true;
  } else if (SameShortText(kind, "WRR")) {
    line.GetText(Key<"WandProgram">(), meter_.WandProgram);
    line.GetText(Key<"DeviceID">(), meter_.DeviceID);
  } else if (SameShortText(kind, "MTS")) {
    line.GetText(Key<"SpecialMessageText">(), meter_.SpecialMessageText);
  } else if (SameShortText(kind, "RDG")) {
    TakeReadingLine(line);
  }
  return false;
}

// "RHD": the route of the table with the line's number, or one past the
// table's end when none has it.
void MVRSFold::TakeRouteLine(const clsRecType& line) {
  line.GetText(Key<"RouteNumber">(), routeNumber_);
  route_ = static_cast<int32_t>(table_.size()) + 1;
  for (size_t i = 0; i < table_.size(); ++i) {
    if (table_[i].RouteNumber == routeNumber_) {
      route_ = static_cast<int32_t>(i + 1);
      break;
    }
  }
}

// "CUS": a new working customer.
void MVRSFold::TakeCustomerLine(const clsRecType& line) {
  MVRSCustomer& customer = customer_;
  customer.Reset();
  TakeFixed20(line, Key<"Name">(), customer.Name);
  TakeFixed20(line, Key<"Address1">(), customer.Address1);
  TakeFixed20(line, Key<"Address2">(), customer.Address2);
  line.GetText(Key<"UtilityID">(), customer.UtilityID);
  line.GetText(Key<"Account">(), customer.Account);
  line.GetText(Key<"GroupCode">(), customer.GroupCode);
  line.GetText(Key<"ExtraIndicator">(), customer.ExtraIndicator);
  line.GetText(Key<"SegmentCode">(), customer.SegmentCode);
  line.GetText(Key<"PassThru">(), customer.PassThru);
  line.GetText(Key<"CustomerInfo">(), customer.CustomerInfo);
}

// "MTR": a new pending meter. With the radio option, an 8-digit meter
// number is the transponder's, and the meter reads by radio.
void MVRSFold::TakeMeterLine(const clsRecType& line) {
  MVRSMeter& meter = meter_;
  meter = MVRSMeter();
  meter.Pending = true;
  line.GetText(Key<"MeterNumber">(), meter.MeterNumber);
  line.GetText(Key<"MeterCategory">(), meter.MeterCategory);
  meter.MeterType = Number(line, Key<"MeterType">());
  line.GetText(Key<"GroupCode">(), meter.GroupCode);
  // Through a number and back: leading zeros go.
  meter.MeterLocation = Str(ToInt32(NumericPrefix(Text(line, Key<"MeterLocation">()))));
  meter.NumberReadings = Number(line, Key<"NumberReadings">());
  line.GetText(Key<"SurveyCode1DisplayIndicator">(), meter.SurveyCode1DisplayIndicator);
  line.GetText(Key<"SurveyCode2DisplayIndicator">(), meter.SurveyCode2DisplayIndicator);
  line.GetText(Key<"BillCode">(), meter.BillCode);
  line.GetText(Key<"MeterStatus">(), meter.MeterStatus);
  line.GetText(Key<"OpticalProbeID">(), meter.OpticalProbeID);
  meter.ReadInstruction1 = Number(line, Key<"ReadInstruction1">());
  meter.ReadInstruction2 = Number(line, Key<"ReadInstruction2">());
  meter.SpecialMessageDisplayIndicator = Number(line, Key<"SpecialMessageDisplayIndicator">());
  line.GetText(Key<"LocationExtraMeter">(), meter.LocationExtraMeter);
  line.GetText(Key<"AdditionalMeterInfo">(), meter.AdditionalMeterInfo);
  const int32_t sequence = Number(line, Key<"ReadSequence">());
  meter.ReadSequence = sequence >= -32768 && sequence <= 32767 ? static_cast<int16_t>(sequence) : 0;
  meter.ReadSequenceText = Str(sequence);
  double number = 0.0;
  if (radioOption_ && Trim(meter.MeterNumber).size() == 8 && ParseWholeNumber(meter.MeterNumber, number)) {
    meter.TagNumber = ToInt32(number);
    meter.Radio = true;
  }
}

// "RFF": the transponder, whose tag the writing checks against those
// seen before.
void MVRSFold::TakeRadioLine(MVRSFoldStep& step, const clsRecType& line, int32_t lineNo) {
  MVRSMeter& meter = meter_;
  meter.TagNumber = ToInt32(NumericPrefix(Text(line, Key<"RFERTID">())));
  meter.GeographicArea = Number(line, Key<"GeographicArea">());
  line.GetText(Key<"RFFrequency">(), meter.RFFrequency);
  line.GetText(Key<"RFTone">(), meter.RFTone);
  meter.Tamper = Number(line, Key<"Tamper">());
  step.kind = MVRSFoldStep::Kind::Radio;
  step.tag = Str(meter.TagNumber);
  step.info = customer_.Name + " " + customer_.Address1;
  step.lineNo = lineNo;
}

// "RDG": one reading a meter, so a second line overwrites the first.
void MVRSFold::TakeReadingLine(const clsRecType& line) {
  MVRSMeter& meter = meter_;
  meter.NumberDials = Number(line, Key<"NumberDials">());
  meter.PreviousReading = Number(line, Key<"PreviousReading">());
  line.GetText(Key<"TextPrompt">(), meter.TextPrompt);
  line.GetText(Key<"ReadDirection">(), meter.ReadDirection);
  meter.CompareCode = Number(line, Key<"CompareCode">());
  meter.ValidationCode = Number(line, Key<"ValidationCode">());
  meter.ReadMethod = meter.Radio ? "R" : Text(line, Key<"ReadMethod">());
  meter.MeterConstant = Number(line, Key<"MeterConstant">());
  meter.ConstantFlag = Number(line, Key<"ConstantFlag">());
  meter.HHFPosition = Number(line, Key<"HHFPosition">());
  meter.NumberDecimals = Number(line, Key<"NumberDecimals">());
  meter.High1 = Number(line, Key<"High1">());
  meter.Low1 = Number(line, Key<"Low1">());
}

}  // namespace hifx
