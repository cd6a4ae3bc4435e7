// The audio devices that the host application stands for.

#include <windows.h>

#include <algorithm>

#include "sdk/ConsoleLog.h"
#include "sdk/SdkMsgChannel.h"

namespace Velm3rdSDK {
namespace {

bool EqualNoCase(const wchar_t* left, const wchar_t* right) {
  return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, left, -1, right, -1) == CSTR_EQUAL;
}

bool Contains(const std::vector<Cmm::CStringT<wchar_t>>& list, const wchar_t* text) {
  return std::any_of(list.begin(), list.end(),
                     [&](const Cmm::CStringT<wchar_t>& entry) { return EqualNoCase(entry.c_str(), text); });
}

// Compared as texts of the user's locale: one that has nothing but ignorable characters counts as empty.
void AppendNew(std::vector<Cmm::CStringT<wchar_t>>& list, const wchar_t* text) {
  if (!Contains(list, text) && !EqualNoCase(text, L"")) list.emplace_back(text);
}

}  // namespace

uint32_t CSdkMsgChannel::SetAudioDevice(const wchar_t* deviceName, const wchar_t* usbVid,
                                        const wchar_t* usbPid, const wchar_t* deviceGUID) {
  CopyDeviceText(m_device.name, deviceName);
  CopyDeviceText(m_device.usbVid, usbVid);
  CopyDeviceText(m_device.usbPid, usbPid);
  CopyDeviceText(m_device.guid, deviceGUID);
  if (deviceName) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SetAudioDevice] deviceName:" << deviceName;
    m_strDeviceName = deviceName;
    AppendNew(m_deviceNames, deviceName);
  }
  if (usbVid) SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SetAudioDevice] usb_vid:" << usbVid;
  if (usbPid) SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SetAudioDevice] usb_pid:" << usbPid;
  if (deviceGUID) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SetAudioDevice] deviceGUID:" << deviceGUID;
    m_strDeviceGUID = deviceGUID;
    AppendNew(m_deviceGUIDs, deviceGUID);
  }

  DeviceRecord record;
  CopyDeviceText(record.name, m_device.name);
  CopyDeviceText(record.usbVid, m_device.usbVid);
  CopyDeviceText(record.usbPidOrGuid, deviceGUID ? m_device.guid : m_device.usbPid);
  m_deviceTable.AddDevice(record);
  return 1;
}

int CSdkMsgChannel::IsNeedFilterDevice(const wchar_t* deviceName, const wchar_t* deviceGUID, int value) {
  if (value == VelmAudio_SelectDevice) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::IsNeedFilterDevice] VelmAudio_SelectDevice";
    return 0;
  }
  if (deviceGUID && *deviceGUID && !m_strDeviceGUID.IsEmpty() && !Contains(m_deviceGUIDs, deviceGUID))
    return 1;
  if (!deviceName || !*deviceName || m_strDeviceName.IsEmpty()) return 0;
  return Contains(m_deviceNames, deviceName) ? 0 : 1;
}

void CSdkMsgChannel::RemoveDevicesFromTable() {
  for (const Cmm::CStringT<wchar_t>& name : m_deviceNames)
    m_deviceTable.RemoveDevice(name.c_str());
  m_deviceNames.clear();
  CopyDeviceText(m_device.name, nullptr);
}

}  // namespace Velm3rdSDK
