// Numbers of the dialog templates and their controls.
#pragma once

#define IDD_frmMain 100
#define IDC_frmMain_ListView1 1001

#define IDD_frmOpen 110
#define IDC_frmOpen_Picture1 1101

#define IDD_frmWelcome 120
#define IDC_frmWelcome_Image1 1201
#define IDC_frmWelcome_Label1 1202
#define IDC_frmWelcome_Label2 1203
#define IDC_frmWelcome_Label3 1204
#define IDC_frmWelcome_Label4 1205
#define IDC_frmWelcome_Label5 1206
#define IDC_frmWelcome_cmdOK 1207

#define IDD_frmAbout 130
#define IDC_frmAbout_Image1 1301
#define IDC_frmAbout_Label1 1302
#define IDC_frmAbout_Label2 1303
#define IDC_frmAbout_Label3 1304
#define IDC_frmAbout_Label5 1305
#define IDC_frmAbout_cmdOK 1306

#define IDD_frmStatus 140
#define IDC_frmStatus_Frame1 1401
#define IDC_frmStatus_Image1 1402
#define IDC_frmStatus_Label2 1403
#define IDC_frmStatus_pbCurrent 1404
#define IDC_frmStatus_Label3 1405
#define IDC_frmStatus_pbOverall 1406
#define IDC_frmStatus_lblStatus 1407
#define IDC_frmStatus_cmdCancel 1408

#define IDD_frmFolder 150
#define IDC_frmFolder_Image1 1501
#define IDC_frmFolder_Label1 1502
#define IDC_frmFolder_FT1 1503
#define IDC_frmFolder_Label2 1504
#define IDC_frmFolder_txtMask 1505
#define IDC_frmFolder_Label3 1506
#define IDC_frmFolder_chkSub 1507
#define IDC_frmFolder_cmdOK 1508
#define IDC_frmFolder_cmdCancel 1509
#define IDC_frmFolder_cmdHelp 1510

#define IDD_frmEdit 160
#define IDC_frmEdit_Image1 1601
#define IDC_frmEdit_Label1 1602
#define IDC_frmEdit_lblFolder 1603
#define IDC_frmEdit_Label2 1604
#define IDC_frmEdit_txtMask 1605
#define IDC_frmEdit_Label3 1606
#define IDC_frmEdit_chkSub 1607
#define IDC_frmEdit_cmdOK 1608
#define IDC_frmEdit_cmdCancel 1609

#define IDD_frmNew 170
#define IDC_frmNew_Image1 1701
#define IDC_frmNew_Label2 1702
#define IDC_frmNew_Label1 1703
#define IDC_frmNew_Label3 1704
#define IDC_frmNew_chkShow 1705
#define IDC_frmNew_cmdOK 1706

#define IDD_frmSave 180
#define IDC_frmSave_Image1 1801
#define IDC_frmSave_Label1 1802
#define IDC_frmSave_txtName 1803
#define IDC_frmSave_cmdOK 1804
#define IDC_frmSave_cmdCancel 1805

#define IDD_frmOpenJob 190
#define IDC_frmOpenJob_Image1 1901
#define IDC_frmOpenJob_Label1 1902
#define IDC_frmOpenJob_ListView1 1903
#define IDC_frmOpenJob_cmdOK 1904
#define IDC_frmOpenJob_cmdCancel 1905
#define IDC_frmOpenJob_cmdHelp 1906

#define IDD_frmPrintReport 200
#define IDC_frmPrintReport_VS1 2001

#define IDD_PrintingBox 205
#define IDC_PrintingBox_lblPage 2051
#define IDC_PrintingBox_lblDocument 2052
#define IDC_PrintingBox_lblPrinter 2053
#define IDC_PrintingBox_cmdCancel 2054

#define IDD_frmDriveWipe 210
#define IDC_frmDriveWipe_Image1 2101
#define IDC_frmDriveWipe_Label1 2102
#define IDC_frmDriveWipe_Frame1 2103
#define IDC_frmDriveWipe_Label2 2104
#define IDC_frmDriveWipe_ICDrives 2105
#define IDC_frmDriveWipe_Label3 2106
#define IDC_frmDriveWipe_opt3 2107
#define IDC_frmDriveWipe_opt5 2108
#define IDC_frmDriveWipe_opt7 2109
#define IDC_frmDriveWipe_Label4 2110
#define IDC_frmDriveWipe_cmdOK 2111
#define IDC_frmDriveWipe_cmdCancel 2112
#define IDC_frmDriveWipe_cmdHelp 2113

#define IDD_frmSpaceStatus 220
#define IDC_frmSpaceStatus_Frame1 2201
#define IDC_frmSpaceStatus_Image1 2202
#define IDC_frmSpaceStatus_pbCurrent 2203
#define IDC_frmSpaceStatus_lblStatus 2204
#define IDC_frmSpaceStatus_cmdCancel 2205

#define IDD_frmPreferences 230
#define IDC_frmPreferences_TabStrip1 2301
#define IDC_frmPreferences_Image1 2302
#define IDC_frmPreferences_Label1 2303
#define IDC_frmPreferences_Frame1 2304
#define IDC_frmPreferences_opt3 2305
#define IDC_frmPreferences_opt5 2306
#define IDC_frmPreferences_opt7 2307
#define IDC_frmPreferences_Frame2 2308
#define IDC_frmPreferences_chkProgressBars 2309
#define IDC_frmPreferences_chkToolBars 2310
#define IDC_frmPreferences_chkGridLines 2311
#define IDC_frmPreferences_chkMaximize 2312
#define IDC_frmPreferences_chkPrompt 2313
#define IDC_frmPreferences_Label2 2314
#define IDC_frmPreferences_cboSize 2315
#define IDC_frmPreferences_Frame3 2316
#define IDC_frmPreferences_Label3 2317
#define IDC_frmPreferences_chkManager 2318
#define IDC_frmPreferences_cmdOK 2319
#define IDC_frmPreferences_cmdCancel 2320
#define IDC_frmPreferences_cmdHelp 2321
