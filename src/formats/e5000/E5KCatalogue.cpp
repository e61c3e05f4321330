// The E5000 record catalogues as the billing system lays its lines out.
// Columns follow from the widths; the fillers are fields like any other.
#include "formats/e5000/E5KCatalogue.h"

namespace hifx {
namespace {

// "H" and "I" lines carry the same meter fields.
RecordLayout MeterDownload(const char* id) {
  return {id,
          {Txt("RecID", 1), Txt("RelativeMeterNumber", 2), Txt("MeterSerialNumber", 10), Num("NumberofDials", 1),
           Num("MinimumRead", 8), Num("MaximumRead", 8), Num("PriorRead", 8), Txt("MeterType", 1),
           Num("MeterSize", 7), Txt("MeterMake", 2), Txt("DisplayCode", 2), Num("NoDecimals", 1),
           Num("MustReadFlag", 1), Txt("MeterStatus", 1), Txt("MeterLocation", 2), Txt("MeterReference", 8),
           Txt("Filler", 17)}};
}

}  // namespace

std::vector<RecordLayout> E5KDownloadCatalogue() {
  return {
      {"F", {Txt("RecID", 1), Txt("Route", 8), Txt("Filler", 71)}},
      {"A",
       {Txt("RecID", 1), Txt("Route", 8), Txt("AccountNumber", 10), Txt("Filler1", 12),
        Num("MeterSequenceNumber", 5), Num("Filler2", 1), Txt("AccountType", 1), Txt("SpecialInstruction", 2),
        Txt("Filler3", 40)}},
      {"B", {Txt("RecID", 1), Txt("CustomerName", 32), Txt("Address", 32), Txt("Filler1", 15)}},
      {"E", {Txt("RecID", 1), Txt("CustomerAddressLotandPlan", 79)}},
      {"C", {Txt("RecID", 1), Txt("RecordCategory", 2), Txt("PropertyVGKey", 12), Txt("Filler", 65)}},
      {"D", {Txt("RecID", 1), Txt("SpecialInstructions", 32), Txt("Filler", 47)}},
      MeterDownload("H"),
      MeterDownload("I"),
      {"K01",
       {Txt("RecID", 3), Txt("PropertyLocationDesc1", 32), Txt("MeterLocationDesc1", 32), Txt("Filler", 13)}},
      {"K05",
       {Txt("RecID", 3), Txt("PropertyLocationDesc2", 32), Txt("MeterLocationDesc2", 32), Txt("Filler", 13)}},
      {"L", {Txt("RecID", 1), Txt("Location", 79)}},
      {"Z",
       {Txt("RecID", 1), Txt("Route", 8), Num("NumberofAccounts", 4), Num("NumberofMeters", 4),
        Txt("Filler", 63)}},
      {kE5KUnknownKind, {Txt("RecID", 1), Txt("Filler", 79)}},
  };
}

std::vector<RecordLayout> E5KUploadCatalogue() {
  return {
      {"A",
       {Txt("RecID", 1), Txt("Route", 8), Num("NoofAccounts", 4), Num("NoofMeters", 4), Txt("ProcessorNumber", 3),
        Num("ReadDate", 6), Txt("SurveyQuestionNumber", 2), Num("BeginningSequenceNumber", 5),
        Num("EndingSequenceNumber", 5), Num("ResequenceFlag", 1), Txt("Filler", 41)}},
      {"C",
       {Txt("RecID", 1), Txt("Route", 8), Txt("AccountNumber", 10), Txt("SpecialInstructionCode", 2),
        Txt("SurveyAnswer", 1), Txt("ReadingStatus", 1), Txt("ResequenceFlag", 1), Num("ReadDate", 4),
        Txt("Filler", 52)}},
      {"S", {Txt("RecID", 1), Txt("RecordCategory", 2), Txt("PropertyVGKey", 12), Txt("Filler", 65)}},
      {"D",
       {Txt("RecID", 1), Txt("RelativeMeterNumber", 2), Txt("MeterNumber", 10), Txt("SpecialInstructionsCode2", 2),
        Txt("MeterConditionCode1", 2), Txt("MeterConditionCode2", 2), Num("MeterSize", 6),
        Txt("MeterChangedFlags", 1), Txt("Filler", 54)}},
      {"E",
       {Txt("RecID", 1), Num("NumberofDials", 1), Num("CurrentReading", 8), Num("Decimals", 1), Num("ReadTime", 6),
        Txt("ReadChangeFlags", 1), Txt("DisplayCode", 2), Num("ReadCount", 1), Num("ReadVerifyFlag", 1),
        Txt("NoReadCode", 2), Txt("Filler", 56)}},
      {"M", {Txt("RecID", 1), Txt("MessageCode", 3), Txt("FreeformMessage", 76)}},
      {"Z",
       {Txt("RecID", 1), Txt("Route", 8), Txt("ProcessorNumber", 3), Txt("EmployerNumber", 4), Txt("Filler", 64)}},
  };
}

}  // namespace hifx
