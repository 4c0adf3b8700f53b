// dialog/control_ids.h: the settings dialog's resource, controls and timer, by the numbers the client's
// window library knows them by.
#pragma once

constexpr unsigned int kSettingsDialogResource = 2070;

constexpr int kButtonOk = 1;
constexpr int kButtonCancel = 2;
constexpr int kCheckEnabled = 3382;
constexpr int kListDatabases = 3383;
constexpr int kButtonAdd = 3384;
constexpr int kButtonRemove = 3385;
constexpr int kTextSelectedStatus = 3386;  // the database selected in the list
constexpr int kTextOverallStatus = 3387;
constexpr int kCheckEncrypted = 3388;
constexpr int kCheckDrafts = 3389;
constexpr int kCheckHistory = 3390;
constexpr int kCheckDiscussion = 3391;
constexpr int kCheckIdle = 3392;
constexpr int kCheckReindex = 3393;
constexpr int kLabelFrequency = 3394;
constexpr int kEditFrequency = 3395;  // minutes
constexpr int kLabelMinutes = 3396;
constexpr int kButtonApply = 3397;
constexpr int kLabelDatabases = 3398;
constexpr int kTextInstructions = 3399;
constexpr int kTextActivityStatus = 3400;

constexpr unsigned long kStatusTimer = 194;
constexpr unsigned int kStatusPeriodMs = 1000;
