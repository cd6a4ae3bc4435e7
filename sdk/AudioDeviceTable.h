#pragma once

// The table of audio devices that processes of this machine share: a named file mapping that the library
// only writes. It has no lock; processes that write at once race on the count.

#include <cstddef>
#include <cstdint>

#include "sdk/SdkCommand.h"

namespace Velm3rdSDK {

// One device of the table, 600 bytes. An empty name marks a free record.
struct DeviceRecord {
  wchar_t name[kDeviceTextChars] = {};
  wchar_t usbVid[kDeviceTextChars] = {};
  wchar_t usbPidOrGuid[kDeviceTextChars] = {};  // the GUID where one was given
};

// The mapping's contents: 12004 bytes.
struct DeviceTableLayout {
  static constexpr uint32_t kMaxDevices = 20;

  uint32_t count;  // emptied records included
  DeviceRecord records[kMaxDevices];
};

static_assert(sizeof(wchar_t) == 2);
static_assert(sizeof(DeviceRecord) == 600 && offsetof(DeviceRecord, usbVid) == 200 &&
              offsetof(DeviceRecord, usbPidOrGuid) == 400);
static_assert(sizeof(DeviceTableLayout) == 12004 && offsetof(DeviceTableLayout, records) == 4);

// Adds `record` unless a record of that name exists (case included; its other fields then stay). Takes
// the first free record, else the next new one. The mapping ends with kMaxDevices records: a device that
// finds no room is not entered, and of a count beyond that only the first kMaxDevices are looked at.
void AddDevice(DeviceTableLayout& table, const DeviceRecord& record);

// Blanks the record of that name, if there is one; the count stays. `name` is compared as a record would
// hold it, cut to 99 characters.
void RemoveDevice(DeviceTableLayout& table, const wchar_t* name);

// Copies `text` cut to 99 characters; a null text clears.
void CopyDeviceText(wchar_t (&target)[kDeviceTextChars], const wchar_t* text);

// This process's view of the shared table. The view and the mapping live until the process ends, also
// when the table is opened once more: other parts of the process may still be reading.
class CAudioDeviceTable {
 public:
  static constexpr const wchar_t* kMappingName = L"VELM_SDK_AUDIO_DEV";

  // Opens the mapping, or creates it with a count of 0. On failure the table has no view, and AddDevice
  // and RemoveDevice do nothing.
  void OpenTable();

  void AddDevice(const DeviceRecord& record);
  void RemoveDevice(const wchar_t* name);

  const DeviceTableLayout* View() const { return m_pView; }

 private:
  void* m_hMapping = nullptr;
  DeviceTableLayout* m_pView = nullptr;
};

}  // namespace Velm3rdSDK
