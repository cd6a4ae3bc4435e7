/*
 * VelmSdk.h: steer and observe the meeting client that is installed on this machine.
 *
 * This is the one header that a host application needs; it is plain C99 and C++, and includes no
 * Windows header. Link with the import library of velmsdk.dll, or load the DLL and look the functions
 * up by name: the names below are the export names, undecorated.
 *
 * ORDER OF CALLS
 *   1. TryRunningUnderServiceMode      only in a Windows service, and then first of all
 *   2. GetSDKAvailableFeatures         or GetVelmClientVersion: creates the channel
 *   3. RegisterMsg                     which notifications you want; without it none is delivered
 *   4. Set...CallBack...               the first of them starts the channel
 *      InitVelm3rdSdkChannel           optional: stores a raw sink (see the function)
 *   5. Set...Cmd, SetAudioDevice, ...  commands, in any order and number
 *   6. DestroySdkChannel               stops the channel; all may begin again at 2
 *
 * THREADS
 *   No function takes a lock: make all calls from one thread. Register callbacks before traffic starts.
 *   Callbacks arrive on threads of the library, possibly two at a time: one that pumps the library's
 *   hidden window and one per pipe connection. While a callback runs, the delivery that called it waits.
 *   A callback may call the command functions, and should have copied its record by then: the client may
 *   answer before the command returns, and the answer reuses the record. It must not call
 *   DestroySdkChannel.
 *
 * LIFETIME
 *   Texts that you pass in are read during the call only. Records and texts that a callback receives
 *   are valid until it returns: copy what you keep. Function pointers and the raw sink must stay valid
 *   until they are replaced or DestroySdkChannel has returned and a running callback has ended.
 *   DestroySdkChannel does not wait for a callback that is running on another thread.
 *
 * TEXTS
 *   All texts are NUL-terminated UTF-16. A null pointer is accepted wherever a pointer is taken.
 *
 * A command blocks while the client handles it: the window route has no time-out, so a client that
 * hangs holds the caller up.
 */
#ifndef VELMSDK_VELMSDK_H_
#define VELMSDK_VELMSDK_H_

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if !defined(_WIN32) || defined(VELMSDK_STATIC)
#define VELMSDK_API
#elif defined(VELMSDK_BUILD)
#define VELMSDK_API __declspec(dllexport)
#else
#define VELMSDK_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Result codes ---------------------------------------------------------------------------- */

enum {
  SDK_OK = 0,                   /* done, or handed to a transport */
  SDK_ERR_NO_CLIENT = 2,        /* no installed meeting client was found */
  SDK_ERR_NO_CLIENT_WINDOW = 5, /* the client is installed and not running */
  SDK_ERR_BAD_DATA = 6,         /* null or empty command text, or text that cannot be converted */
  SDK_ERR_CLIENT_TOO_OLD = 7,   /* the installed client is too old for service mode */
  SDK_ERR_NO_CHANNEL = 999      /* no channel: see step 2 of the order of calls */
};

/* ---- Features: which notifications RegisterMsg asks for ---------------------------------------- */
/* Bit n stands for notifications with commandId n + 1.                                             */

enum {
  SDK_FEATURE_IM_PRESENCE = 0x001,  /* commandId 1: presence */
  SDK_FEATURE_AUDIO = 0x002,        /* commandId 2: audio commands from the client; needs a client of
                                       version 5.6 or later; not available in service mode */
  SDK_FEATURE_SCREEN_SHARE = 0x004, /* commandId 3: screen share status */
  SDK_FEATURE_CONF_CHAT = 0x008,    /* commandId 4: in-meeting chat status */
  SDK_FEATURE_CAMERA = 0x010,       /* commandId 5: camera status */
  SDK_FEATURE_CONF_AUDIO = 0x020,   /* commandId 6: meeting audio status */
  SDK_FEATURE_CONF_EVENT = 0x040,   /* commandId 7: meeting events */
  SDK_FEATURE_PT_EVENT = 0x080,     /* commandId 8: events of the main client */
  SDK_FEATURE_CONF_DEVICE = 0x100,  /* commandId 9: meeting device status */
  SDK_FEATURE_UI_CONTROL = 0x200,   /* commandId 10: user interface control status */
  SDK_FEATURES_ALL = 0x3ff,
  SDK_FEATURES_SERVICE_MODE = 0x3fd /* all but SDK_FEATURE_AUDIO */
};

/* ---- Limits and fixed values -------------------------------------------------------------------- */

enum {
  SDK_DEVICE_CHARS = 100,           /* device texts in records and in SetAudioDevice, terminator included */
  SDK_TEXT_CHARS = 200,             /* result and meeting texts in records, terminator included; a longer
                                       result text from the client is cut to 199 characters */
  SDK_COMMAND_CHARS = 512,          /* a built command, terminator included; a longer one is cut and is then
                                       no valid JSON */
  SDK_AUDIO_CMD_HOT_SWITCH = 99,    /* the audio command that the SetAudioDevice family sends */
  SDK_AUDIO_CMD_SELECT_DEVICE = 102 /* audioCmd of a device selection; passes the device filter always */
};

/* ---- Records ------------------------------------------------------------------------------------ */
/* What callbacks receive. The library reuses one record per family: it is valid during the callback.
 *
 * `success` and `code` open every record. The client reports a result as "code:text"; `code` is its
 * number and `success` is true when that is 0. A notification without a result has code -1. In
 * SdkPTEventInfo alone, `code` is not the result code but repeats `success` as 0 or 1.
 *
 * Status, event and command values are the client's own numbers; 0 stands where the client sent none.
 * A text that the client did not send is empty, and so is one at or over its limit: 100 bytes of UTF-8
 * for device texts, 200 for a meeting id.
 */

/* The general record: what SetCallBackFunc's callback receives for every notification. */
typedef struct SdkNotifyInfo {
  bool success;
  int32_t code;
  int32_t from;      /* the sender, as the client numbers it; 0 if absent */
  int32_t value;     /* the family's main value: status, event or command */
  int32_t reserved;  /* never written */
  int32_t commandId; /* the family: 1 to 10 */
  wchar_t deviceName[SDK_DEVICE_CHARS];
  wchar_t deviceGUID[SDK_DEVICE_CHARS];
  wchar_t resultInfo[SDK_TEXT_CHARS]; /* text behind the colon of the result */
  wchar_t meetingId[SDK_TEXT_CHARS];
  bool isInComputerAudio;      /* commandId 6 */
  int32_t activeMeetingsCount; /* 0 if absent */
  int32_t subType;             /* commandId 9: the device type; commandId 10: the control type */
} SdkNotifyInfo;

/* commandId 1: presence. Also the answer to GetIMPresenceStatus. */
typedef struct SdkPresenceInfo {
  bool success;
  int32_t code;
  int32_t status;
  int32_t statusV2; /* the status in the client's newer numbering; 0 if absent */
  wchar_t resultInfo[SDK_TEXT_CHARS];
  int32_t extraReason; /* 0 if absent */
} SdkPresenceInfo;

/* commandId 2: an audio command of the client to the device. */
typedef struct SdkAudioInfo {
  bool success;
  int32_t code;
  int32_t audioCmd;
  wchar_t deviceName[SDK_DEVICE_CHARS];
  wchar_t deviceGUID[SDK_DEVICE_CHARS];
  wchar_t resultInfo[SDK_TEXT_CHARS];
} SdkAudioInfo;

/* commandId 3, 4 and 5: screen share, in-meeting chat and camera status. */
typedef struct SdkStatusInfo {
  bool success;
  int32_t code;
  int32_t status;
  wchar_t resultInfo[SDK_TEXT_CHARS];
} SdkStatusInfo;

/* commandId 6: meeting audio status. */
typedef struct SdkConfAudioInfo {
  bool success;
  int32_t code;
  int32_t status;
  bool isInComputerAudio; /* the meeting's audio goes through this computer */
  wchar_t resultInfo[SDK_TEXT_CHARS];
} SdkConfAudioInfo;

/* commandId 7: meeting events. */
typedef struct SdkConfEventInfo {
  bool success;
  int32_t code;
  int32_t event;
  wchar_t resultInfo[SDK_TEXT_CHARS];
  wchar_t meetingId[SDK_TEXT_CHARS];
  int32_t activeMeetingsCount;
  int32_t meetingType;
} SdkConfEventInfo;

/* commandId 8: events of the main client. `code` repeats `success` here: 1 or 0. */
typedef struct SdkPTEventInfo {
  bool success;
  int32_t code;
  int32_t event;
  wchar_t resultInfo[SDK_TEXT_CHARS];
} SdkPTEventInfo;

/* commandId 9: meeting device status. */
typedef struct SdkConfDeviceInfo {
  bool success;
  int32_t code;
  int32_t status;
  int32_t deviceType;
  wchar_t meetingId[SDK_TEXT_CHARS];
} SdkConfDeviceInfo;

/* commandId 10: user interface control status. The type comes first here, unlike SdkConfDeviceInfo. */
typedef struct SdkUIControlInfo {
  bool success;
  int32_t code;
  int32_t controlType;
  int32_t status;
} SdkUIControlInfo;

/* ---- Callbacks ---------------------------------------------------------------------------------- */

/* `rawJson` is the whole notification as the client sent it. Both arguments are null when the client
 * sent an empty message. */
typedef void (*SdkNotifyCallback)(const SdkNotifyInfo* info, const wchar_t* rawJson);
typedef void (*SdkAudioCallback)(const SdkAudioInfo* info);
typedef void (*SdkPresenceCallback)(const SdkPresenceInfo* info);
typedef void (*SdkStatusCallback)(const SdkStatusInfo* info);
typedef void (*SdkConfAudioCallback)(const SdkConfAudioInfo* info);
typedef void (*SdkConfEventCallback)(const SdkConfEventInfo* info);
typedef void (*SdkPTEventCallback)(const SdkPTEventInfo* info);
typedef void (*SdkConfDeviceCallback)(const SdkConfDeviceInfo* info);
typedef void (*SdkUIControlCallback)(const SdkUIControlInfo* info);

/* The raw sink: an object of the host application that sees every notification that RegisterMsg asked
 * for, before any device filter. It is one virtual function in the first slot of its table; C code
 * writes the table by hand:
 *
 *   static const ISdkRawSinkVtbl table = {OnRaw};
 *   static ISdkRawSink sink = {&table};
 *
 * `rawJson` is null when the client sent an empty message. Called on the threads of callbacks. */
#ifdef __cplusplus
struct ISdkRawSink {
  virtual void OnRawMessage(const wchar_t* rawJson) = 0;

 protected:
  ~ISdkRawSink() = default; /* the library neither owns nor deletes a sink */
};
#else
typedef struct ISdkRawSink ISdkRawSink;
typedef struct ISdkRawSinkVtbl {
  void (*OnRawMessage)(ISdkRawSink* self, const wchar_t* rawJson);
} ISdkRawSinkVtbl;
struct ISdkRawSink {
  const ISdkRawSinkVtbl* vtbl;
};
#endif

/* ---- Setup and teardown ------------------------------------------------------------------------- */

/* Asks for service mode, for a host application that runs as a Windows service. Must precede the call
 * that starts the channel. From here on GetSDKAvailableFeatures leaves out SDK_FEATURE_AUDIO, even when
 * this call fails, and there is no way back within the process.
 * Returns SDK_OK, SDK_ERR_NO_CLIENT, or SDK_ERR_CLIENT_TOO_OLD (service mode needs client 5.8). */
VELMSDK_API uint32_t TryRunningUnderServiceMode(void);

/* Reads the version of the installed client into `out`: four values, major, minor, third, fourth.
 * Creates the channel without starting it.
 * Returns SDK_OK also when no client was found or it has no readable version: the four values then keep
 * what they held, so zero them first. SDK_ERR_NO_CHANNEL when `out` is null. */
VELMSDK_API uint32_t GetVelmClientVersion(uint16_t* out);

/* Returns the mask of features that RegisterMsg may ask for: SDK_FEATURES_ALL, or
 * SDK_FEATURES_SERVICE_MODE once service mode was requested. Creates the channel without starting it. */
VELMSDK_API uint32_t GetSDKAvailableFeatures(void);

/* Registers for the notifications in `features`, a mask of SDK_FEATURE_ bits. A later successful call
 * replaces the mask; a failed one leaves it.
 * Returns 1, or 0 when there is no channel yet, when no bit of the mask is available, or when it has
 * SDK_FEATURE_AUDIO and the channel is in service mode, no client is installed, or the client is older
 * than 5.6. One refused audio bit refuses the whole mask. */
VELMSDK_API uint32_t RegisterMsg(int64_t features);

/* Stores the raw sink; null removes it. When this is the first call of all, it also starts the channel;
 * when the channel exists already, it does not, and the next callback setter starts it.
 * The sink is not owned. DestroySdkChannel forgets it. Returns SDK_OK. */
VELMSDK_API uint32_t InitVelm3rdSdkChannel(ISdkRawSink* sink);

/* Stops the channel: takes this application's devices out of the shared device table, ends the
 * library's threads and forgets the raw sink. Callbacks and the feature mask are kept and serve again
 * once a callback setter restarts the channel. A callback may still be running when this returns.
 * Returns SDK_OK, or SDK_ERR_NO_CHANNEL when there is none. */
VELMSDK_API uint32_t DestroySdkChannel(void);

/* ---- Callback registration ---------------------------------------------------------------------- */
/* Each stores one callback, null to remove it, and starts the channel if it does not run.
 * Each returns SDK_OK. */

VELMSDK_API uint32_t SetCallBackFunc(SdkNotifyCallback callback);               /* every notification */
VELMSDK_API uint32_t SetIMPresenceCallBack(SdkPresenceCallback callback);       /* commandId 1 */
VELMSDK_API uint32_t SetAudioCallBack(SdkAudioCallback callback);               /* commandId 2 */
VELMSDK_API uint32_t SetScreenShareCallBack(SdkStatusCallback callback);        /* commandId 3 */
VELMSDK_API uint32_t SetConfChatCallBack(SdkStatusCallback callback);           /* commandId 4 */
VELMSDK_API uint32_t SetCameraCallBack(SdkStatusCallback callback);             /* commandId 5 */
VELMSDK_API uint32_t SetConfAudioCallBack(SdkConfAudioCallback callback);       /* commandId 6 */
VELMSDK_API uint32_t SetConfEventCallBack(SdkConfEventCallback callback);       /* commandId 7 */
VELMSDK_API uint32_t SetPTEventCallBack(SdkPTEventCallback callback);           /* commandId 8 */
VELMSDK_API uint32_t SetConfDeviceCallBack(SdkConfDeviceCallback callback);     /* commandId 9 */
VELMSDK_API uint32_t SetUIControlStatusCallBack(SdkUIControlCallback callback); /* commandId 10 */

/* ---- Commands ----------------------------------------------------------------------------------- */
/* Each sends one command to the client; `cmd` is a value that the client defines and is passed through.
 * They need a channel and do not need it started.
 * Each returns SDK_OK, SDK_ERR_NO_CHANNEL, SDK_ERR_NO_CLIENT or SDK_ERR_NO_CLIENT_WINDOW. SDK_OK says
 * that the command was handed over; the client's answer comes as a notification. */

VELMSDK_API uint32_t GetIMPresenceStatus(void);          /* commandId 1; answered by presence */
VELMSDK_API uint32_t SetAudioCmd(int32_t cmd);           /* commandId 2 */
VELMSDK_API uint32_t SetScreenShareCmd(int32_t cmd);     /* commandId 3 */
VELMSDK_API uint32_t SetConfChatCmd(int32_t cmd);        /* commandId 4 */
VELMSDK_API uint32_t SetCameraCmd(int32_t cmd);          /* commandId 5 */
VELMSDK_API uint32_t SetConfAudioCmd(int32_t cmd);       /* commandId 6 */
VELMSDK_API uint32_t SetConfEventCmd(int32_t cmd);       /* commandId 7 */
VELMSDK_API uint32_t SetConfDeviceCmd(int32_t cmd);      /* commandId 9 */
VELMSDK_API uint32_t GetUIControlStatusCmd(int32_t cmd); /* commandId 10; answered by its status */

/* Sends the caller's own JSON text as it stands; it is not checked. The window route carries 65536 bytes
 * of UTF-8 and cuts a longer text there.
 * Returns as the commands above, and SDK_ERR_BAD_DATA for a null or empty text or one that cannot be
 * converted to UTF-8. */
VELMSDK_API uint32_t SendMsgToVelmClient(const wchar_t* json);

/* ---- Audio device ------------------------------------------------------------------------------- */

/* Says which audio device this application stands for: stores its identity, which audio commands then
 * carry and notifications are filtered by, publishes it in the device table that processes of this
 * machine share, and tells the client.
 *   deviceName, usbVid, usbPid  at most 99 characters are kept; null clears that part of the identity
 *   hotSwitch                   passed through to the client
 * The texts go into the commands unescaped: a quotation mark breaks the JSON.
 * An application may select several devices one after another; notifications about any of them pass.
 * Returns 1 when the client was told, else 0; the identity is stored in both cases, but not without a
 * channel. */
VELMSDK_API uint32_t SetAudioDevice(const wchar_t* deviceName, const wchar_t* usbVid, const wchar_t* usbPid,
                                    uint32_t hotSwitch);

/* SetAudioDevice with the device's GUID, which takes the place of usbPid in the shared table. */
VELMSDK_API uint32_t SetAudioDeviceV2(const wchar_t* deviceName, const wchar_t* deviceGUID,
                                      const wchar_t* usbVid, const wchar_t* usbPid, uint32_t hotSwitch);

/* The same function as SetAudioDeviceV2 under a second name. */
VELMSDK_API uint32_t SetAudioDeviceWCHAR(const wchar_t* deviceName, const wchar_t* deviceGUID,
                                         const wchar_t* usbVid, const wchar_t* usbPid, uint32_t hotSwitch);

#ifdef __cplusplus
} /* extern "C" */
#endif

/* ---- Layout: the records are a binary contract -------------------------------------------------- */

#ifdef __cplusplus
#define VELMSDK_ASSERT_(id, condition) static_assert(condition, #condition)
#else
#define VELMSDK_ASSERT_(id, condition) typedef char velmsdk_assert_##id[(condition) ? 1 : -1]
#endif
#define VELMSDK_SIZE_(record, size) VELMSDK_ASSERT_(record##_size, sizeof(record) == (size))
#define VELMSDK_AT_(record, field, offset) \
  VELMSDK_ASSERT_(record##_##field, offsetof(record, field) == (offset))

VELMSDK_ASSERT_(wchar_t_size, sizeof(wchar_t) == 2);
VELMSDK_ASSERT_(bool_size, sizeof(bool) == 1);

VELMSDK_SIZE_(SdkNotifyInfo, 1236);
VELMSDK_AT_(SdkNotifyInfo, success, 0);
VELMSDK_AT_(SdkNotifyInfo, code, 4);
VELMSDK_AT_(SdkNotifyInfo, from, 8);
VELMSDK_AT_(SdkNotifyInfo, value, 12);
VELMSDK_AT_(SdkNotifyInfo, reserved, 16);
VELMSDK_AT_(SdkNotifyInfo, commandId, 20);
VELMSDK_AT_(SdkNotifyInfo, deviceName, 24);
VELMSDK_AT_(SdkNotifyInfo, deviceGUID, 224);
VELMSDK_AT_(SdkNotifyInfo, resultInfo, 424);
VELMSDK_AT_(SdkNotifyInfo, meetingId, 824);
VELMSDK_AT_(SdkNotifyInfo, isInComputerAudio, 1224);
VELMSDK_AT_(SdkNotifyInfo, activeMeetingsCount, 1228);
VELMSDK_AT_(SdkNotifyInfo, subType, 1232);

VELMSDK_SIZE_(SdkPresenceInfo, 420);
VELMSDK_AT_(SdkPresenceInfo, success, 0);
VELMSDK_AT_(SdkPresenceInfo, code, 4);
VELMSDK_AT_(SdkPresenceInfo, status, 8);
VELMSDK_AT_(SdkPresenceInfo, statusV2, 12);
VELMSDK_AT_(SdkPresenceInfo, resultInfo, 16);
VELMSDK_AT_(SdkPresenceInfo, extraReason, 416);

VELMSDK_SIZE_(SdkAudioInfo, 812);
VELMSDK_AT_(SdkAudioInfo, success, 0);
VELMSDK_AT_(SdkAudioInfo, code, 4);
VELMSDK_AT_(SdkAudioInfo, audioCmd, 8);
VELMSDK_AT_(SdkAudioInfo, deviceName, 12);
VELMSDK_AT_(SdkAudioInfo, deviceGUID, 212);
VELMSDK_AT_(SdkAudioInfo, resultInfo, 412);

VELMSDK_SIZE_(SdkStatusInfo, 412);
VELMSDK_AT_(SdkStatusInfo, success, 0);
VELMSDK_AT_(SdkStatusInfo, code, 4);
VELMSDK_AT_(SdkStatusInfo, status, 8);
VELMSDK_AT_(SdkStatusInfo, resultInfo, 12);

VELMSDK_SIZE_(SdkConfAudioInfo, 416);
VELMSDK_AT_(SdkConfAudioInfo, success, 0);
VELMSDK_AT_(SdkConfAudioInfo, code, 4);
VELMSDK_AT_(SdkConfAudioInfo, status, 8);
VELMSDK_AT_(SdkConfAudioInfo, isInComputerAudio, 12);
VELMSDK_AT_(SdkConfAudioInfo, resultInfo, 14);

VELMSDK_SIZE_(SdkConfEventInfo, 820);
VELMSDK_AT_(SdkConfEventInfo, success, 0);
VELMSDK_AT_(SdkConfEventInfo, code, 4);
VELMSDK_AT_(SdkConfEventInfo, event, 8);
VELMSDK_AT_(SdkConfEventInfo, resultInfo, 12);
VELMSDK_AT_(SdkConfEventInfo, meetingId, 412);
VELMSDK_AT_(SdkConfEventInfo, activeMeetingsCount, 812);
VELMSDK_AT_(SdkConfEventInfo, meetingType, 816);

VELMSDK_SIZE_(SdkPTEventInfo, 412);
VELMSDK_AT_(SdkPTEventInfo, success, 0);
VELMSDK_AT_(SdkPTEventInfo, code, 4);
VELMSDK_AT_(SdkPTEventInfo, event, 8);
VELMSDK_AT_(SdkPTEventInfo, resultInfo, 12);

VELMSDK_SIZE_(SdkConfDeviceInfo, 416);
VELMSDK_AT_(SdkConfDeviceInfo, success, 0);
VELMSDK_AT_(SdkConfDeviceInfo, code, 4);
VELMSDK_AT_(SdkConfDeviceInfo, status, 8);
VELMSDK_AT_(SdkConfDeviceInfo, deviceType, 12);
VELMSDK_AT_(SdkConfDeviceInfo, meetingId, 16);

VELMSDK_SIZE_(SdkUIControlInfo, 16);
VELMSDK_AT_(SdkUIControlInfo, success, 0);
VELMSDK_AT_(SdkUIControlInfo, code, 4);
VELMSDK_AT_(SdkUIControlInfo, controlType, 8);
VELMSDK_AT_(SdkUIControlInfo, status, 12);

#undef VELMSDK_AT_
#undef VELMSDK_SIZE_
#undef VELMSDK_ASSERT_

#endif /* VELMSDK_VELMSDK_H_ */
