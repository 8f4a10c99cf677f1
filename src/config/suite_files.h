#pragma once

#include <string_view>

// The suite's names of files, folders and programs.
namespace quillary::config::files {

inline constexpr std::string_view kSuiteIni = "Quillary.ini";
inline constexpr std::string_view kErrorLog = "QYErrors.log";
inline constexpr std::string_view kSystemIni = "WIN.INI";
inline constexpr std::string_view kFarmIni = "QYFarm.ini";
inline constexpr std::string_view kMoneyIni = "QYMoney.ini";
inline constexpr std::string_view kClubIni = "QYClub.ini";
inline constexpr std::string_view kDiaryIni = "QYDiary.ini";
inline constexpr std::string_view kUserIni = "QYUser.ini";
inline constexpr std::string_view kUserTemplateIni = "QYUserTemplate.ini";

inline constexpr std::string_view kFarmData = "Farm32.mdb";
inline constexpr std::string_view kDiaryData = "Diary.mdb";
inline constexpr std::string_view kModuleData = "Modules.mdb";
inline constexpr std::string_view kWizardData = "Wizards.mdb";
inline constexpr std::string_view kExportData = "Export.mdb";
inline constexpr std::string_view kImportData = "Import.mdb";
inline constexpr std::string_view kInternetData = "Internet.mdb";
inline constexpr std::string_view kWageData = "Wage32.mdb";
inline constexpr std::string_view kMapData = "Map.mdb";
inline constexpr std::string_view kCashbookData = "Cashbook.mdb";
inline constexpr std::string_view kVisualReportsData = "VisualReports.mdb";
inline constexpr std::string_view kWarehouseData = "OvantaWarehouse.mdb";
inline constexpr std::string_view kAnalysisData = "OvantaAnalysis.mdb";

inline constexpr std::string_view kFarmTemplate = "FarmTemplate.mdb";
inline constexpr std::string_view kDiaryTemplate = "DiaryTemplate.mdb";
inline constexpr std::string_view kExportTemplate = "ExportTemplate.mdb";
inline constexpr std::string_view kImportTemplate = "ImportTemplate.mdb";
inline constexpr std::string_view kInternetTemplate = "InternetTemplate.mdb";
inline constexpr std::string_view kWageTemplate = "WageTemplate.mdb";
inline constexpr std::string_view kMapTemplate = "MapTemplate.mdb";
inline constexpr std::string_view kCashbookTemplate = "CashbookTemplate.mdb";
inline constexpr std::string_view kVisualReportsTemplate = "VisualReportsTemplate.mdb";

inline constexpr std::string_view kFarmHelp = "QYFarm.chm";
inline constexpr std::string_view kMoneyHelp = "QYMoney.chm";
inline constexpr std::string_view kClubHelp = "QYClub.chm";
inline constexpr std::string_view kDiaryHelp = "QYDiary.chm";
inline constexpr std::string_view kWizardHelp = "Wizards.chm";

inline constexpr std::string_view kFarmPicture = "QYFARM.jpg";
inline constexpr std::string_view kMoneyPicture = "QYMONEY.jpg";
inline constexpr std::string_view kClubPicture = "QYCLUB.jpg";
inline constexpr std::string_view kDiaryPicture = "QYDIARY.jpg";
inline constexpr std::string_view kMakerPicture = "ovanta.jpg";
inline constexpr std::string_view kBanner = "Banner.jpg";
inline constexpr std::string_view kCheckOn = "chkon95.bmp";
inline constexpr std::string_view kCheckOff = "chkoff95.bmp";
inline constexpr std::string_view kInvoiceLogo = "InvoiceLogo.BMP";
inline constexpr std::string_view kMainTile = "maintile.wmf";
inline constexpr std::string_view kTitleTile = "titletle.jpg";
inline constexpr std::string_view kTitleButton = "titlebtn.jpg";
inline constexpr std::string_view kMapPicture = "mapimage.bmp";
inline constexpr std::string_view kTreePicture = "tree1.bmp";
inline constexpr std::string_view kHazardPicture = "hazard.bmp";
inline constexpr std::string_view kRockPicture = "rock.bmp";
inline constexpr std::string_view kGatePicture = "gate.bmp";
inline constexpr std::string_view kPumpPicture = "pump.bmp";
inline constexpr std::string_view kWaterPicture = "water.bmp";

inline constexpr std::string_view kBookIcon = "book03.ico";
inline constexpr std::string_view kGraphIcon = "graph04.ico";
inline constexpr std::string_view kBlankIcon = "Blank.ico";
inline constexpr std::string_view kTagIcon = "Tag.ico";
inline constexpr std::string_view kCursors[] = {
    "ZoomIn.cur", "ZoomOut.cur",  "Edit.cur",    "Ruler.cur",      "Text.cur",         "STATIC.CUR",
    "Centre.CUR", "DrawLine.CUR", "Symbols.CUR", "SelectArea.CUR", "SelectMeasure.cur"};

inline constexpr std::string_view kFarmMap = "farmmap.gds";
inline constexpr std::string_view kMapImage = "MapImage.vsr";
inline constexpr std::string_view kMapReport = "MapImage.rpt";

// Below the folder of common documents.
inline constexpr std::string_view kCommonFolder = "Quillary\\Common";
inline constexpr std::string_view kBackupFolder = "Quillary\\Backup";
inline constexpr std::string_view kReportFolder = "Quillary\\Reports";
inline constexpr std::string_view kLibraryFolder = "Quillary\\Library";
inline constexpr std::string_view kRestorePointFolder = "Backup"; // below the common folder
// Below the program folder.
inline constexpr std::string_view kResourceFolder = "Resources";
inline constexpr std::string_view kTemplateFolder = "Templates";
inline constexpr std::string_view kHelpFolder = "Help";

inline constexpr std::string_view kMainProgram = "quillary.exe";
inline constexpr std::string_view kStockTool = "QYStockCSV.exe";
inline constexpr std::string_view kVerifyTool = "qyverify";
inline constexpr std::string_view kSuitePrograms[] = {
    "QuillaryUpdate.exe", "Internet.exe",       "Spreadsheet.exe", "Wizards.exe",    "Library.exe",
    "QYEditor.exe",       "QYCashbook.exe",     "QYWeather.exe",   "QYMap.exe",      "QYSettings.exe",
    "QYReport.exe",       "QYFeed.exe",         "QYPlanner.exe",   "QYDiary.exe",    "QYWageBook.exe",
    "QuillaryImport.exe", "QuillaryExport.exe", "Analysis.exe",    "QuillaryQA.exe", "QYAddressBook.exe"};

} // namespace quillary::config::files
