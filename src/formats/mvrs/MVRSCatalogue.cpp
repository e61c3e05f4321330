// The MVRS record catalogues, one for each direction, as the billing system
// lays its lines out. Columns follow from the widths.
#include "formats/mvrs/MVRSCatalogue.h"

namespace hifx {
namespace {

RecordLayout FileHeaderDownload(const char* id) {
  return {id,
          {Txt("RecID", 3), Txt("TablesIndicator", 1), Txt("OpticalProbeIndicator", 1), Txt("Version", 5),
           Txt("Reserved", 3), Num("NumberCycles", 2), Txt("OffsiteIndicator", 1), Txt("WandIndicator", 1),
           Txt("ExtendedIndicator", 1)}};
}

RecordLayout CycleDownload(const char* id) {
  return {id, {Txt("RecID", 3), Num("CycleNumber", 2), Num("NumberRoutes", 4), Dat("CycleDate", 8)}};
}

RecordLayout RouteDownload(const char* id) {
  return {id,
          {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("SurveyIndicator", 1), Txt("RouteMessageIndicator", 1),
           Num("NumberKeys", 4), Num("NumberReadingRecords", 4), Num("NumberDemandMeters", 4),
           Num("NumberKeyedReadings", 4), Num("NumberOpticalProbeReadings", 4), Num("NumberOffsiteRadioReadings", 4),
           Num("NumberCustomerRecords", 4), Num("NumberMeterRecords", 4), Tim("TimeAlloted", 6),
           Num("NumberGasMeters", 4), Num("NumberWaterMeters", 4), Num("NumberElectricMeters", 4),
           Num("NumberLocationMeters", 4), Num("NumberExtraMeters", 4), Txt("Region", 2), Txt("Zone", 2),
           Txt("Office", 2), Num("BillCycle", 2), Num("DropCycle", 2), Num("NumberRemoteWandReads", 4),
           Txt("MobileAMR", 1)}};
}

RecordLayout ExtendedRouteDownload(const char* id) {
  return {id,
          {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("SurveyIndicator", 1), Txt("RouteMessageIndicator", 1),
           Num("NumberKeys", 4), Num("NumberReadingRecords", 5), Num("NumberDemandMeters", 5),
           Num("NumberKeyedReadings", 5), Num("NumberOpticalProbeReadings", 5), Num("NumberOffsiteRadioReadings", 5),
           Num("NumberCustomerRecords", 5), Num("NumberMeterRecords", 5), Tim("TimeAlloted", 6),
           Num("NumberGasMeters", 5), Num("NumberWaterMeters", 5), Num("NumberElectricMeters", 5),
           Num("NumberLocationMeters", 5), Num("NumberExtraMeters", 5), Txt("Region", 2), Txt("Zone", 2),
           Txt("Office", 2), Num("BillCycle", 2), Num("NumberRemoteWandReads", 5), Txt("MobileAMR", 1)}};
}

RecordLayout SurveyText() {
  return {"RTS", {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("SurveyText1", 40), Txt("SurveyText2", 40)}};
}

RecordLayout RouteMessage() {
  return {"RTM",
          {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("DCLinkDescription", 18), Txt("DCLinkID", 5),
           Txt("Message", 77)}};
}

RecordLayout SpecialMessage() {
  return {"MTS", {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("MeterNumber", 12), Txt("SpecialMessageText", 100)}};
}

RecordLayout FileHeaderUpload(const char* id) {
  return {id,
          {Txt("RecID", 3), Txt("NewServiceIndicator", 1), Txt("Reserved1", 1), Txt("ChangeMeterIndicator", 1),
           Txt("Reserved2", 1), Num("NumberRoutes", 3), Num("NumberCustomerRecords", 6), Num("NumberMeterRecords", 6),
           Num("NumberReadRecords", 6), Txt("ExtendedIndicator", 1), Txt("Reserved3", 91),
           Num("FileTrailerLineNumber", 6)}};
}

RecordLayout RouteUpload(const char* id) {
  return {id,
          {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("SurveyIndicator", 1), Txt("RouteMessageIndicator", 1),
           Num("TotalNumberKeys", 4), Num("TotalNumberReadingRecords", 4), Num("TotalNumberDemandMeters", 4),
           Num("TotalNumberKeyedReadings", 4), Num("TotalNumberOpticalProbeReadings", 4),
           Num("TotalNumberOffsiteRadioReadings", 4), Num("TotalCustomerRecords", 4), Num("TotalMeterRecords", 4),
           Tim("TimeUsedtoReadRoute", 6), Txt("ResequenceFlag", 1), Txt("OriginalSequenceFlag", 1),
           Num("NumberCustomerRecords", 4), Num("NumberMeterRecords", 4), Num("NumberReadingRecords", 4),
           Num("NumberMissedReadings", 4), Num("NumberSkippedReadings", 4), Num("NumberGasMeters", 4),
           Num("NumberWaterMeters", 4), Num("NumberElectricMeters", 4), Num("NumberLocationMeters", 4),
           Num("NumberExtraMeters", 4), Txt("Region", 2), Txt("Zone", 2), Txt("Office", 2),
           Dat("ScheduledReadDate", 8), Txt("MeterReaderStatisticsRecord", 1), Txt("ForceCompleteFlag", 1),
           Num("ForceCompleteCode", 2), Num("NumberRemoteWandReads", 4), Txt("TypeRoute", 1),
           Txt("TypeResequenceFlag", 1)}};
}

RecordLayout ExtendedRouteUpload(const char* id) {
  return {id,
          {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("SurveyIndicator", 1), Txt("RouteMessageIndicator", 1),
           Num("TotalNumberKeys", 4), Num("TotalNumberReadingRecords", 5), Num("TotalNumberDemandMeters", 5),
           Num("TotalNumberKeyedReadings", 5), Num("TotalNumberOpticalProbeReadings", 5),
           Num("TotalNumberOffsiteRadioReadings", 5), Num("TotalCustomerRecords", 5), Num("TotalMeterRecords", 5),
           Tim("TimeUsedtoReadRoute", 6), Txt("ResequenceFlag", 1), Txt("OriginalSequenceFlag", 1),
           Num("NumberCustomerRecords", 5), Num("NumberMeterRecords", 5), Num("NumberReadingRecords", 5),
           Num("NumberMissedReadings", 5), Num("NumberSkippedReadings", 5), Num("NumberGasMeters", 5),
           Num("NumberWaterMeters", 5), Num("NumberElectricMeters", 5), Num("NumberLocationMeters", 5),
           Txt("Region", 2), Txt("Zone", 2), Txt("Office", 2), Dat("ScheduledReadDate", 8),
           Txt("MeterReaderStatisticsRecord", 1), Txt("ForceCompleteFlag", 1), Num("ForceCompleteCode", 2),
           Num("NumberRemoteWandReads", 4), Txt("TypeRoute", 1)}};
}

}  // namespace

std::vector<RecordLayout> MVRSDownloadCatalogue() {
  return {
      FileHeaderDownload("FHD"),
      FileHeaderDownload("FTR"),
      {"???",
       {Txt("RecID", 3), Txt("Code1", 1), Txt("Code2", 1), Txt("Code3", 1), Txt("Code4", 1), Txt("Code5", 1),
        Txt("Translate1", 17), Txt("Translate2", 17), Txt("Translate3", 17), Txt("Translate4", 17),
        Txt("Translate5", 17)}},
      CycleDownload("CHD"),
      CycleDownload("CTR"),
      RouteDownload("RHD"),
      RouteDownload("RTR"),
      ExtendedRouteDownload("ERH"),
      ExtendedRouteDownload("ERT"),
      SurveyText(),
      RouteMessage(),
      {"CUS",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Num("NumberMeters", 3), Txt("Account", 20), Txt("Name", 20),
        Txt("Address1", 20), Txt("Address2", 20), Txt("Reserved", 2), Txt("GroupCode", 1), Txt("CustomerInfo", 20),
        Txt("ExtraIndicator", 1), Txt("SegmentCode", 4), Txt("UtilityID", 2), Txt("PassThru", 1)}},
      {"CSX", {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("Account", 20), Txt("Name", 20), Txt("Address3", 20)}},
      {"MTR",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Num("NumberReadings", 3), Txt("Reserved1", 2), Txt("GroupCode", 1),
        Txt("Reserved2", 8), Txt("SurveyCode1DisplayIndicator", 1), Txt("Reserved3", 2),
        Txt("SurveyCode2DisplayIndicator", 1), Txt("BillCode", 1), Txt("MeterStatus", 1), Txt("OpticalProbeID", 14),
        Txt("MeterNumber", 12), Txt("Reserved4", 2), Num("MeterType", 2), Num("ReadSequence", 8),
        Txt("AdditionalMeterInfo", 20), Txt("Reserved5", 1), Txt("MeterLocation", 2), Txt("Reserved6", 1),
        Num("ReadInstruction1", 2), Txt("Reserved7", 1), Num("ReadInstruction2", 2),
        Num("SpecialMessageDisplayIndicator", 1), Txt("Reserved8", 1), Txt("SpecialMessageIndicator", 1),
        Txt("MeterCategory", 1), Txt("LocationExtraMeter", 1), Num("TimeCode", 3), Txt("MeterAudit1", 2),
        Txt("MeterAudit2", 2), Txt("MeterAudit3", 1), Txt("MeterAudit4", 1)}},
      SpecialMessage(),
      {"RDG",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("TextPrompt", 4), Txt("PromptCode", 1), Txt("ReadDirection", 1),
        Num("CompareCode", 3), Num("ValidationCode", 3), Txt("Reserved1", 1), Num("ChannelNumber", 2),
        Num("NumberDials", 2), Num("NumberDecimals", 2), Txt("ReadMethod", 1), Num("PreviousReading", 10),
        Num("High1", 10), Num("Low1", 10), Num("MeterConstant", 6), Num("ConstantFlag", 1), Num("HHFPosition", 1),
        Num("PositiveDialCreep", 5), Num("NumberConsecutiveEstimates", 1), Txt("Reserved2", 1), Num("ReadType", 2),
        Num("MaximumPercent", 6), Num("MinimumPercent", 6), Num("NegativeDialCreep", 5)}},
      {"PRB",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("OpticalProbeRecorderID", 14), Txt("DeviceID", 20),
        Txt("MeterConfigID", 8), Txt("TIMName", 4), Txt("DevicePassword", 20), Txt("IDMismatchIndicator", 1),
        Txt("DaisyChainIndicator", 1), Txt("DaylightSavingsTimeIndicator", 1), Txt("CommunicationAddress", 2),
        Num("TimeZoneAdjustment", 5), Txt("ReadLoadProfileIndicator", 1), Txt("VisualReadIndicator", 1),
        Txt("TOURegisterReadsIndicator", 1), Txt("ResetDemandIndicator", 1),
        Txt("DaylightSavingTimeUpdateIndicator", 1), Txt("StatusCheckIndicator", 1), Txt("EncoderIndicator", 1),
        Txt("EncoderType01", 2), Txt("EncoderType02", 2), Txt("EncoderType03", 2), Txt("EncoderType04", 2),
        Txt("EncoderType05", 2), Txt("EncoderType06", 2), Txt("EncoderType07", 2), Txt("EncoderType08", 2),
        Txt("EncoderType09", 2), Txt("EncoderType10", 2), Txt("EncoderType11", 2), Txt("EncoderType12", 2),
        Txt("EncoderType13", 2), Txt("EncoderType14", 2), Txt("EncoderType15", 2), Txt("EncoderType16", 2)}},
      {"RFF",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("RFERTID", 8), Txt("Reserved1", 6), Txt("Reserved2", 4),
        Num("Reserved3", 7), Num("GeographicArea", 2), Txt("RFFrequency", 12), Txt("RFTone", 4), Txt("Reserved4", 10),
        Num("Tamper", 2), Txt("ConcentratorERTIndicator", 1), Txt("50ESSFlag", 1)}},
      {"WRR",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("DeviceID", 14), Txt("WandProgram", 4), Txt("Reserved1", 5),
        Num("Reserved2", 1), Num("NodeNumber", 2), Txt("NoTamperCheckIndicator", 1)}},
  };
}

std::vector<RecordLayout> MVRSUploadCatalogue() {
  return {
      FileHeaderUpload("FHD"),
      FileHeaderUpload("FTR"),
      RouteUpload("RHD"),
      RouteUpload("RTR"),
      ExtendedRouteUpload("ERH"),
      ExtendedRouteUpload("ERT"),
      SurveyText(),
      RouteMessage(),
      {"RMR",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("DLSet", 1), Num("BeginSequence", 5), Num("EndSequence", 5),
        Txt("SequenceTypeIndicator", 1), Txt("AllUnprocessedIndicator", 1), Num("TotalReadingsInDownloadSet", 5),
        Num("NumberReadingsInDownloadSet", 5), Num("NumberSkippedReadingsInDownloadSet", 5),
        Num("NumberMissedReadingsInDownloadSet", 5), Num("NumberFailedAuditsInDownloadSet", 5),
        Num("NumberClearedInDownloadSet", 5), Tim("TimeAllotedForSplit", 4), Tim("ElapsedTimeInSplit", 4),
        Tim("FirstTimeInSplit", 4), Dat("FirstDateInSplit", 4), Tim("LastTimeInSplit", 4), Dat("LastDateInSplit", 4),
        Txt("VehicleIDInSplit", 10), Num("BeginOdometerForSplit", 8), Num("EndOdometerForSplit", 8),
        Num("TotalMilageForSplit", 5), Txt("HandheldIDInSplit", 10)}},
      {"CUS",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Num("NumberMeters", 3), Txt("Account", 20), Txt("Name", 20),
        Txt("Address1", 20), Txt("Address2", 20), Txt("Reserved", 2), Txt("GroupCode", 1), Txt("ExtraIndicator", 1),
        Txt("ExceptionCode", 1), Txt("SegmentCode", 4), Txt("UtilityID", 2), Txt("PassThru", 1),
        Txt("CustomerInfo", 20)}},
      {"CSX",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("Account", 20), Txt("Name", 20), Txt("NewCustomerInfo", 20),
        Txt("Address3", 20)}},
      {"MTR",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Num("NumberReadings", 3), Txt("GroupCode", 1), Txt("Reserved2", 10),
        Txt("SurveyCode1DisplayIndicator", 1), Txt("Reserved3", 2), Txt("SurveyCode2DisplayIndicator", 1),
        Txt("BillCode", 1), Txt("MeterStatus", 1), Txt("OpticalProbeID", 14), Txt("MeterNumber", 12),
        Txt("Reserved4", 2), Num("MeterType", 2), Num("ReadSequence", 8), Num("NewReadSequence", 8),
        Txt("Reserved5", 1), Txt("MeterLocation", 2), Txt("Reserved6", 1), Num("ReadInstruction1", 2),
        Txt("Reserved7", 1), Num("ReadInstruction2", 2), Num("SpecialMessageDisplayIndicator", 1),
        Txt("SpecialMessageIndicator", 1), Txt("TroubleMessageIndicator", 1), Txt("SurveyResponse1", 1),
        Txt("SurveyResponse2", 1), Txt("MeterChangeOutIndicator", 1), Txt("ChangeMeterRecordIndicator", 1),
        Txt("MeterCategory", 1), Txt("LocationExtraMeter", 1), Num("TimeCode", 3), Txt("Reserved8", 3),
        Txt("OriginalAdditionalMeterInfo", 20)}},
      {"MTC",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("MeterNumber", 12), Txt("NewMeterNumber", 12), Txt("Reserved1", 2),
        Num("NewMeterType", 2), Txt("NewMeterInfo", 20), Txt("Reserved2", 1), Num("NewLocationCode", 2),
        Num("Reserved3", 1), Num("NewReadInstructionCode1", 2), Num("Reserved4", 1), Num("NewReadInstructionCode2", 2),
        Txt("OriginalMeterAudit1Value", 2), Txt("ChangedMeterAudit1Value", 2), Txt("OriginalMeterAudit2Value", 2),
        Txt("ChangedMeterAudit2Value", 2), Txt("OriginalMeterAudit3Value", 2), Txt("ChangedMeterAudit3Value", 2),
        Txt("OriginalMeterAudit4Value", 2), Txt("ChangedMeterAudit4Value", 2), Num("ChangedNumberOfReadings", 2),
        Txt("MeterChangeFunction", 1)}},
      SpecialMessage(),
      {"MTM", {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("MeterNumber", 12), Txt("TroubleMessageText", 40)}},
      {"RDG",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("TextPrompt", 4), Txt("ReadDirection", 1), Num("CompareCode", 3),
        Num("ValidationCode", 3), Txt("Reserved1", 1), Num("ChannelNumber", 2), Txt("ReadMethod", 1),
        Num("MeterConstant", 6), Num("ConstantFlag", 1), Num("Reading", 10), Num("ReadOrder", 4), Dat("ReadDate", 8),
        Tim("ReadTime", 6), Txt("ReadCode", 1), Txt("Reserved3", 1), Num("ReadReason", 2), Num("ReadAuditResult", 1),
        Num("Reserved4", 1), Num("TroubleCode1", 2), Num("Reserved5", 1), Num("TroubleCode2", 2),
        Num("AuditCounter", 1), Num("ClearCounter", 1), Txt("UnprocessedReadFlag", 1), Txt("MeterReaderID", 9),
        Num("ElapsedTime", 5), Num("NewNumberDials", 2), Num("NewNumberDecimals", 2), Txt("NewReadMethod", 1),
        Txt("MeterConstantVerified", 1), Num("HHFPosition", 1), Num("NewMeterConstant", 6), Txt("Reserved6", 1),
        Num("ReadTypeCode", 2), Num("PreviousReading", 10)}},
      {"PRB",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("OpticalProbeRecorderID", 14), Txt("ExpectedDeviceID", 20),
        Txt("DeviceID", 20), Dat("ReadDate", 8), Tim("ReadTime", 6), Dat("DeviceDate", 8), Tim("DeviceTime", 6),
        Txt("TIMName", 4), Txt("StatusOpen", 2), Txt("StatusTOU", 2), Txt("StatusLPAll", 2),
        Txt("StatusLPPartial", 2), Txt("StatusStatusCheck", 2), Txt("StatusResetDemand", 2),
        Txt("StatusAutoTimeSet", 2), Txt("StatusCodes1", 2), Txt("StatusCodes2", 2), Txt("StatusCodes3", 2),
        Txt("StatusCodes4", 2), Txt("StatusCodes5", 2), Txt("StatusCodes6", 2)}},
      {"RFF",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("RFERTID", 8), Txt("Reserved1", 6), Txt("Reserved2", 4),
        Num("Reserved3", 7), Num("GeographicArea", 2), Txt("RFFrequency", 12), Txt("RFTone", 4), Txt("Reserved4", 2),
        Num("Tamper", 2), Dat("ReadDate", 8), Tim("ReadTime", 6), Num("Reading", 10), Txt("ERTType", 8),
        Txt("Reserved5", 4), Txt("VisualReadIndicator", 1)}},
      {"WRR",
       {Txt("RecID", 3), Txt("RouteNumber", 8), Txt("DeviceID", 14), Txt("WandProgram", 4), Txt("Reserved1", 25),
        Txt("TamperStatus", 4), Dat("ReadDate", 8), Tim("ReadTime", 6), Num("Reading", 10), Txt("Reserved2", 12),
        Txt("VisualReadIndicator", 1)}},
  };
}

}  // namespace hifx
